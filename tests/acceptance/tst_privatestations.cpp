#include "playback/streamresolver.h"
#include "support/localradio.h"
#include "support/stage.h"

#include <QTest>
#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
/// About two seconds of MP3 at 128 kbit/s.
constexpr int burstBytes = 32'000;
const QByteArray credentials = "user:pass";
/// Before the server answers, in milliseconds, and the time-out, in seconds: two such answers, one after the
/// other, would come too late.
constexpr int slowAnswer = 2500;
constexpr int slowTimeout = 4;

/// The values of a header in a request, in order; its name is compared with case.
QList<QByteArray> headersOf(const QByteArray &request, const QByteArray &name)
{
    QList<QByteArray> values;
    for (const QByteArray &line : request.split('\n')) {
        if (line.startsWith(name + ": ")) {
            values.append(line.mid(name.size() + 2).trimmed());
        }
    }
    return values;
}
} // namespace

/// What servers are sent for the stations that the user has entered, and when they are given up.
class TestPrivateStations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void requestsCarryHeaders_data();
    void requestsCarryHeaders();
    void othersGetNoHeaders_data();
    void othersGetNoHeaders();
    void refusedCredentialsFail();
    void slowServersPlay_data();
    void slowServersPlay();
    void cleanupTestCase() { stage_.reset(); }

private:
    /// Plays what `server` has at `path`.
    void play(const ScriptedServer &server, const QString &path, int timeout, bool isPrivate = true);

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

void TestPrivateStations::play(const ScriptedServer &server, const QString &path, int timeout, bool isPrivate)
{
    station_ = std::make_shared<RadioModel>();
    station_->setUrl(isPrivate ? u"http://127.0.0.1"_s : server.address(path + u'?'));
    station_->setPort(QString::number(server.serverPort()));
    station_->setMountpoint(isPrivate ? path : QVariant());
    station_->setUsername(u"user"_s);
    station_->setPassword(u"pass"_s);
    station_->setRadioIsPrivate(isPrivate);
    stage_->settings.setValue("timeout_value", timeout);
    stage_->statuses.clear();
    stage_->window.player().streamPlayback().playRadioCustomWithObject(station_);
}

void TestPrivateStations::requestsCarryHeaders_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QByteArray>("agent");
    const QByteArray builtIn =
        "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) Plumtide/100.0.0 Version/1.0.0";
    QTest::newRow("absent") << QVariant() << builtIn;
    QTest::newRow("0") << QVariant(0) << builtIn;
    QTest::newRow("1") << QVariant(1)
                       << QByteArray("Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) AppleWebKit/537.75.14 "
                                     "(KHTML, like Gecko) Version/7.0.3 Safari/7046A194A");
    QTest::newRow("2") << QVariant(2)
                       << QByteArray("Mozilla/5.0 (Windows NT 6.3; rv:36.0) Gecko/20100101 Firefox/36.0");
    QTest::newRow("3") << QVariant(3) << StreamResolver::userAgent();
}

/// The player's and those of a look alike: the station is a playlist by the name of none.
void TestPrivateStations::requestsCarryHeaders()
{
    ScriptedServer server;
    server.scriptBody("/station", server.address(u"/sound"_s).toLatin1());
    server.script("/sound", burst_, ScriptedServer::After::StayOpen);
    QFETCH(QVariant, stored);
    stage_->settings.setValue("useragent_value", stored);
    if (!stored.isValid()) {
        stage_->settings.remove("useragent_value");
    }
    play(server, u"/station"_s, 4);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    QCOMPARE(server.targets(), (QList<QByteArray>{"/station", "/station", "/sound"}));
    QFETCH(QByteArray, agent);
    for (const QByteArray &request : server.requests()) {
        QCOMPARE(headersOf(request, "User-Agent"), QList<QByteArray>{agent});
        QCOMPARE(headersOf(request, "Authorization"), QList<QByteArray>{"Basic " + credentials.toBase64()});
    }
}

void TestPrivateStations::othersGetNoHeaders_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("next");
    QTest::addColumn<QStringList>("statuses");
    QTest::addColumn<int>("elsewhere");
    const QByteArray redirect = "HTTP/1.0 302 Found\r\nLocation: ELSEWHERE\r\n\r\n";
    // Each by the resolver and by the player.
    QTest::newRow("redirect") << redirect << redirect << Stage::healthyStart << 2;
    QTest::newRow("playlist") << QByteArray("HTTP/1.0 200 OK\r\nContent-Length: 200\r\n\r\nELSEWHERE\n") +
                                     QByteArray(200, '#')
                              << QByteArray() << Stage::healthyStart << 1;
    QTest::newRow("redirect at a reconnect")
        << burst_ << redirect << Stage::healthyStart + Stage::soundsEnd << 0;
}

void TestPrivateStations::othersGetNoHeaders()
{
    ScriptedServer elsewhere;
    elsewhere.script("/sound", burst_, ScriptedServer::After::StayOpen);
    const QByteArray address = elsewhere.address(u"/sound"_s).toLatin1();
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, next);
    ScriptedServer server;
    server.script("/station", first.replace("ELSEWHERE", address));
    if (!next.isEmpty()) {
        server.scriptNext("/station", next.replace("ELSEWHERE", address));
    }
    play(server, u"/station"_s, 4);
    QFETCH(QStringList, statuses);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, statuses, Stage::soundTime);
    QVERIFY(server.requests().size() > 1);
    for (const QByteArray &request : server.requests()) {
        QCOMPARE(headersOf(request, "Authorization").size(), 1);
    }
    QTEST(static_cast<int>(std::min<qsizetype>(elsewhere.requests().size(), 2)), "elsewhere");
    for (const QByteArray &request : elsewhere.requests()) {
        QCOMPARE(headersOf(request, "User-Agent"), QList<QByteArray>{StreamResolver::userAgent()});
        QVERIFY(!request.contains("Authorization"));
    }
}

void TestPrivateStations::refusedCredentialsFail()
{
    ScriptedServer server;
    server.script("/sound", "HTTP/1.0 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"r\"\r\n\r\nNo");
    play(server, u"/sound"_s, 2);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::failure, Stage::soundTime);
    // FFmpeg's, its second one once it knows the method, and the look's.
    QCOMPARE_LE(server.requests().size(), 3);
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
