#include "support/windowstage.h"
#include "ui/widgets/look.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QSplitter>

using namespace Qt::StringLiterals;

namespace {
const QByteArray someStations = R"(<stationlist><tunein base="/t"/><station name="a" id="1"/></stationlist>)";

/// The window once more, with what an earlier one has kept.
struct NextStart : WindowStage
{
    NextStart()
        : WindowStage(someStations, Start::Next)
    {
    }
    QHeaderView *header() { return table()->horizontalHeader(); }
    QSplitter *lists() { return find<QSplitter>(u"listsSplitter"_s); }
    QStringList titles()
    {
        QStringList titles;
        for (int place = 0; place < header()->count(); ++place) {
            titles.append(
                header()->model()->headerData(header()->logicalIndex(place), Qt::Horizontal).toString());
        }
        return titles;
    }
};

const QStringList usualTitles{u""_s,     u"Station"_s,   u"Genre"_s,        u"kbit/s"_s,
                              u"Type"_s, u"Listeners"_s, u"Current track"_s};
} // namespace

class TestArrangement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QFile::remove(StateFile::path()); }
    void nextStartLooksTheSame();
    void keptNonsenseIsHarmless_data();
    void keptNonsenseIsHarmless();
    void appearanceIsKept();
    void emptyTableSaysWhy_data();
    void emptyTableSaysWhy();
};

void TestArrangement::nextStartLooksTheSame()
{
    QList<int> sizes;
    {
        NextStart start;
        start.window->resize(1000, 700);
        start.header()->moveSection(2, 4);
        start.header()->resizeSection(1, 333);
        start.lists()->setSizes({300, 200});
        Q_EMIT start.lists()->splitterMoved(0, 1);
        sizes = start.lists()->sizes();
        start.window->hide();
    }
    NextStart start;
    QCOMPARE(start.window->size(), QSize(1000, 700));
    QCOMPARE(start.titles(), (QStringList{u""_s, u"Station"_s, u"kbit/s"_s, u"Type"_s, u"Genre"_s,
                                          u"Listeners"_s, u"Current track"_s}));
    QCOMPARE(start.header()->sectionSize(1), 333);
    QTRY_COMPARE(start.lists()->sizes(), sizes);
}

void TestArrangement::keptNonsenseIsHarmless_data()
{
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("geometry") << QByteArray(
        "[window]\ngeometry=2147483647, -2147483648, 0, 2147483647\nmaximised=x\nappearance=9");
    QTest::newRow("no geometry") << QByteArray("[window]\ngeometry=7\nappearance=x");
    QTest::newRow("too few columns") << QByteArray("[columns]\norder=id_status, id_genre");
    QTest::newRow("a column twice") << QByteArray(
        "[columns]\norder=id_status, id_station, id_station, id_genre, id_bitrate, id_type, "
        "id_listener");
    QTest::newRow("another first") << QByteArray(
        "[columns]\norder=id_station, id_status, id_genre, id_bitrate, id_type, "
        "id_listener, id_currenttrack");
    QTest::newRow("widths") << QByteArray("[columns]\nid_station=-5\nid_genre=2147483647\nid_type=wide");
    QTest::newRow("splitter") << QByteArray("[splitters]\nlistsSplitter=0, 0");
    QTest::newRow("splitter of three") << QByteArray("[splitters]\nlistsSplitter=1, 2, 3");
    QTest::newRow("no numbers") << QByteArray("[splitters]\nlistsSplitter=a, b");
}

void TestArrangement::keptNonsenseIsHarmless()
{
    QFETCH(QByteArray, kept);
    QDir().mkpath(QFileInfo(StateFile::path()).path());
    QFile file(StateFile::path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(kept);
    file.close();
    NextStart start;
    QCOMPARE(start.titles(), usualTitles);
    for (int section = 0; section < start.header()->count(); ++section) {
        QVERIFY(start.header()->sectionSize(section) >= start.header()->minimumSectionSize());
    }
    for (const int size : start.lists()->sizes()) {
        QVERIFY(size > 0);
    }
    QVERIFY(start.window->width() >= start.window->minimumWidth());
}

void TestArrangement::appearanceIsKept()
{
    {
        NextStart start;
        QVERIFY(start.find<QAction>(u"desktopAppearanceAction"_s)->isChecked());
        const QSignalSpy chosen(start.window, &MainWindow::appearanceChosen);
        start.find<QAction>(u"darkAppearanceAction"_s)->trigger();
        QCOMPARE(chosen.size(), 1);
    }
    const NextStart start;
    QCOMPARE(MainWindow::appearance(*start.state), Appearance::Dark);
    QVERIFY(start.window->findChild<QAction *>(u"darkAppearanceAction"_s)->isChecked());
}

void TestArrangement::emptyTableSaysWhy_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("line");
    QTest::newRow("no answer") << QByteArray() << u"No stations. The directory did not answer."_s;
    QTest::newRow("no list") << QByteArray("<html><p>Log in")
                             << u"No stations. The directory's answer cannot be read."_s;
    QTest::newRow("none found") << QByteArray("<stationlist><tunein base=\"/t\"/></stationlist>")
                                << u"No stations found."_s;
}

void TestArrangement::emptyTableSaysWhy()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, line);
    WindowStage stage(answer);
    if (answer.isEmpty()) {
        stage.server.close();
    }
    QCOMPARE(stage.table()->accessibleDescription(), u"Asking the directory..."_s);
    QTRY_COMPARE(stage.table()->accessibleDescription(), line);
}

QTEST_MAIN(TestArrangement)
#include "tst_arrangement.moc"
