#include "mainwindow/mainwindow.h"
#include "playback/mpv/mpvbackend.h"
#include "support/localradio.h"
#include "support/pitch.h"
#include "support/scriptedserver.h"
#include "ui/rvtableview.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QSettings>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QToolButton>
#include <clocale>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {
constexpr int soundTime = 15'000;
constexpr double quarterTone = 1.0293;
/// About four seconds of MP3 at 128 kbit/s.
constexpr int burstBytes = 64'000;

/// The real window and the real player before a directory.
struct Stage
{
    Stage(const QString &address, AudioOutput output)
        : backend(std::move(output))
        , settings(QSettings::NativeFormat, QSettings::UserScope, u"plumtide"_s, u"plumtide"_s)
        , window({{.baseAddress = address + u'/'}, address}, backend)
    {
        std::setlocale(LC_NUMERIC, "C");
        settings.clear();
        QObject::connect(&window.player().streamPlayback(), &StreamPlayback::statusChanged,
                         [this](const QString &text) {
                             if (statuses.isEmpty() || statuses.constLast() != text) {
                                 statuses.append(text);
                             }
                         });
        window.show();
    }

    RVTableView *table() { return window.findChild<RVTableView *>(u"myTableView"_s); }
    QString text(const QString &label) { return window.findChild<QLabel *>(label)->text(); }
    void doubleClick(int row)
    {
        statuses.clear();
        const QPoint position = table()->visualRect(table()->model()->index(row, 1)).center();
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, position);
        QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, position);
    }
    void click(const QString &button) { window.findChild<QToolButton *>(button)->click(); }

    MpvBackend backend;
    QSettings settings;
    MainWindow window;
    QStringList statuses;
};

const QStringList healthyStart{u"Connecting please wait.."_s, u"Buffering .."_s, u"- Streaming -"_s};
} // namespace

class TestHearAStation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void stationsAreHeard();
    void pauseKeepsTheConnection();
    void lostConnectionsAreNoticed();
    void deadStationsEndInTheirTexts_data();
    void deadStationsEndInTheirTexts();

private:
    LocalRadio radio_;
};

void TestHearAStation::initTestCase()
{
    QVERIFY(radio_.isRunning());
}

/// One station after the other, one of each format: the sound that is written is the last one's, alone.
void TestHearAStation::stationsAreHeard()
{
    QTemporaryDir folder;
    const QString sound = folder.filePath(u"sound.wav"_s);
    Stage stage(radio_.address(), *AudioOutput::fromText(u"pcm:"_s + sound));
    QTRY_COMPARE(stage.table()->model()->rowCount(), 500);

    for (const int row : {3, 1, 2}) {
        const QJsonObject station = radio_.stations().at(row).toObject();
        const double pitch = station.value("pitch"_L1).toDouble();
        stage.doubleClick(row);
        QCOMPARE(stage.text(u"playerStatusString"_s), station.value("name"_L1).toString());
        QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, healthyStart, soundTime);
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(std::log(strongestPitch(sound) / pitch)) < std::log(quarterTone),
                                 soundTime);
    }

    stage.click(u"transportStopButton"_s);
    QCOMPARE(stage.text(u"playerStatusString"_s), u"idle"_s);
    QCOMPARE(stage.text(u"subtitleStatusString"_s), u"Terminated / lost connection"_s);
    QTRY_COMPARE_WITH_TIMEOUT(radio_.logged(u"closed"_s).size(), 3, soundTime);
}

void TestHearAStation::pauseKeepsTheConnection()
{
    Stage stage(radio_.address(), *AudioOutput::fromText(u"null"_s));
    QTRY_COMPARE(stage.table()->model()->rowCount(), 500);
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, healthyStart, soundTime);
    const auto requests = radio_.logged(u"request"_s).size();

    stage.statuses.clear();
    stage.click(u"transportPlayButton"_s);
    // What is loaded meanwhile does not talk over the pause.
    QSignalSpy anything(&stage.window.player().streamPlayback(), &StreamPlayback::statusChanged);
    QVERIFY(!anything.wait(2500));
    stage.click(u"transportPlayButton"_s);
    QTRY_COMPARE(stage.statuses, (QStringList{u"Paused (buffering in background)"_s, u"- Streaming -"_s}));
    QCOMPARE(radio_.logged(u"request"_s).size(), requests);
}

/// A server that falls silent: the sound ends when the buffer has run out, and so does the player.
void TestHearAStation::lostConnectionsAreNoticed()
{
    QTcpSocket radio;
    radio.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(QUrl(radio_.address()).port()));
    radio.write("GET " + radio_.stations().at(0)["streams"_L1][0].toString().toLatin1() +
                " HTTP/1.0\r\n\r\n");
    QByteArray burst;
    QTRY_VERIFY((burst += radio.readAll()).size() > burstBytes);

    ScriptedServer server;
    server.scriptBody("/legacy/Top500/", "<l><tunein base='/tune'/><station name='dying' id='1'/></l>");
    server.scriptBody("/tune", server.address(u"/dying"_s).toLatin1());
    server.script("/dying", burst.first(burstBytes), ScriptedServer::After::StayOpen);
    Stage stage(server.address(), *AudioOutput::fromText(u"null"_s));
    QTRY_COMPARE(stage.table()->model()->rowCount(), 1);
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.text(u"playerStatusString"_s), u"idle"_s, soundTime);
    QCOMPARE(stage.statuses.first(3), healthyStart);
    QCOMPARE(stage.statuses.mid(stage.statuses.size() - 3),
             (QStringList{u"Buffering .."_s, u"Lost connection !"_s, u"Terminated / lost connection"_s}));
    QTRY_COMPARE(server.openConnections(), 0);
}

void TestHearAStation::deadStationsEndInTheirTexts_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::addColumn<QStringList>("statuses");
    const QString connecting = u"Connecting please wait.."_s;
    const QString silent = u"Server is not responding"_s;
    const QStringList failed{connecting, u"Failed"_s, u"Terminated / lost connection"_s, silent};
    QTest::newRow("never answers") << QByteArray("/silent")
                                   << QStringList{connecting, u"Terminated / lost connection"_s, silent};
    QTest::newRow("404") << QByteArray("/gone") << failed;
    QTest::newRow("refuses") << QByteArray("refused") << failed;
    QTest::newRow("a web page") << QByteArray("/page") << failed;
    QTest::newRow("a file") << QByteArray("file:///etc/passwd") << failed;
}

/// And the next station plays.
void TestHearAStation::deadStationsEndInTheirTexts()
{
    QFETCH(QByteArray, playlist);
    ScriptedServer server;
    const QByteArray base = server.address().toLatin1();
    const QByteArray entry = playlist == "refused"      ? "http://127.0.0.1:1/"
                             : playlist.startsWith('/') ? base + playlist
                                                        : playlist;
    const QByteArray live =
        (radio_.address() + radio_.stations().at(0)["streams"_L1][0].toString()).toLatin1();
    server.scriptBody("/legacy/Top500/", "<l><tunein base='/tune'/><station name='dead' id='1'/></l>");
    server.scriptBody("/tune", "[playlist]\nFile1=" + entry + "\n");
    server.scriptBody("/gone", "no", "404 Not Found");
    server.scriptBody("/page", "<html><body>" + QByteArray(500, 'x'));

    Stage stage(server.address(), *AudioOutput::fromText(u"null"_s));
    QTRY_COMPARE(stage.table()->model()->rowCount(), 1);
    stage.settings.setValue("timeout_value", 2);
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.text(u"subtitleStatusString"_s), u"Server is not responding"_s,
                              soundTime);
    QTEST(stage.statuses, "statuses");

    server.scriptBody("/tune", "[playlist]\nFile1=http://127.0.0.1:1/\nFile2=" + live + "\n");
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, healthyStart, soundTime);
}

QTEST_MAIN(TestHearAStation)
#include "tst_hearastation.moc"
