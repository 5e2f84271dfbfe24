#include "support/clickseries.h"
#include "ui/rack/artworkloader.h"
#include "ui/rack/rvimageview.h"
#include "ui/rack/stationpopover.h"
#include "ui/widgets/look.h"
#include "ui/widgets/textimage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {
const QString fallback = u":/artwork/QVX-001XY3.png"_s;
constexpr auto vector =
    "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><path d='M0 0h9v9'/></svg>";
constexpr Qt::DropActions bothActions = Qt::CopyAction | Qt::MoveAction;

struct CountingDelegate : RVImageView::Delegate
{
    void doubleClickRVImage(RVImageView *) override { ++count; }
    int count = 0;
};

/// An open popover, and the edits that it signals.
struct OpenPopover
{
    explicit OpenPopover(StationPopover::Kind kind)
        : popover(&window, kind)
    {
        record->setName(u"one\ntwo"_s);
        record->setGenre(QString(5000, u'g'));
        record->setPassword(u"secret"_s);
        popover.setStation(record);
        QObject::connect(&popover, &StationPopover::edited, &popover,
                         [this](const StationRecord &station, RadioField field, const QVariant &value) {
                             QCOMPARE(station, record);
                             told.append({QVariant::fromValue(field), value});
                         });
        window.resize(900, 560);
        window.show();
        popover.showRelativeTo({0, 0, 10, 10}, &window);
    }
    template <class T>
    T *find(const char *name)
    {
        return popover.findChild<T *>(QLatin1StringView(name));
    }

    StationRecord record = std::make_shared<RadioModel>();
    QWidget window;
    StationPopover popover;
    QList<QVariantList> told;
};
} // namespace

class TestStationViews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { applyLook(*qApp); }
    void artworkCountsClicks();
    void artworkLoads_data();
    void artworkLoads();
    void pathsAreDropped();
    void popoverTellsEachEdit();
    void popoverShowsWithoutTelling();
};

void TestStationViews::artworkCountsClicks()
{
    struct Series
    {
        QList<quint64> pauses;
        Qt::MouseButton button;
        int actions;
    };
    const Series table[] = {
        {{1}, Qt::LeftButton, 0},           {{1, 100}, Qt::LeftButton, 1},
        {{1, 100, 100}, Qt::LeftButton, 1}, {{1, 100, 100, 100}, Qt::LeftButton, 1},
        {{1, 2000}, Qt::LeftButton, 0},     {{1, 100, 2000, 100}, Qt::LeftButton, 2},
        {{1, 100}, Qt::RightButton, 0},
    };
    for (const auto &[pauses, button, actions] : table) {
        CountingDelegate delegate;
        for (CountingDelegate *listener : {&delegate, static_cast<CountingDelegate *>(nullptr)}) {
            RVImageView view;
            view.setDelegate(listener);
            QCOMPARE(clickSeries(view, pauses, button), button == Qt::LeftButton ? pauses.size() : 0);
        }
        QCOMPARE(delegate.count, actions);
    }
}

void TestStationViews::artworkLoads_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("loads");
    QTest::newRow("good.png") << QSize(90, 60) << QByteArray() << true;
    QTest::newRow("wide.png") << QSize(3000, 60) << QByteArray() << true;
    QTest::newRow("photo.jpg") << QSize(4200, 4100) << QByteArray() << true;
    QTest::newRow("large.png") << QSize(2000, 3000) << QByteArray() << true;
    QTest::newRow("pixels.png") << QSize(4097, 4096) << QByteArray() << false;
    QTest::newRow("bytes.png") << QSize(9, 9) << QByteArray(ArtworkLoader::maximumBytes, ' ') << false;
    QTest::newRow("text.png") << QSize() << QByteArray("not a picture") << false;
    QTest::newRow("vector.svg") << QSize() << QByteArray(vector) << false;
    for (const char *name : {"missing", "pipe", ".", "/dev/zero"}) {
        QTest::newRow(name) << QSize() << QByteArray() << false;
    }
}

void TestStationViews::artworkLoads()
{
    QFETCH(QSize, size);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, loads);
    const QTemporaryDir folder;
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const QString path = QDir(folder.path()).filePath(name);
    QImage image(size, QImage::Format_Mono);
    image.setColorTable({0xff00ff00, 0xff00ff00});
    image.fill(0);
    QVERIFY(size.isEmpty() || image.save(path));
    if (QFile file(path); !bytes.isEmpty() && file.open(QIODevice::Append)) {
        file.write(bytes);
    }
    if (name == u"pipe") {
        QCOMPARE(::mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    }
    const auto isGreen = [](const QImage &shown) {
        const QColor colour = shown.pixelColor(8, 48);
        return colour.red() < 4 && colour.green() > 251 && colour.blue() < 4;
    };
    RVImageView view;
    view.resize(96, 96);
    view.setPicture(fallback, {});
    QVERIFY(!view.acceptDrops());
    const QImage without = view.grab().toImage();
    QVERIFY(view.acceptDrops());
    QVERIFY(!isGreen(without));

    view.setPicture(path, fallback);
    QCOMPARE(view.grab().toImage(), without);
    bool answered = false;
    (void)ArtworkLoader::shared().request(path, 96, [](const QImage &) { QFAIL("let go"); });
    const auto request = ArtworkLoader::shared().request(path, 96, [&](const QImage &square) {
        answered = true;
        QCOMPARE(square.size(), loads ? QSize(96, 96) : QSize(0, 0));
    });
    QTRY_VERIFY(answered);
    if (loads) {
        QTRY_VERIFY(isGreen(view.grab().toImage()));
    } else {
        QCOMPARE(view.grab().toImage(), without);
    }
}

void TestStationViews::pathsAreDropped()
{
    const QUrl a(u"file:///tmp/a%20%25.png"_s);
    const QUrl web(u"http://h/c.png"_s);
    const QString path = u"/tmp/a %.png"_s;
    struct Drop
    {
        QList<QUrl> urls;
        QString text, shown;
        QStringList told;
    };
    const Drop table[] = {
        {{a}, {}, path, {u"path "_s + path}},
        {{a}, u"x"_s, path, {u"path "_s + path}},
        {{web, a}, {}, path, {u"path "_s + path}},
        {{a, QUrl(u"file:///b"_s)}, u"both"_s, u"before"_s, {}},
        {{web}, {}, u"before"_s, {}},
        {{QUrl(u"file://h/x"_s)}, u"elsewhere"_s, u"before"_s, {}},
        {{}, u"word"_s, u"word"_s, {u"text word"_s}},
        {{}, u""_s, u"before"_s, {}},
        {{}, {}, u"before"_s, {}},
    };
    for (const auto &[urls, text, shown, told] : table) {
        QMimeData data;
        urls.isEmpty() ? void() : data.setUrls(urls);
        text.isNull() ? void() : data.setText(text);
        TextImage line;
        line.setText(u"before"_s);
        line.grab();
        QStringList heard;
        connect(&line, &TextImage::pathDropped, this, [&](const QString &p) { heard += u"path "_s + p; });
        connect(&line, &QLineEdit::textEdited, this, [&](const QString &t) { heard += u"text "_s + t; });
        const auto send = [&](QEvent &&event) { return QCoreApplication::sendEvent(&line, &event); };
        const auto hover = [&] {
            send(QDragEnterEvent({5, 5}, bothActions, &data, Qt::LeftButton, {}));
            send(QDragMoveEvent({6, 6}, bothActions, &data, Qt::LeftButton, {}));
            return line.text();
        };
        const QString hovered = data.formats().isEmpty() ? u"before"_s : QString();
        QCOMPARE(hover(), hovered);
        send(QDragLeaveEvent());
        QCOMPARE(line.text(), u"before"_s);
        QCOMPARE(heard, QStringList());
        QCOMPARE(hover(), hovered);
        send(QDropEvent({6, 6}, bothActions, &data, Qt::LeftButton, {}));
        QCOMPARE(line.text(), shown);
        QCOMPARE(heard, told);
    }
}

void TestStationViews::popoverTellsEachEdit()
{
    OpenPopover fixture(StationPopover::Kind::custom);
    QVERIFY(fixture.window.rect().contains(fixture.popover.geometry()));
    const std::pair<const char *, RadioField> lines[] = {
        {"nameField", RadioField::name},         {"imageFilePathField", RadioField::imageFilePath},
        {"urlField", RadioField::url},           {"schemeField", RadioField::radioscheme},
        {"portField", RadioField::port},         {"mountpointField", RadioField::mountpoint},
        {"usernameField", RadioField::username}, {"passwordField", RadioField::password},
    };
    QList<QVariantList> wanted;
    for (const auto &[name, field] : lines) {
        auto *line = fixture.find<QLineEdit>(name);
        wanted.append({QVariant::fromValue(field), u'x' + line->text()});
        QTest::keyClick(line, 'x');
    }
    fixture.find<QSlider>("starsField")->setValue(5);
    wanted.append({QVariant::fromValue(RadioField::stars), qlonglong{5}});
    fixture.find<QAbstractButton>("privateSwitch")->click();
    wanted.append({QVariant::fromValue(RadioField::radioIsPrivate), true});
    fixture.find<QAbstractButton>("defaultButton")->click();
    wanted.append({QVariant::fromValue(RadioField::imageFilePath), QString(RadioModel::customArtwork)});
    QCOMPARE(fixture.told, wanted);
    QCOMPARE(fixture.told.first().last(), QVariant(u"xone\ntwo"_s));

    fixture.record.reset();
    QTest::keyClick(fixture.find<QLineEdit>("nameField"), 'x');
    QCOMPARE(fixture.told.size(), wanted.size());
}

/// Odd values and missing ones are shown without signalling an edit, and the password is hidden again.
void TestStationViews::popoverShowsWithoutTelling()
{
    OpenPopover fixture(StationPopover::Kind::custom);
    auto *password = fixture.find<QLineEdit>("passwordField");
    auto *reveal = fixture.find<QAbstractButton>("revealButton");
    for (const QVariant &odd : {QVariant(4.9), QVariant(1e300), QVariant(-1), QVariant(true), QVariant()}) {
        fixture.record->setStars(odd);
        fixture.record->setName(odd);
        fixture.record->setRadioIsPrivate(!fixture.record->flag(RadioField::radioIsPrivate));
        reveal->click();
        QCOMPARE(password->echoMode(), QLineEdit::Normal);
        fixture.popover.setStation(fixture.record);
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        QCOMPARE(fixture.find<QLineEdit>("nameField")->text(), fixture.record->text(RadioField::name));
    }
    reveal->click();
    fixture.popover.close();
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    fixture.popover.setStation({});
    QCOMPARE(password->text(), QString());
    QCOMPARE(fixture.told, QList<QVariantList>());

    OpenPopover favourite(StationPopover::Kind::favourite);
    const QString address = u"http://h/\u202e"_s + QString(600, u'x');
    favourite.record->setUrl(QString(address).insert(7, u"user:secret@"_s));
    favourite.popover.setStation(favourite.record);
    QTest::mouseClick(favourite.find<QWidget>("addressLine"), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(), address);
    for (const QWidget *widget : favourite.popover.findChildren<QWidget *>()) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        QVERIFY(!widget->accessibleName().contains(u"secret"_s));
        QVERIFY(!widget->toolTip().contains(u"secret"_s));
        QVERIFY(label == nullptr || !label->text().contains(u"secret"_s));
    }
}

QTEST_MAIN(TestStationViews)
#include "tst_stationviews.moc"
