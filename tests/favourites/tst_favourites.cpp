#include "favourites/archive/favouritesstore.h"
#include "favourites/archive/keyedarchive.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
const QString folderName = u"com.plumtide.folders"_s;
const QString fileName = u"plumtide.data"_s;
constexpr uid_t plainUser = 65534;

/// What has been logged since it was last cleared.
QStringList logged;

void noteLine(QtMsgType, const QMessageLogContext &, const QString &line)
{
    logged.append(line);
}

QByteArray runScript(const QStringList &arguments)
{
    QProcess python;
    python.start(u"python3"_s, QStringList{qEnvironmentVariable("ARCHIVES")} + arguments);
    python.waitForFinished();
    return python.exitCode() == 0 ? python.readAllStandardOutput() : python.readAllStandardError();
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

StationRecord station(const QString &name)
{
    StationRecord record = std::make_shared<RadioModel>();
    record->setName(name);
    return record;
}

QVariantList values(const StationRecord &record)
{
    QVariantList all;
    for (const RadioField field : RadioModel::fields()) {
        all.append(record->value(field));
    }
    return all;
}

/// Root is refused nothing: `action` runs as a plain user, who owns the files below `home`.
void asPlainUser(const QString &home, const std::function<void()> &action)
{
    if (::geteuid() != 0) {
        action();
        return;
    }
    QProcess::execute(u"chown"_s, {u"-R"_s, QString::number(plainUser), home});
    QCOMPARE(::seteuid(plainUser), 0);
    action();
    QCOMPARE(::seteuid(0), 0);
}

/// What a row of a table does to the files, or with the store.
using Step = std::function<void(const QString &file)>;
} // namespace
Q_DECLARE_METATYPE(Step)

class TestFavourites : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void musicDirectory();
    void folders();
    void records();
    void foreignArchives_data();
    void foreignArchives();
    void damagedArchives();
    void firstSave();
    void readsOnlyFiles_data();
    void readsOnlyFiles();
    void keepsWhatItDoesNotKnow_data();
    void keepsWhatItDoesNotKnow();
    void refusals_data();
    void refusals();
    void links();
    void strays();

private:
    bool save(const QString &name)
    {
        return store_->saveDataToStorageFolder(folderName, fileName, {station(name)});
    }
    QString savedName()
    {
        // Opening a pipe would wait for a writer.
        const auto list = KeyedUnarchiver::unarchiveObjectWithData(QFileInfo(file_).isFile() ? contents(file_)
                                                                                             : QByteArray());
        return list && list->stations.size() == 1 ? list->stations.first()->text(RadioField::name)
                                                  : QString();
    }
    /// What is in the folder, but for the lock.
    QStringList names() const
    {
        QStringList names =
            QDir(folder_).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        names.removeOne(lockName_);
        return names;
    }

    QTemporaryDir archives_;
    std::unique_ptr<QTemporaryDir> home_;
    std::unique_ptr<FavouritesStore> store_;
    QString folder_;
    QString file_;
    const QString lockName_ = fileName + u".lock"_s;
};

void TestFavourites::initTestCase()
{
    QCOMPARE(runScript({u"write"_s, archives_.path()}), QByteArray());
}

void TestFavourites::init()
{
    home_ = std::make_unique<QTemporaryDir>();
    qputenv("HOME", home_->path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home_->path().toUtf8());
    folder_ = home_->filePath(u"Music/"_s + folderName);
    file_ = folder_ + u'/' + fileName;
    QVERIFY(QDir().mkpath(folder_));
    store_ = std::make_unique<FavouritesStore>();
    logged.clear();
    qInstallMessageHandler(noteLine);
}

void TestFavourites::cleanup()
{
    qInstallMessageHandler(nullptr);
}

void TestFavourites::musicDirectory()
{
    QCOMPARE(FavouritesStore::musicDirectory(), home_->filePath(u"Music"_s));
    const QString settings = home_->filePath(u"user-dirs.dirs"_s);
    writeFile(settings, "XDG_MUSIC_DIR=\"$HOME/Tunes/\"\n");
    QCOMPARE(FavouritesStore::musicDirectory(), home_->filePath(u"Tunes"_s));
    writeFile(settings, "XDG_MUSIC_DIR=\"tunes\"\n");
    QVERIFY(FavouritesStore::musicDirectory().isNull());
    QVERIFY(!FavouritesStore::isFolderExistAtMusicFolder(u"tmp"_s));
    QVERIFY(!FavouritesStore::createDirectoryOnMusicDirectory(u"tmp/plumtide"_s));
    QVERIFY(!save(u"a"_s));
    QVERIFY(!store_->reaDataFromStorageFolder(folderName, fileName));
}

void TestFavourites::folders()
{
    QVERIFY(FavouritesStore::isFolderExistAtMusicFolder(folderName));
    QVERIFY(!FavouritesStore::createDirectoryOnMusicDirectory(folderName));
    QVERIFY(!FavouritesStore::isFolderExistAtMusicFolder(u"new"_s));
    QVERIFY(FavouritesStore::createDirectoryOnMusicDirectory(u"new"_s));
    QVERIFY(FavouritesStore::isFolderExistAtMusicFolder(u"new"_s));
    QVERIFY(!FavouritesStore::createDirectoryOnMusicDirectory(u"missing/new"_s));

    writeFile(home_->filePath(u"Music/plain"_s), "");
    QVERIFY(FavouritesStore::isFolderExistAtMusicFolder(u"plain"_s));
    QVERIFY(!FavouritesStore::createDirectoryOnMusicDirectory(u"plain"_s));
    for (const QString &folder : {u"plain"_s, u"missing"_s}) {
        QVERIFY(!store_->saveDataToStorageFolder(folder, fileName, {}));
        QVERIFY(!store_->reaDataFromStorageFolder(folder, fileName));
    }
    QVERIFY(!FavouritesStore::isFolderExistAtMusicFolder(u"missing"_s));
}

void TestFavourites::records()
{
    const StationRecord plain = std::make_shared<RadioModel>();
    const StationRecord odd = std::make_shared<RadioModel>();
    for (const RadioField field : RadioModel::fields()) {
        odd->setValue(field, {});
    }
    const QString longText(5000, u'ä');
    odd->setName(u"\ufeff🎧 $null"_s);
    odd->setGenre(u""_s);
    odd->setMid(qlonglong{-5});
    odd->setMountType(QVariant(0.1));
    odd->setListener(std::numeric_limits<qlonglong>::min());
    odd->setStars(true);
    odd->setVolume(qlonglong{1});
    odd->setBass(1.0);
    odd->setUrl(longText);
    odd->setPort(longText);
    odd->setPassword(QByteArray("\0x", 2));
    QVERIFY(store_->saveDataToStorageFolder(folderName, fileName, {plain, odd, nullptr, plain}));
    const auto read = store_->reaDataFromStorageFolder(folderName, fileName);
    QCOMPARE(read->size(), 2);
    QCOMPARE(values(read->at(0)), values(plain));
    QCOMPARE(values(read->at(1)), values(odd));

    const QJsonObject seen = QJsonDocument::fromJson(runScript({u"show"_s, file_})).object();
    QVERIFY(seen[u"genuine"_s].toBool());
    QCOMPARE(seen[u"classes"_s],
             QJsonValue(QJsonArray{QJsonArray{u"RadioModel"_s, u"NSObject"_s},
                                   QJsonArray{u"NSMutableArray"_s, u"NSArray"_s, u"NSObject"_s}}));
    const QJsonArray stations = seen[u"root"_s][u"NS.objects"_s].toArray();
    const auto is = [&](int index, const QString &key, const QString &type, const QString &value) {
        QCOMPARE(stations[index][key], QJsonValue(QJsonArray{type, value}));
    };
    is(0, u"name"_s, u"str"_s, u"'My Radio'"_s);
    is(0, u"bitrate"_s, u"float"_s, u"64.0"_s);
    is(0, u"stars"_s, u"int"_s, u"2"_s);
    is(0, u"custom"_s, u"bool"_s, u"False"_s);
    is(1, u"mid"_s, u"int"_s, u"-5"_s);
    is(1, u"listener"_s, u"int"_s, u"-9223372036854775808"_s);
    is(1, u"volume"_s, u"int"_s, u"1"_s);
    is(1, u"bass"_s, u"float"_s, u"1.0"_s);
    is(1, u"stars"_s, u"bool"_s, u"True"_s);
    is(1, u"password"_s, u"bytes"_s, u"b'\\x00x'"_s);
    QVERIFY(stations[1][u"treble"_s].isNull());

    // A text that an archive cannot hold is cut or replaced; the others stay.
    odd->setName(u"a\0b"_s + QChar(0xD800));
    odd->setGenre(u"?"_s);
    odd->setMid(QString(QChar(0xD800)));
    const auto again =
        KeyedUnarchiver::unarchiveObjectWithData(KeyedArchiver::archivedDataWithRootObject({odd}));
    QCOMPARE(again->stations.first()->name(), QVariant(u"a"_s));
    QCOMPARE(again->stations.first()->genre(), QVariant(u"?"_s));
    QCOMPARE(again->stations.first()->mid(), QVariant(u"\ufffd"_s));
    QVERIFY(KeyedArchiver::archivedDataWithRootObject(StationRecords(100'001, plain)).size() > 0);
}

void TestFavourites::foreignArchives_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("whole");
    for (const char *one : {"full", "inline", "sparse", "backwards", "mutable"}) {
        QTest::newRow(one) << 1 << true;
    }
    for (const char *one :
         {"unknown-key", "dangling", "nul", "subclass", "elements", "list-key", "top-key"}) {
        QTest::newRow(one) << 1 << false;
    }
    QTest::newRow("objects") << 2 << true;
    QTest::newRow("empty") << 0 << true;
    QTest::newRow("list-subclass") << 0 << false;
    for (const char *none : {"root-record", "root-map", "root-text", "root-nothing", "no-elements",
                             "too-many", "other-archiver", "no-archive", "xml", "shared", "deep", "itself",
                             "long-texts", "wide-number", "long-count", "nul-key", "no-key"}) {
        QTest::newRow(none) << -1 << false;
    }
}

void TestFavourites::foreignArchives()
{
    QFETCH(int, count);
    QFETCH(bool, whole);
    const QString foreign = archives_.filePath(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(QFile::copy(foreign, file_));
    const auto stations = store_->reaDataFromStorageFolder(folderName, fileName);
    QCOMPARE(stations ? stations->size() : -1, count);
    QCOMPARE(logged.size(), whole ? 0 : 1);
    if (!whole) {
        return;
    }
    QVERIFY(store_->saveDataToStorageFolder(folderName, fileName, *stations));
    QVERIFY(contents(file_) != contents(foreign));
    const QJsonObject before = QJsonDocument::fromJson(runScript({u"show"_s, foreign})).object();
    const QJsonObject after = QJsonDocument::fromJson(runScript({u"show"_s, file_})).object();
    QVERIFY(before[u"root"_s].isObject());
    QCOMPARE(QJsonDocument(after[u"root"_s].toObject()).toJson(),
             QJsonDocument(before[u"root"_s].toObject()).toJson());
    QVERIFY(after[u"genuine"_s].toBool());
}

void TestFavourites::damagedArchives()
{
    const auto survives = [](const QByteArray &bytes) {
        const auto list = KeyedUnarchiver::unarchiveObjectWithData(bytes);
        if (list) {
            KeyedArchiver::archivedDataWithRootObject(list->stations);
        }
        return list.has_value();
    };
    for (const QString &name : {u"objects"_s, u"mutable"_s}) {
        QByteArray bytes = contents(archives_.filePath(name));
        QVERIFY(survives(bytes));
        for (qsizetype length = 0; length < bytes.size(); ++length) {
            QVERIFY(!survives(bytes.first(length)));
        }
        for (qsizetype bit = 0; bit < 8 * bytes.size(); ++bit) {
            const char whole = bytes[bit / 8];
            bytes[bit / 8] = static_cast<char>(whole ^ 1 << bit % 8);
            survives(bytes);
            bytes[bit / 8] = whole;
        }
        QRandomGenerator random(1);
        for (int round = 0; round < 5000; ++round) {
            QByteArray other = bytes;
            for (int times = 0; times < 1 + round % 40; ++times) {
                other[random.bounded(static_cast<quint32>(other.size()))] =
                    static_cast<char>(random.bounded(256));
            }
            survives(other);
        }
    }
}

void TestFavourites::firstSave()
{
    QVERIFY(!store_->reaDataFromStorageFolder(folderName, fileName));
    QVERIFY(save(u"one"_s));
    QCOMPARE(names(), QStringList{fileName});
    QCOMPARE(QFile::permissions(file_) & ~QFile::Permissions(0x7000), QFile::ReadUser | QFile::WriteUser);
    QVERIFY(save(u"two"_s));
    QVERIFY(save(u"three"_s));
    QCOMPARE(names(), (QStringList{fileName, fileName + u'~'}));
    QCOMPARE(savedName(), u"three"_s);
    QVERIFY(contents(file_ + u'~').contains("two"));

    // The same list again leaves the file and its backup alone.
    const auto stations = store_->reaDataFromStorageFolder(folderName, fileName);
    const QDateTime written = QFileInfo(file_).metadataChangeTime();
    QVERIFY(store_->saveDataToStorageFolder(folderName, fileName, *stations));
    QCOMPARE(QFileInfo(file_).metadataChangeTime(), written);
    QVERIFY(contents(file_ + u'~').contains("two"));
    QCOMPARE(logged, QStringList());

    // Unless other users can read it.
    QVERIFY(QFile::setPermissions(file_, QFile::permissions(file_) | QFile::ReadOther));
    QVERIFY(store_->saveDataToStorageFolder(folderName, fileName, *stations));
    for (const QString &name : names()) {
        QVERIFY(!QFile::permissions(folder_ + u'/' + name).testFlag(QFile::ReadOther));
    }
}

void TestFavourites::readsOnlyFiles_data()
{
    QTest::addColumn<Step>("prepare");
    QTest::newRow("pipe") << Step([](const QString &file) { ::mkfifo(file.toUtf8().constData(), 0600); });
    QTest::newRow("device") << Step([](const QString &file) { QFile::link(u"/dev/zero"_s, file); });
    QTest::newRow("directory") << Step([](const QString &file) { QDir().mkdir(file); });
    QTest::newRow("link to itself") << Step([](const QString &file) { QFile::link(file, file); });
    QTest::newRow("huge") << Step([](const QString &file) {
        writeFile(file, "bplist00");
        QFile::resize(file, qint64{1} << 40);
    });
    QTest::newRow("empty") << Step([](const QString &file) { writeFile(file, ""); });
    QTest::newRow("not allowed") << Step([](const QString &file) {
        writeFile(file, "secret");
        QFile::setPermissions(file, QFile::WriteOwner);
    });
}

void TestFavourites::readsOnlyFiles()
{
    QFETCH(Step, prepare);
    asPlainUser(home_->path(), [&] {
        prepare(file_);
        QVERIFY(!store_->reaDataFromStorageFolder(folderName, fileName));
        QCOMPARE(logged.size(), 1);
    });
}

void TestFavourites::keepsWhatItDoesNotKnow_data()
{
    QTest::addColumn<Step>("change");
    QTest::addColumn<bool>("readAgain");
    const auto overwrite = [](const QString &file) { writeFile(file, "somebody else's"); };
    QTest::newRow("unusable") << Step(overwrite) << true;
    QTest::newRow("changed after the read") << Step(overwrite) << false;
    QTest::newRow("of the same length")
        << Step([](const QString &file) { writeFile(file, QByteArray(contents(file).size(), 'x')); })
        << false;
    QTest::newRow("not whole") << Step([this](const QString &file) {
        writeFile(file, contents(archives_.filePath(u"elements"_s)));
    }) << true;
    QTest::newRow("not readable") << Step([](const QString &file) {
        QFile::setPermissions(file, QFile::WriteOwner);
    }) << true;
    QTest::newRow("a newcomer") << Step([](const QString &file) {
        QFile::remove(file);
        writeFile(file, "newcomer");
    }) << false;
}

void TestFavourites::keepsWhatItDoesNotKnow()
{
    QFETCH(Step, change);
    QFETCH(bool, readAgain);
    QByteArray original;
    asPlainUser(home_->path(), [&] {
        QVERIFY(save(u"one"_s));
        original = contents(file_);
        change(file_);
        if (QTest::currentDataTag() != "not readable"_ba) {
            original = contents(file_);
        }
        if (readAgain) {
            store_->reaDataFromStorageFolder(folderName, fileName);
            QCOMPARE(logged.size(), 1);
        }
        logged.clear();
        QVERIFY(save(u"two"_s));
        QCOMPARE(logged.size(), 1);
        const QString kept = names().value(1);
        QVERIFY(kept.startsWith(fileName + u".20"_s));
        QVERIFY(logged.first().contains(kept));
        QCOMPARE(savedName(), u"two"_s);
        // A second one within the same second gets another name; what the store wrote gets none.
        writeFile(file_, "other");
        QVERIFY(save(u"three"_s));
        QVERIFY(save(u"four"_s));
        QCOMPARE(names().size(), 4);
    });
    QCOMPARE(contents(folder_ + u'/' + names().value(1)), original);
}

void TestFavourites::refusals_data()
{
    QTest::addColumn<Step>("prepare");
    QTest::addColumn<bool>("wasThere");
    const auto owner = QFile::ReadOwner | QFile::ExeOwner;
    QTest::newRow("read-only file") << Step([](const QString &file) {
        QFile::setPermissions(file, QFile::ReadOwner);
    }) << true;
    QTest::newRow("read-only folder")
        << Step([owner](const QString &file) { QFile::setPermissions(QFileInfo(file).path(), owner); })
        << true;
    QTest::newRow("full disk") << Step([](const QString &) {
        const rlimit limit{200, RLIM_INFINITY};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }) << true;
    QTest::newRow("directory") << Step([](const QString &file) {
        QFile::remove(file);
        QDir().mkdir(file);
    }) << false;
    QTest::newRow("pipe") << Step([](const QString &file) {
        QFile::remove(file);
        ::mkfifo(file.toUtf8().constData(), 0600);
    }) << false;
}

void TestFavourites::refusals()
{
    QFETCH(Step, prepare);
    QFETCH(bool, wasThere);
    std::signal(SIGXFSZ, SIG_IGN);
    asPlainUser(home_->path(), [&] {
        QVERIFY(save(u"one"_s));
        prepare(file_);
        const QStringList before = names();
        QVERIFY(!save(u"two"_s));
        const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &unlimited), 0);
        QCOMPARE(logged.size(), 1);
        QCOMPARE(names(), before);
        QCOMPARE(savedName(), wasThere ? u"one"_s : QString());
        QFile::setPermissions(folder_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    });
}

void TestFavourites::links()
{
    const QString far = home_->filePath(u"far"_s);
    QVERIFY(QFile::link(u"../../far"_s, file_));
    for (const QString &name : {u"dangling"_s, u"present"_s}) {
        QVERIFY(save(name));
        QVERIFY(QFileInfo(file_).isSymLink());
        QVERIFY(contents(far).contains(name.toUtf8()));
        QCOMPARE(savedName(), name);
    }
    QVERIFY(contents(far + u'~').contains("dangling"));
    QVERIFY(QFile::remove(file_) && QFile::link(u"missing/far"_s, file_));
    QVERIFY(!save(u"nowhere"_s));
    QCOMPARE(names(), QStringList{fileName});

    // The file of another user can be neither linked nor written to, but copied.
    QVERIFY(QFile::remove(file_));
    asPlainUser(home_->path(), [&] { QVERIFY(save(u"mine"_s)); });
    if (::geteuid() == 0) {
        QCOMPARE(::chown(file_.toUtf8().constData(), 0, 0), 0);
        QCOMPARE(::chmod(file_.toUtf8().constData(), 04666), 0);
        QCOMPARE(::seteuid(plainUser), 0);
        const bool saved = save(u"other"_s);
        QCOMPARE(::seteuid(0), 0);
        QVERIFY(saved);
        QVERIFY(contents(folder_ + u'/' + names().last()).contains("mine"));
        QCOMPARE(savedName(), u"other"_s);
    }
}

void TestFavourites::strays()
{
    const QStringList others{u".plumtide.data.saving-abc"_s, u".plumtide.data.saving-abcdefg"_s,
                             u".plumtide.dataX"_s, u"plumtide.data.saving-abcdef"_s};
    for (const QString &name : others + QStringList{u".plumtide.data.saving-aB3dEf"_s}) {
        writeFile(folder_ + u'/' + name, "");
    }
    QVERIFY(!store_->reaDataFromStorageFolder(folderName, fileName));
    QCOMPARE(names(), others);
}

QTEST_GUILESS_MAIN(TestFavourites)
#include "tst_favourites.moc"
