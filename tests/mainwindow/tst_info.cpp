#include "base/displaytext.h"
#include "support/windowstage.h"
#include "ui/panels/historypopover.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QProgressBar>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QToolButton>
#include <array>
#include <functional>

using namespace Qt::StringLiterals;

namespace {
const QString endless = QString(4000, u'W');

/// The window, with what is heard set by the test.
struct InfoWindow : WindowStage
{
    InfoWindow()
        : WindowStage({}, Start::Next)
        , active(QTest::qWaitForWindowActive(window))
    {
    }

    template <class T = QWidget>
    T *find(const char *name)
    {
        return window->findChild<T *>(QLatin1StringView(name));
    }
    QString text(const char *name)
    {
        const auto *label = find<QLabel>(name);
        return label != nullptr ? label->text() : QString();
    }
    bool showsBar()
    {
        const QWidget *bar = find("bufferBar");
        return bar != nullptr && bar->isVisible();
    }
    RVTableView &table() { return *find<RVTableView>("titlesTable"); }
    HistoryPopover &popover() { return *find<HistoryPopover>("historyPopOver"); }
    QStringList titles() { return column(1); }
    QStringList column(int column)
    {
        if (!popover().isShown()) {
            find<QAction>("recentTitlesAction")->trigger();
        }
        QStringList texts;
        for (int row = 0; row < table().model()->rowCount(); ++row) {
            texts.append(table().model()->index(row, column).data().toString());
        }
        return texts;
    }
    void play(const QString &station) { program->session.playback().playRadioFromURL(u"x"_s, station); }
    void hear(const QString &title, int buffered = 0)
    {
        backend.heard.setInfo({.title = title, .codec = u"MP3"_s, .bitrate = 128, .buffered = buffered});
    }
    void hearNothing() { backend.heard.setInfo({}); }

    bool active;
};
} // namespace

class TestInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatsHaveTheirNames();
    void areaShowsWhatIsHeard_data();
    void areaShowsWhatIsHeard();
    void narrowAreaGivesWay();
    void titlesEnterTheHistory();
    void popoverOpensAndCloses();
    void titlesAreCopied();
    void titlesAreSaved();
};

void TestInfo::formatsHaveTheirNames()
{
    const std::array<QLatin1StringView, 3> names[] = {
        {"mp3"_L1, ""_L1, "MP3"_L1},           {"aac"_L1, "LC"_L1, "AAC"_L1},
        {"aac"_L1, "HE-AAC"_L1, "HE-AAC"_L1},  {"aac_latm"_L1, ""_L1, "AAC"_L1},
        {"vorbis"_L1, ""_L1, "Ogg Vorbis"_L1}, {"opus"_L1, ""_L1, "Opus"_L1},
        {"flac"_L1, ""_L1, "FLAC"_L1},         {"wmav2"_L1, ""_L1, "WMA"_L1},
        {"pcm_s16le"_L1, ""_L1, "PCM"_L1},     {""_L1, ""_L1, ""_L1},
    };
    for (const auto &[codec, profile, name] : names) {
        QCOMPARE(codecName(codec, profile), name);
    }
}

void TestInfo::areaShowsWhatIsHeard_data()
{
    QTest::addColumn<StreamInfo>("info");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("bar");
    const StreamInfo usual{.title = u"A - B"_s, .codec = u"MP3"_s, .bitrate = 128, .buffered = 12};
    const auto with = [&usual](const auto &change) {
        StreamInfo info = usual;
        change(info);
        return info;
    };
    const auto buffered = [&with](int seconds) {
        return with([seconds](StreamInfo &info) { info.buffered = seconds; });
    };
    const QString format = u"MP3 128 kbit/s"_s;
    QTest::newRow("usual") << usual << QStringList{u"A - B"_s, format, u"12 s"_s} << 12;
    QTest::newRow("no title") << with([](StreamInfo &info) { info.title.clear(); })
                              << QStringList{QString(), format, u"12 s"_s} << 12;
    QTest::newRow("hostile title") << with([](StreamInfo &info) {
        info.title = u" <b>A</b>\r\n\u202E&B\0C "_s;
    }) << QStringList{u"<b>A</b>  &BC"_s, format, u"12 s"_s}
                                   << 12;
    QTest::newRow("no bit rate") << with([](StreamInfo &info) { info.bitrate = 0; })
                                 << QStringList{u"A - B"_s, u"MP3"_s, u"12 s"_s} << 12;
    QTest::newRow("not verified") << with([](StreamInfo &info) { info.isUnverified = true; })
                                  << QStringList{u"A - B"_s, format + u" \u00B7 not verified"_s, u"12 s"_s}
                                  << 12;
    QTest::newRow("dry") << buffered(0) << QStringList{u"A - B"_s, format, u"0 s"_s} << 0;
    QTest::newRow("seconds") << buffered(99) << QStringList{u"A - B"_s, format, u"99 s"_s} << 20;
    QTest::newRow("minutes") << buffered(100) << QStringList{u"A - B"_s, format, u"1 min"_s} << 20;
    QTest::newRow("hours") << buffered(6000) << QStringList{u"A - B"_s, format, u"1 h"_s} << 20;
}

void TestInfo::areaShowsWhatIsHeard()
{
    InfoWindow stage;
    const auto shown = [&stage] {
        return QStringList{stage.text("nowPlayingLabel"), stage.text("formatLabel"),
                           stage.text("bufferLabel")};
    };
    const auto places = [&stage] {
        QList<QRect> rectangles;
        for (const char *name : {"playerStatusString", "infoView", "historyButton"}) {
            rectangles.append(stage.find(name)->geometry());
        }
        return rectangles;
    };
    const QStringList empty{QString(), QString(), QString()};
    const QList<QRect> before = places();
    QCOMPARE(shown(), empty);
    QVERIFY(!stage.showsBar());

    // The second of two changes in a row waits a little.
    QFETCH(StreamInfo, info);
    stage.hear(u"before"_s);
    stage.backend.heard.setInfo(info);
    QCOMPARE(stage.text("nowPlayingLabel"), u"before"_s);
    QFETCH(QStringList, texts);
    QTRY_COMPARE(shown(), texts);
    QTEST(stage.find<QProgressBar>("bufferBar")->value(), "bar");
    QVERIFY(stage.showsBar());
    QCOMPARE(places(), before);
    QCOMPARE(stage.find("formatLabel")->toolTip().contains(u"certificate"_s), info.isUnverified);
    const QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(stage.find("bufferBar"));
    QCOMPARE(bar->role(), QAccessible::ProgressBar);
    QVERIFY(!bar->text(QAccessible::Name).isEmpty());

    stage.hearNothing();
    QCOMPARE(shown(), empty);
    QVERIFY(!stage.showsBar());
    QCOMPARE(places(), before);
}

void TestInfo::narrowAreaGivesWay()
{
    InfoWindow stage;
    stage.hear(endless);
    struct Width
    {
        int window;
        bool area;
        bool bar;
    };
    for (const auto [window, area, bar] : {Width{2500, true, true}, Width{1180, true, true},
                                           Width{900, true, false}, Width{640, false, false}}) {
        stage.window->resize(window, 560);
        QTRY_COMPARE(stage.find("myToolbarBox")->width(), window - 32);
        QTRY_COMPARE(stage.find("infoView")->isVisible(), area);
        QTRY_COMPARE(stage.showsBar(), bar);
        QVERIFY(!area || stage.find("infoView")->width() <= stage.find("playerStatusString")->width());
        QTRY_VERIFY(stage.find("playerStatusString")->width() >= 120);
        stage.find<QAction>("recentTitlesAction")->trigger();
        QVERIFY(stage.window->rect().contains(stage.popover().geometry()));
        stage.popover().close();
    }
}

void TestInfo::titlesEnterTheHistory()
{
    InfoWindow stage;
    // One that nothing follows is entered at once when the sound ends, and under the station that it was
    // heard on.
    stage.play(u"first\nstation"_s);
    for (int number = 0; number < 20; ++number) {
        stage.hear(u"flood %1"_s.arg(number));
    }
    QCOMPARE(stage.text("nowPlayingLabel"), u"flood 0"_s);
    // The next station's name is there before the sound of this one ends.
    stage.play(u"second"_s);
    stage.hearNothing();
    QCOMPARE(stage.text("nowPlayingLabel"), QString());
    QCOMPARE(stage.titles(), QStringList{u"flood 19"_s});
    QCOMPARE(stage.column(2), QStringList{u"first station"_s});

    // Another is entered once it has stood for a while, and not again when it ends or comes back.
    stage.hear(u"short"_s);
    stage.hear(endless, 1);
    QTRY_COMPARE(stage.titles().size(), 2);
    QCOMPARE(stage.titles().constFirst(), displayText(endless));
    stage.hearNothing();
    stage.hear(endless);
    stage.hearNothing();
    QCOMPARE(stage.titles().size(), 2);
}

void TestInfo::popoverOpensAndCloses()
{
    InfoWindow stage;
    QVERIFY(stage.active);
    const std::pair<const char *, std::function<void()>> ways[] = {
        {"button", [&] { QTest::mouseClick(stage.find("historyButton"), Qt::LeftButton); }},
        {"area", [&] { QTest::mouseClick(stage.find("infoView"), Qt::LeftButton); }},
        {"keys", [&] { QTest::keyClick(stage.window, Qt::Key_H, Qt::ControlModifier); }},
    };
    for (const auto &[name, toggle] : ways) {
        toggle();
        QVERIFY2(stage.popover().isShown(), name);
        QVERIFY2(stage.popover().isAncestorOf(QApplication::focusWidget()), name);
        QVERIFY2(!stage.find("copyButton")->isEnabled(), name);
        toggle();
        QVERIFY2(!stage.popover().isShown(), name);
    }
}

void TestInfo::titlesAreCopied()
{
    InfoWindow stage;
    for (const QString &title : {u"one"_s, u"two"_s, u"three"_s}) {
        stage.hear(title);
        stage.hearNothing();
    }
    QCOMPARE(stage.titles(), (QStringList{u"three"_s, u"two"_s, u"one"_s}));
    const auto clipboard = [] { return QApplication::clipboard()->text(); };
    stage.find<QAbstractButton>("copyButton")->click();
    QCOMPARE(clipboard(), u"three\ntwo\none"_s);
    stage.table().selectRow(1);
    // What is selected stays so when another title comes.
    stage.hear(u"four"_s);
    stage.hearNothing();
    QTest::keyClick(&stage.table(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), u"two"_s);

    QAccessibleInterface *table = QAccessible::queryAccessibleInterface(&stage.table());
    QVERIFY(!table->text(QAccessible::Name).isEmpty());
    const QAccessibleInterface *cell = table->tableInterface()->cellAt(0, 1);
    QCOMPARE(cell->role(), QAccessible::Cell);
    QCOMPARE(cell->text(QAccessible::Name), u"four"_s);
}

void TestInfo::titlesAreSaved()
{
    InfoWindow stage;
    stage.play(u"station"_s);
    stage.hear(u"=A \"B\""_s);
    stage.hearNothing();
    QCOMPARE(stage.titles().size(), 1);
    QTemporaryDir folder;
    const auto saveAs = [&stage](const QString &path) {
        stage.find<QAbstractButton>("saveCsvButton")->click();
        auto *dialog = stage.window->findChild<QFileDialog *>();
        QVERIFY(QFileInfo(dialog->selectedFiles().value(0)).fileName().endsWith(u".csv"_s));
        Q_EMIT dialog->fileSelected(path);
        dialog->close();
        QTRY_VERIFY(stage.window->findChild<QFileDialog *>() == nullptr);
    };
    const QString path = folder.filePath(u"titles.csv"_s);
    saveAs(path);
    QTRY_COMPARE(stage.text("saveMessage"), u"Saved."_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(0), "Time,Station,Title\r");
    QVERIFY(lines.at(1).endsWith(",\"station\",\"'=A \"\"B\"\"\"\r"));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^cannot save titles: .+"_s));
    saveAs(folder.filePath(u"nowhere/titles.csv"_s));
    QTRY_VERIFY(stage.text("saveMessage").startsWith(u"Not saved: "_s));
    QVERIFY(stage.popover().isShown());
}

QTEST_MAIN(TestInfo)
#include "tst_info.moc"
