#include "support/localradio.h"
#include "support/pitch.h"
#include "support/stage.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
/// About four seconds of MP3 at 128 kbit/s.
constexpr int burstBytes = 64'000;
} // namespace

class TestHearAStation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void stationsAreHeard();
    void pauseKeepsTheConnection();
    void lostConnectionsAreNoticed();

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

    for (const int row : {3, 1, 2}) {
        const QJsonObject station = radio_.stations().at(row).toObject();
        const double pitch = station.value("pitch"_L1).toDouble();
        stage.doubleClick(row);
        QCOMPARE(stage.text(u"playerStatusString"_s), station.value("name"_L1).toString());
        QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
        QTRY_VERIFY_WITH_TIMEOUT(hasPitch(sound, pitch), Stage::soundTime);
    }

    stage.click(u"transportStopButton"_s);
    QCOMPARE(stage.text(u"playerStatusString"_s), u"idle"_s);
    QCOMPARE(stage.text(u"subtitleStatusString"_s), u"Terminated / lost connection"_s);
    QTRY_COMPARE_WITH_TIMEOUT(radio_.logged(u"closed"_s).size(), 3, Stage::soundTime);
}

void TestHearAStation::pauseKeepsTheConnection()
{
    Stage stage(radio_.address());
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    const auto requests = radio_.logged(u"request"_s).size();

    stage.statuses.clear();
    stage.click(u"transportPlayButton"_s);
    // What is loaded meanwhile does not talk over the pause.
    const QStringList paused{u"Paused (buffering in background)"_s};
    const int before = stage.backend.heardStream().info().buffered;
    QTRY_VERIFY_WITH_TIMEOUT(stage.backend.heardStream().info().buffered > before + 1, Stage::soundTime);
    QCOMPARE(stage.statuses, paused);
    stage.click(u"transportPlayButton"_s);
    QTRY_COMPARE(stage.statuses, paused + QStringList{u"- Streaming -"_s});
    QCOMPARE(radio_.logged(u"request"_s).size(), requests);
}

/// A server that falls silent, and for good: the sound ends when the buffer has run out, and so does the
/// player.
void TestHearAStation::lostConnectionsAreNoticed()
{
    OneStationDirectory server;
    server.leadTo({server.address(u"/dying"_s).toLatin1()});
    server.script("/dying", radio_.beginning(0, burstBytes), ScriptedServer::After::StayOpen);
    Stage stage(server.address());
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    server.scriptBody("/dying", "Gone", "404 Not Found");
    QTRY_COMPARE_WITH_TIMEOUT(stage.text(u"playerStatusString"_s), u"idle"_s, Stage::soundTime);
    QCOMPARE(stage.statuses, Stage::healthyStart + Stage::soundsEnd);
    QTRY_COMPARE(server.openConnections(), 0);
}

QTEST_MAIN(TestHearAStation)
#include "tst_hearastation.moc"
