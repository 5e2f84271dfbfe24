#include "playback/privatestream.h"
#include "playback/stream/streamaccess.h"
#include "support/localradio.h"
#include "support/stage.h"

#include <QTest>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
/// About two seconds of MP3 at 128 kbit/s.
constexpr int burstBytes = 32'000;
/// Before the server answers, in milliseconds, and the time-out, in seconds: two such answers, one after the
/// other, would come too late.
constexpr int slowAnswer = 4000;
constexpr int slowTimeout = 7;
/// Seconds in which any machine plays a station, or finds out that it cannot.
constexpr int usualTimeout = 5;
} // namespace

/// What servers are sent for the stations that the user has entered, and when they are given up.
class TestPrivateStations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void requestsCarryHeaders_data();
    void requestsCarryHeaders();
    void othersGetNoHeaders();
    void refusedCredentialsFail();
    void slowServersPlay_data();
    void slowServersPlay();
    void cleanupTestCase() { stage_.reset(); }

private:
    /// Plays what `server` has at `path`.
    void play(const ScriptedServer &server, const QString &path, int timeout, bool isPrivate = true,
              const QString &username = u"user"_s);

    LocalRadio radio_;
    OneStationDirectory directory_;
    QByteArray burst_;
    std::unique_ptr<Stage> stage_;
    StationRecord station_;
};

void TestPrivateStations::initTestCase()
{
    QVERIFY(radio_.isRunning());
    burst_ = radio_.beginning(0, burstBytes);
    QCOMPARE(burst_.size(), burstBytes);
    stage_ = std::make_unique<Stage>(directory_.address());
}

void TestPrivateStations::play(const ScriptedServer &server, const QString &path, int timeout, bool isPrivate,
                               const QString &username)
{
    station_ =
        privateStation(QUrl(server.address()), path, username, username.isNull() ? QVariant() : u"pass"_s);
    if (!isPrivate) {
        station_->setUrl(server.address(path + u'?'));
        station_->setMountpoint(QVariant());
        station_->setRadioIsPrivate(false);
    }
    stage_->settings.setValue("timeout_value", timeout);
    stage_->play(station_);
}

void TestPrivateStations::requestsCarryHeaders_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<QString>("username");
    for (const int stored : {0, 1, 2, 3}) {
        QTest::addRow("%d", stored) << stored << u"user"_s;
    }
    QTest::newRow("no credentials") << 0 << QString();
}

/// Of the playlist and of the stream that it names.
void TestPrivateStations::requestsCarryHeaders()
{
    ScriptedServer server;
    server.scriptBody("/station", server.address(u"/sound"_s).toLatin1());
    server.script("/sound", burst_, ScriptedServer::After::StayOpen);
    QFETCH(int, stored);
    QFETCH(QString, username);
    stage_->settings.setValue("useragent_value", stored);
    play(server, u"/station"_s, usualTimeout, true, username);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    QCOMPARE(server.targets().first(2), (QList<QByteArray>{"/station", "/sound"}));
    HttpHeaders expected = privateStreamHeaders(*station_, stored);
    QCOMPARE(expected.size(), stored == 3 ? 1 : 2);
    if (stored == 3) {
        expected.append({"User-Agent", StreamAccess::userAgent()});
    }
    for (const QByteArray &request : server.requests()) {
        QCOMPARE(request.count("User-Agent: ") + request.count("Authorization: "), 2);
        for (const auto &[name, value] : std::as_const(expected)) {
            QVERIFY(request.contains(name + ": " + value + "\r\n"));
        }
    }
}

/// Servers that a redirect leads to, at the start and when the player takes up a lost connection.
void TestPrivateStations::othersGetNoHeaders()
{
    ScriptedServer elsewhere;
    elsewhere.script("/sound", burst_, ScriptedServer::After::StayOpen);
    const QByteArray redirect =
        "HTTP/1.0 302 Found\r\nLocation: " + elsewhere.address(u"/sound"_s).toLatin1() + "\r\n\r\n";
    ScriptedServer server;
    server.script("/moved", redirect);
    play(server, u"/moved"_s, usualTimeout);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    for (const QByteArray &request : elsewhere.requests()) {
        QVERIFY(request.contains("User-Agent: " + StreamAccess::userAgent()));
        QVERIFY(!request.contains("Authorization"));
    }
    const qsizetype before = elsewhere.requests().size();
    server.script("/lost", burst_, ScriptedServer::After::StayOpen);
    play(server, u"/lost"_s, usualTimeout);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    server.script("/lost", redirect);
    server.closeConnections();
    QTRY_VERIFY_WITH_TIMEOUT(elsewhere.requests().size() > before, Stage::soundTime);
    QVERIFY(server.targets().count("/lost") > 1);
    QVERIFY(!elsewhere.requests().constLast().contains("Authorization"));
}

void TestPrivateStations::refusedCredentialsFail()
{
    ScriptedServer server;
    server.script("/sound", "HTTP/1.0 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"r\"\r\n\r\nNo");
    play(server, u"/sound"_s, usualTimeout);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::failure, Stage::soundTime);
    QCOMPARE(server.requests().size(), 1);
}

void TestPrivateStations::slowServersPlay_data()
{
    QTest::addColumn<bool>("isPrivate");
    QTest::newRow("private") << true;
    QTest::newRow("public") << false;
}

/// Also those that are slow to answer each time.
void TestPrivateStations::slowServersPlay()
{
    ScriptedServer server;
    server.setDelay(slowAnswer);
    server.script("/sound", burst_, ScriptedServer::After::StayOpen);
    QFETCH(bool, isPrivate);
    play(server, u"/sound"_s, slowTimeout, isPrivate);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
}

QTEST_MAIN(TestPrivateStations)
#include "tst_privatestations.moc"
