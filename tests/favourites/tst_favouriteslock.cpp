#include "favourites/archive/favouritesstore.h"
#include "favourites/archive/keyedarchive.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString folderName = u"com.plumtide.folders"_s;
const QString fileName = u"plumtide.data"_s;

QStringList logged;
void noteLine(QtMsgType, const QMessageLogContext &, const QString &line)
{
    logged.append(line);
}

bool save(FavouritesStore &store, const QString &name)
{
    const auto station = std::make_shared<RadioModel>();
    station->setName(name);
    return store.saveDataToStorageFolder(folderName, fileName, {station});
}
} // namespace

/// Several stores stand for as many programs: to the lock they are the same.
class TestFavouritesLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { qInstallMessageHandler(nullptr); }
    void oneProgramAtATime();
    void whatCannotBeLocked();

private:
    QString savedName() const
    {
        QFile file(folder_.filePath(fileName));
        const auto list = file.open(QIODevice::ReadOnly)
                              ? KeyedUnarchiver::unarchiveObjectWithData(file.readAll())
                              : std::nullopt;
        return list && list->stations.size() == 1 ? list->stations.first()->text(RadioField::name)
                                                  : QString();
    }

    std::unique_ptr<QTemporaryDir> home_;
    QDir folder_;
    const QString lockName_ = fileName + u".lock"_s;
};

void TestFavouritesLock::init()
{
    home_ = std::make_unique<QTemporaryDir>();
    qputenv("HOME", home_->path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home_->path().toUtf8());
    QVERIFY(QDir(home_->path()).mkdir(u"Music"_s));
    folder_.setPath(home_->filePath(u"Music/"_s + folderName));
    logged.clear();
    qInstallMessageHandler(noteLine);
}

void TestFavouritesLock::oneProgramAtATime()
{
    // The first one has read before there was a folder.
    auto first = std::make_unique<FavouritesStore>();
    QVERIFY(!first->reaDataFromStorageFolder(folderName, fileName));
    QVERIFY(FavouritesStore::createDirectoryOnMusicDirectory(folderName));
    QVERIFY(first->claim(folderName, fileName));
    QVERIFY(save(*first, u"one"_s));
    QFile stray(folder_.filePath(u".plumtide.data.saving-aB3dEf"_s));
    QVERIFY(stray.open(QIODevice::WriteOnly));
    stray.close();

    FavouritesStore second;
    QCOMPARE(second.reaDataFromStorageFolder(folderName, fileName)->size(), 1);
    QVERIFY(!save(second, u"two"_s));
    QCOMPARE(logged.size(), 1);
    QCOMPARE(savedName(), u"one"_s);
    QVERIFY(stray.exists());
    QVERIFY(save(*first, u"three"_s));

    first.reset();
    QVERIFY(!folder_.exists(lockName_));
    QVERIFY(!save(second, u"two"_s));
    FavouritesStore third;
    QVERIFY(save(third, u"four"_s));
    QCOMPARE(savedName(), u"four"_s);
}

void TestFavouritesLock::whatCannotBeLocked()
{
    QVERIFY(folder_.mkpath(lockName_));
    FavouritesStore store;
    QVERIFY(save(store, u"one"_s));
    QVERIFY(folder_.rmdir(lockName_));
    const QString elsewhere = home_->filePath(u"elsewhere"_s);
    QVERIFY(QFile::link(elsewhere, folder_.filePath(lockName_)));
    QVERIFY(save(store, u"two"_s));
    QVERIFY(!QFile::exists(elsewhere));
    QCOMPARE(savedName(), u"two"_s);
}

QTEST_GUILESS_MAIN(TestFavouritesLock)
#include "tst_favouriteslock.moc"
