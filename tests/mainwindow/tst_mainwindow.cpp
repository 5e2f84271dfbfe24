#include "base/exception.h"
#include "playback/keypath.h"
#include "support/clickseries.h"
#include "support/windowstage.h"
#include "ui/genres/genregrid.h"
#include "ui/table/tableaccessibility.h"
#include "ui/widgets/spinner.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTextDocumentFragment>
#include <QToolButton>
#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {
const QByteArray answer = R"(<stationlist><tunein base="/tune.pls"/>
<station name="Station 10" id="1" br="128" lc="20000" mt="audio/mpeg" genre="Pop" ct="A - B"/>
<station name="station 9" id="2" br="64" lc="3" mt="audio/aacp"/>
<station name="&lt;b&gt;&#10;Z" id="3" br="1000" mt="AUDIO/MPEG" genre="Rock &amp; Roll"/>
<station id="4" lc="100" br="x" mt="audio/aac"/></stationlist>)";

struct TableWindow : WindowStage
{
    TableWindow()
        : WindowStage(answer)
    {
    }
};
} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startShowsTheTopStations();
    void cellsShowTheEntries();
    void columnsSort_data();
    void columnsSort();
    void newAnswerComesUnsorted();
    void doubleClickPlays();
    void actionsThatHitNothing();
    void emptyListCannotBePlayed();
    void searchFieldAsksTheDirectory();
    void genresAskTheDirectory();
    void transportCommands();
    void keysGoWhereTheyAreMeant();
    void cellsThatAreHeldFollowTheTable();
    void storedSettingsAreRead();
    void starLevels();
    void closingTheWindow();
    void about();
};

void TestMainWindow::startShowsTheTopStations()
{
    TableWindow stage;
    QCOMPARE(stage.title(), u"idle"_s);
    QCOMPARE(stage.status(), u"Downloading data"_s);
    QVERIFY(stage.find<Spinner>(u"progress"_s)->isAnimating());
    QTRY_COMPARE(stage.status(), u"Download Complete"_s);
    QVERIFY(!stage.find<Spinner>(u"progress"_s)->isAnimating());
    QCOMPARE(stage.table()->model()->rowCount(), 4);
    QVERIFY(!stage.table()->selectionModel()->hasSelection());
    stage.find<QToolButton>(u"audioButton"_s)->click();
    for (QWidget *control : stage.window->findChildren<QWidget *>()) {
        const bool used =
            control->focusPolicy() != Qt::NoFocus || qobject_cast<QToolButton *>(control) != nullptr;
        if (used && control->isVisibleTo(stage.window)) {
            const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(control);
            QVERIFY2(!seen->text(QAccessible::Name).isEmpty(), qPrintable(control->objectName()));
        }
    }
}

void TestMainWindow::cellsShowTheEntries()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    QCOMPARE(stage.column(1), (QStringList{u"Station 10"_s, u"station 9"_s, u"<b> Z"_s, u""_s}));
    QCOMPARE(stage.column(3), (QStringList{u"128"_s, u"64"_s, u"1,000"_s, u"0"_s}));
    QCOMPARE(stage.column(4), (QStringList{u"MP3"_s, u"AAC"_s, u"AUDIO/MPEG"_s, u"audio/aac"_s}));
    QCOMPARE(stage.column(5), (QStringList{u"20,000"_s, u"3"_s, u""_s, u"100"_s}));
    QCOMPARE(stage.cell(0, 6), u"A - B"_s);
    for (const int column : {1, 2}) {
        // A tooltip that is not recognised as HTML would show its escapes.
        const QModelIndex cell = stage.table()->model()->index(2, column);
        const QString tip = cell.data(Qt::ToolTipRole).toString();
        QVERIFY(Qt::mightBeRichText(tip));
        QCOMPARE(QTextDocumentFragment::fromHtml(tip).toPlainText(), cell.data().toString());
    }
    const QAbstractItemModelTester tester(stage.table()->model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);

    auto *stations = static_cast<StationTable *>(stage.table()->model());
    QVERIFY(stations->tableViewObjectValueForTableColumn(nullptr, "id_status"_L1, 3).canConvert<QIcon>());
    QVERIFY(!stations->tableViewObjectValueForTableColumn(nullptr, "id_other"_L1, 0).isValid());
    QVERIFY_THROWS_EXCEPTION(RangeError,
                             stations->tableViewObjectValueForTableColumn(nullptr, "id_genre"_L1, 4));
}

void TestMainWindow::columnsSort_data()
{
    QTest::addColumn<int>("section");
    QTest::addColumn<QStringList>("ascending");
    QTest::newRow("names, naturally") << 1 << QStringList{u""_s, u"<b> Z"_s, u"station 9"_s, u"Station 10"_s};
    QTest::newRow("listeners, as numbers")
        << 5 << QStringList{u"<b> Z"_s, u"station 9"_s, u""_s, u"Station 10"_s};
    QTest::newRow("types, as sent") << 4 << QStringList{u""_s, u"station 9"_s, u"Station 10"_s, u"<b> Z"_s};
}

void TestMainWindow::columnsSort()
{
    QFETCH(int, section);
    QFETCH(QStringList, ascending);
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    stage.clickHeader(section);
    QCOMPARE(stage.column(1), ascending);
    QCOMPARE(stage.window->player().stationTable().stationAt(3).text("name"_L1).simplified(),
             ascending.at(3).simplified());
    if (section == 5) {
        stage.clickHeader(section);
        std::reverse(ascending.begin(), ascending.end());
        QCOMPARE(stage.column(1), ascending);
    }
    stage.doubleClick(stage.middleOf(1));
    QTRY_VERIFY(stage.backend.player != nullptr);
    QCOMPARE(stage.title(), ascending.at(1));
}

void TestMainWindow::newAnswerComesUnsorted()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    stage.clickHeader(1);
    stage.clickHeader(0);
    QCOMPARE(stage.table()->horizontalHeader()->sortIndicatorSection(), 1);
    stage.table()->selectRow(2);
    stage.find<QAction>(u"topStationsAction"_s)->trigger();
    QTRY_COMPARE(stage.column(1).constFirst(), u"Station 10"_s);
    QCOMPARE(stage.table()->horizontalHeader()->sortIndicatorSection(), -1);
    QVERIFY(!stage.table()->selectionModel()->hasSelection());
}

void TestMainWindow::doubleClickPlays()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    stage.doubleClick(stage.middleOf(2));
    QCOMPARE(stage.title(), u"<b> Z"_s);
    QCOMPARE(stage.status(), u"Connecting please wait.."_s);
    QTRY_VERIFY(stage.backend.player != nullptr);
    QCOMPARE(stage.backend.player->item().request.url, QUrl(u"http://tune.example/tune.pls?id=3"_s));

    // Enter plays the current row in the same way.
    QTest::keyClick(stage.table(), Qt::Key_Up);
    QTest::keyClick(stage.table(), Qt::Key_Return);
    QCOMPARE(stage.title(), u"station 9"_s);
    QTRY_COMPARE(stage.backend.journal.lines().count(u"player"_s), 2);
    QCOMPARE(stage.backend.livePlayers, 1);
}

void TestMainWindow::actionsThatHitNothing()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    QTest::ignoreMessage(QtWarningMsg, "UI getting error notified, ignored!");
    stage.doubleClick(QPoint(40, stage.table()->viewport()->height() - 4));
    QCOMPARE(stage.table()->clickedRow(), -1);
    QCOMPARE(stage.title(), u"idle"_s);

    // Without a tune-in record there is no address, and nothing happens at all.
    stage.server.scriptBody("/legacy/Top500/", "<l><station name='x' id='1'/></l>");
    stage.find<QAction>(u"topStationsAction"_s)->trigger();
    QTRY_COMPARE(stage.table()->model()->rowCount(), 1);
    stage.doubleClick(stage.middleOf(0));
    QCOMPARE(stage.title(), u"idle"_s);
    QCOMPARE(stage.status(), u"Download Complete"_s);
}

void TestMainWindow::emptyListCannotBePlayed()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    stage.doubleClick(stage.middleOf(0));
    QTRY_VERIFY(stage.backend.player != nullptr);
    stage.server.scriptBody("/legacy/Top500/", "<l/>");
    stage.find<QAction>(u"topStationsAction"_s)->trigger();
    QTRY_COMPARE(stage.table()->model()->rowCount(), 0);
    stage.doubleClick(QPoint(40, 40));
    QCOMPARE(stage.title(), u"Error playing station"_s);
    QCOMPARE(stage.status(), u"radio data is broken, please try again"_s);
    QCOMPARE(stage.backend.livePlayers, 1);
}

void TestMainWindow::searchFieldAsksTheDirectory()
{
    TableWindow stage;
    QTRY_COMPARE(stage.status(), u"Download Complete"_s);
    auto *field = stage.find<QLineEdit>(u"searchField"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClicks(field, u"jazz rock"_s);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(stage.status(), u"Downloading data"_s);
    QTRY_COMPARE(stage.server.requests().size(), 2);
    QVERIFY(stage.server.targets().at(1).endsWith("&search=jazz+rock"));
}

void TestMainWindow::genresAskTheDirectory()
{
    TableWindow stage;
    QTRY_COMPARE(stage.status(), u"Download Complete"_s);
    const QByteArray search = "/legacy/stationsearch?k=Rk4TnW8pLq2ZbX7m&search=";
    const QByteArray top = "/legacy/Top500/?k=Rk4TnW8pLq2ZbX7m";
    const std::pair<QString, QByteArray> names[] = {
        {u"Trending 500"_s, top},
        {u"Random Stations"_s, "/station/randomstations?k=Rk4TnW8pLq2ZbX7m&f=xml"},
        {u"trending 500"_s, search + "trending+500"},
        {u"random stations"_s, search + "random+stations"},
        {u"Drum and Bass"_s, search + "Drum+and+Bass"},
        {u""_s, search},
    };
    QList<QByteArray> asked = stage.server.targets();
    for (const auto &[name, target] : names) {
        stage.window->player().genreObjectReceiveName(name);
        stage.window->player().genreObjectReceiveName({});
        asked.append(target);
        QTRY_COMPARE(stage.server.targets(), asked);
    }
    // The second click of a double one asks for nothing: what is asked next comes next.
    auto *genres = stage.find<GenreGrid>(u"myCollection"_s);
    const std::pair<QList<quint64>, QByteArray> clicks[] = {{{1, 100}, top}, {{1}, top}};
    for (const auto &[pauses, target] : clicks) {
        clickSeries(*genres->itemAtIndex(0), pauses);
        asked.append(target);
        QTRY_COMPARE(stage.server.targets(), asked);
    }
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
}

void TestMainWindow::transportCommands()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    auto *play = stage.find<QToolButton>(u"transportPlayButton"_s);
    auto *stop = stage.find<QToolButton>(u"transportStopButton"_s);
    play->click();
    stop->click();
    QCOMPARE(stage.title(), u"idle"_s);
    QCOMPARE(play->accessibleName(), u"Play"_s);

    stage.doubleClick(stage.middleOf(0));
    QTRY_VERIFY(stage.backend.player != nullptr);
    stage.backend.player->item().report(KeyPath::loadedTimeRanges, QVariantList{1});
    QCOMPARE(stage.status(), u"- Streaming -"_s);
    QCOMPARE(play->accessibleName(), u"Pause"_s);
    play->click();
    QCOMPARE(play->text(), u"Play"_s);
    QCOMPARE(play->accessibleName(), u"Play"_s);
    QCOMPARE(stage.status(), u"Paused (buffering in background)"_s);
    play->click();
    QCOMPARE(play->text(), u"Pause"_s);

    // The space bar leaves the button's text alone, but not what it shows.
    stage.find<QAction>(u"spaceKeyAction"_s)->trigger();
    QCOMPARE(play->text(), u"Pause"_s);
    QCOMPARE(play->accessibleName(), u"Play"_s);
    QCOMPARE(stage.backend.player->rate(), 0.0F);

    play->setProperty("tag", 201);
    play->click();
    QCOMPARE(stage.backend.player->rate(), 0.0F);
    stop->click();
    QCOMPARE(stage.title(), u"idle"_s);
    QCOMPARE(stage.status(), u"Terminated / lost connection"_s);
    QCOMPARE(play->text(), u"Pause"_s);
    QCOMPARE(stage.backend.livePlayers, 0);
}

void TestMainWindow::keysGoWhereTheyAreMeant()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    QVERIFY(QTest::qWaitForWindowActive(stage.window));
    const QSignalSpy playPause(stage.find<QAction>(u"spaceKeyAction"_s), &QAction::triggered);
    const QSignalSpy stopped(stage.find<QToolButton>(u"transportStopButton"_s), &QToolButton::clicked);
    QTest::keyClick(stage.table(), Qt::Key_N, Qt::ControlModifier);
    QTest::keyClick(stage.table(), Qt::Key_E, Qt::ControlModifier);
    auto *form = stage.find<QWidget>(u"customRadioPopOver"_s);
    auto *title = stage.find<QLineEdit>(u"titleField"_s);
    for (const auto &[name, commands] :
         {std::pair(u"titleField"_s, 0), std::pair(u"switchButton"_s, 0), std::pair(u"searchField"_s, 0),
          std::pair(u"transportStopButton"_s, 0), std::pair(u"volumeSlider"_s, 1),
          std::pair(u"myCollectionView"_s, 2), std::pair(u"myTableView"_s, 3)}) {
        QTest::keyClick(stage.find<QWidget>(name), Qt::Key_Space);
        QVERIFY2(playPause.count() == commands, qPrintable(name));
    }
    QCOMPARE(title->text(), u" "_s);
    QVERIFY(stage.find<QCheckBox>(u"switchButton"_s)->isChecked());
    QCOMPARE(stopped.count(), 1);

    title->setFocus();
    auto *search = stage.find<QLineEdit>(u"searchField"_s);
    QTest::keyClick(title, Qt::Key_F, Qt::ControlModifier);
    QVERIFY(search->hasFocus() && !form->isVisible());
    stage.find<QWidget>(u"audioPopOver"_s)->close();
    QTest::keyClick(search, Qt::Key_Escape);
    QVERIFY(search->hasFocus() && search->text().isEmpty());
    for (const auto key : {Qt::Key_Escape, Qt::Key_Down}) {
        search->setFocus();
        QTest::keyClick(search, key);
        QVERIFY(stage.table()->hasFocus());
    }
    for (const QString &first : {u""_s, u"20,000"_s}) {
        stage.find<QMenu>(u"sortMenu"_s)->actions().at(4)->trigger();
        QCOMPARE(stage.cell(0, 5), first);
    }
}

void TestMainWindow::cellsThatAreHeldFollowTheTable()
{
    installTableAccessibility();
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    QAccessibleInterface *table = QAccessible::queryAccessibleInterface(stage.table());
    QAccessibleInterface *cell = table->tableInterface()->cellAt(1, 3);
    QCOMPARE(cell->text(QAccessible::Name), u"64"_s);
    QCOMPARE(table->child(table->indexOfChild(cell)), cell);
    const QRect place = cell->rect();
    QCOMPARE(table->childAt(place.center().x(), place.center().y()), cell);
    cell->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(stage.title(), u"station 9"_s);

    stage.server.scriptBody("/legacy/Top500/", "<l><station name='x' id='1' br='8'/></l>");
    stage.find<QAction>(u"topStationsAction"_s)->trigger();
    QTRY_COMPARE(stage.table()->model()->rowCount(), 1);
    QVERIFY(!cell->isValid() && cell->text(QAccessible::Name).isEmpty() && cell->rect().isNull());
    cell->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(stage.title(), u"station 9"_s);
    const QAccessible::Id id = QAccessible::uniqueId(cell);
    stage.program.reset();
    QVERIFY(QAccessible::accessibleInterface(id) == nullptr);
}

void TestMainWindow::storedSettingsAreRead()
{
    TableWindow stage;
    QTRY_COMPARE(stage.server.requests().size(), 1);
    QVERIFY(!stage.server.targets().constFirst().contains("limit"));
    {
        QSettings settings(QSettings::NativeFormat, QSettings::UserScope, u"plumtide"_s, u"plumtide"_s);
        settings.setValue("query_value", 100);
        settings.setValue("timeout_value", 20);
    }
    Program second(
        {.baseAddress = stage.server.address(u"/"_s), .tuneInBaseAddress = u"http://tune.example"_s},
        stage.backend, *stage.state);
    QTRY_COMPARE(stage.server.requests().size(), 2);
    QVERIFY(stage.server.targets().at(1).endsWith("&limit=100"));
    second.session.playback().executeSynchAVPlayer(u"http://h/"_s, u"x"_s);
    QTRY_VERIFY(stage.backend.player != nullptr);
    QCOMPARE(stage.backend.player->item().request.timeout, 20.0);
}

void TestMainWindow::starLevels()
{
    QList<int> levels;
    for (const double bitrate :
         {32.0, 64.9, 128.0, 256.0, 0.0, 96.0, 320.0, std::numeric_limits<double>::quiet_NaN()}) {
        levels.append(StationTable::bitrateToStar(bitrate));
    }
    QCOMPARE(levels, (QList<int>{1, 2, 3, 4, 5, 5, 5, 5}));
    QCOMPARE(StationTable::radioItemSortDescriptors(),
             (QList<SortDescriptor>{{u"star"_s, Qt::AscendingOrder}}));
}

void TestMainWindow::closingTheWindow()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    auto closing = MainWindow::Closing::Minimises;
    stage.window->setClosing([&] { return closing; });
    stage.find<QAction>(u"closeWindowAction"_s)->trigger();
    QVERIFY(stage.window->isVisible() && stage.window->isMinimized());
    closing = MainWindow::Closing::Hides;
    stage.doubleClick(stage.middleOf(0));
    QTRY_VERIFY(stage.program->session.playback().myBackendPlayer());
    stage.find<QAction>(u"closeWindowAction"_s)->trigger();
    QVERIFY(!stage.window->isVisible());
    QVERIFY(stage.program->session.playback().myBackendPlayer());
    stage.window->show();
    QCOMPARE(stage.title(), u"Station 10"_s);
    QCOMPARE(stage.table()->model()->rowCount(), 4);
}

void TestMainWindow::about()
{
    TableWindow stage;
    QTRY_COMPARE(stage.table()->model()->rowCount(), 4);
    const auto window = [] {
        const auto all = QApplication::topLevelWidgets();
        const auto found = std::find_if(all.begin(), all.end(), [](const QWidget *widget) {
            return widget->objectName() == u"aboutWindow"_s;
        });
        return found != all.end() ? *found : nullptr;
    };
    QVERIFY(window() == nullptr);
    for (const auto close : {Qt::Key_Escape, Qt::Key_W}) {
        stage.find<QAction>(u"aboutAction"_s)->trigger();
        QVERIFY(window()->isVisible());
        QTRY_VERIFY(window()->isActiveWindow());
        QTest::keyClick(window(), close, close == Qt::Key_W ? Qt::ControlModifier : Qt::NoModifier);
        QTRY_VERIFY(!window()->isVisible());
    }
    for (const QLabel *label : window()->findChildren<QLabel *>()) {
        QVERIFY(label->pixmap().isNull() == !label->text().isEmpty());
        QVERIFY(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
    }
    window()->findChild<QAbstractButton *>(u"copyButton"_s)->click();
    const QString copied = QGuiApplication::clipboard()->text();
    QVERIFY(copied.contains(u"Qt "_s + QString::fromLatin1(qVersion())));
    QVERIFY(copied.contains(u"Expat "_s));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
