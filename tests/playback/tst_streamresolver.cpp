#include "playback/streamresolver.h"
#include "support/scriptedserver.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {
/// Longer than a name may be: it is known not to be there without asking a name server.
const QByteArray missingName = (QByteArray(63, 'a') + '.').repeated(4) + "invalid";

const QByteArray sound =
    "HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\n\x07<html>" + QByteArray(2000, '\x01');
} // namespace

class TestStreamResolver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void candidates_data();
    void candidates();
    void deadCandidatesLeaveTime();
    void whatIsNoStreamIsFoundOut();
    void playlistsDoNotMultiply();
    void headersGoToTheirOwner_data();
    void headersGoToTheirOwner();
};

void TestStreamResolver::candidates_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QStringList>("offered");
    QTest::newRow("a stream") << QByteArray("/sound") << QStringList{u"/sound"_s, u"/sound"_s};
    QTest::newRow("a stream with a long burst")
        << QByteArray("/burst") << QStringList{u"/burst"_s, u"/burst"_s};
    QTest::newRow("a redirect") << QByteArray("/moved") << QStringList{u"/sound"_s, u"/sound"_s};
    QTest::newRow("an old server") << QByteArray("/icy") << QStringList{u"/icy"_s, u"/icy"_s};
    // Offered unprobed, then probed: the entry that was a redirect is found out.
    QTest::newRow("a playlist") << QByteArray("/list")
                                << QStringList{u"/gone"_s, u"/moved"_s, u"/sound"_s, u"/sound"_s};
    QTest::newRow("a name that there is not") << QByteArray("/lost") << QStringList{u"/sound"_s, u"/sound"_s};
    QTest::newRow("a playlist named by another")
        << QByteArray("/lists") << QStringList{u"/sound"_s, u"/sound"_s};
    QTest::newRow("itself") << QByteArray("/self") << QStringList{u"/self"_s, u"/self"_s, u"/self"_s};
    QTest::newRow("a web page") << QByteArray("/page") << QStringList{};
    QTest::newRow("an error page") << QByteArray("/gone") << QStringList{};
    QTest::newRow("nothing") << QByteArray("/empty") << QStringList{};
    QTest::newRow("too little to be sound") << QByteArray("/crumb") << QStringList{};
    QTest::newRow("too long") << QByteArray("/endless") << QStringList{};
}

/// Everything that is offered is refused, so that each candidate comes to light.
void TestStreamResolver::candidates()
{
    QFETCH(QByteArray, start);
    ScriptedServer server;
    server.script("/sound", sound, ScriptedServer::After::StayOpen);
    server.script("/burst", sound + QByteArray(2'000'000, '\x01'), ScriptedServer::After::StayOpen);
    server.script("/moved", "HTTP/1.0 302 x\r\nLocation: /sound\r\n\r\n");
    server.script("/icy", "ICY 200 OK\r\nicy-name: x\r\n\r\n" + QByteArray(100, '\x01'),
                  ScriptedServer::After::StayOpen);
    server.scriptBody("/gone", QByteArray(200, '\x01'), "404 Not Found");
    server.scriptBody("/page", "<html><body>Welcome</body></html>");
    server.scriptBody("/empty", "");
    server.script("/crumb", "HTTP/1.0 200 OK\r\n\r\n" + QByteArray(100, '\x01'));
    server.scriptBody("/list", "[playlist]\nFile1=" + server.address(u"/gone"_s).toLatin1() +
                                   "\nFile2=" + server.address(u"/moved"_s).toLatin1());
    server.scriptBody("/lost", "http://" + missingName + "/x\n" + server.address(u"/sound"_s).toLatin1());
    server.scriptBody("/lists", server.address(u"/inner.m3u"_s).toLatin1());
    server.scriptBody("/inner.m3u", server.address(u"/sound"_s).toLatin1());
    server.scriptBody("/self", "http://127.0.0.1:" + QByteArray::number(server.serverPort()) + "/self\n");
    server.script("/endless", "HTTP/1.0 200 OK\r\n\r\n[playlist]\n" + QByteArray(300 * 1024, 'x'),
                  ScriptedServer::After::StayOpen);

    StreamResolver resolver({.url = QUrl(server.address(QString::fromLatin1(start))), .timeout = 10});
    QStringList offered;
    connect(&resolver, &StreamResolver::streamFound, &resolver, [&](const QUrl &stream) {
        offered.append(stream.path());
        QMetaObject::invokeMethod(&resolver, &StreamResolver::refused, Qt::QueuedConnection);
    });
    const QSignalSpy failed(&resolver, &StreamResolver::failed);
    resolver.start();
    QTRY_COMPARE(failed.size(), 1);
    QTEST(offered, "offered");
    QTRY_COMPARE(server.openConnections(), 0);
    for (const QByteArray &request : server.requests()) {
        QVERIFY(request.contains("User-Agent: Plumtide/"));
    }
}

void TestStreamResolver::deadCandidatesLeaveTime()
{
    ScriptedServer server;
    server.scriptBody("/list", "[playlist]\nFile1=http://127.0.0.1:1/silent\nFile2=" +
                                   server.address(u"/live"_s).toLatin1());
    StreamResolver resolver({.url = QUrl(server.address(u"/list"_s)), .timeout = 3});
    const QSignalSpy found(&resolver, &StreamResolver::streamFound);
    // Timers go off in their order, however busy the machine is.
    qsizetype foundInTime = 0;
    QTimer timeout;
    connect(&timeout, &QTimer::timeout, &resolver, [&] { foundInTime = found.size(); });
    timeout.setSingleShot(true);
    timeout.start(3000);
    resolver.start();
    // Nobody refuses the first one; its share of the time runs out.
    QTRY_COMPARE(foundInTime, 2);
    QCOMPARE(found.at(1).at(0).toUrl().path(), u"/live"_s);
}

/// Though nobody refuses it: long before its share of the time has run out.
void TestStreamResolver::whatIsNoStreamIsFoundOut()
{
    ScriptedServer server;
    server.script("/note", "HTTP/1.0 200 OK\r\n\r\nClosed for the night");
    server.script("/sound", sound, ScriptedServer::After::StayOpen);
    server.scriptBody("/list",
                      server.address(u"/note\n"_s).toLatin1() + server.address(u"/sound"_s).toLatin1());
    StreamResolver resolver({.url = QUrl(server.address(u"/list"_s)), .timeout = 60});
    const QSignalSpy found(&resolver, &StreamResolver::streamFound);
    const QSignalSpy dropped(&resolver, &StreamResolver::streamDropped);
    resolver.start();
    QTRY_COMPARE(found.size(), 2);
    QCOMPARE(found.at(1).at(0).toUrl().path(), u"/sound"_s);
    QCOMPARE(dropped.size(), 1);
}

void TestStreamResolver::playlistsDoNotMultiply()
{
    ScriptedServer server;
    server.scriptBody("/many", (server.address(u"/many"_s).toLatin1() + "\n").repeated(64));
    StreamResolver resolver({.url = QUrl(server.address(u"/many"_s)), .timeout = 10});
    connect(&resolver, &StreamResolver::streamFound, &resolver, &StreamResolver::refused,
            Qt::QueuedConnection);
    const QSignalSpy failed(&resolver, &StreamResolver::failed);
    resolver.start();
    QTRY_COMPARE(failed.size(), 1);
    QCOMPARE(server.requests().size(), StreamCandidates::maximumTried);
}

void TestStreamResolver::headersGoToTheirOwner_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("own");
    const QByteArray redirect = "HTTP/1.0 302 x\r\nLocation: ";
    QTest::newRow("redirect") << redirect + "/list\r\n\r\n" << true;
    QTest::newRow("redirect to another port") << redirect + "OTHER/list\r\n\r\n" << false;
    QTest::newRow("redirect there and back") << redirect + "OTHER/back\r\n\r\n" << true;
    QTest::newRow("playlist") << QByteArray("HTTP/1.0 200 OK\r\n\r\nOWN/list") << true;
    QTest::newRow("playlist elsewhere") << QByteArray("HTTP/1.0 200 OK\r\n\r\nOTHER/list") << false;
}

/// Both what is asked here and what the player is to ask.
void TestStreamResolver::headersGoToTheirOwner()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, own);
    ScriptedServer server;
    ScriptedServer other;
    const auto inFull = [&](QByteArray text) {
        return text.replace("OTHER", other.address().toLatin1()).replace("OWN", server.address().toLatin1());
    };
    server.script("/start", inFull(answer));
    other.script("/back", inFull("HTTP/1.0 302 x\r\nLocation: OWN/list\r\n\r\n"));
    for (ScriptedServer *either : {&server, &other}) {
        either->scriptBody("/list", (either->address() + u"/sound"_s).toLatin1());
        either->script("/sound", sound, ScriptedServer::After::StayOpen);
    }
    const StreamRequest request{.url = QUrl(server.address(u"/start"_s)),
                                .headers = {{"user-agent", "Mine"},
                                            {"Authorization", "Basic x"},
                                            {"A", "b\r\nInjected: c"},
                                            {"Injected\n", "c"},
                                            {"Null", QByteArray("\0c", 2)}}};
    StreamResolver resolver(request);
    QUrl last;
    connect(&resolver, &StreamResolver::streamFound, &resolver, [&](const QUrl &stream) {
        last = stream;
        QMetaObject::invokeMethod(&resolver, &StreamResolver::refused, Qt::QueuedConnection);
    });
    const QSignalSpy failed(&resolver, &StreamResolver::failed);
    resolver.start();
    QTRY_COMPARE(failed.size(), 1);

    const HttpHeaders ownHeaders{{"user-agent", "Mine"}, {"Authorization", "Basic x"}};
    const HttpHeaders usual{{"User-Agent", StreamHeaders::userAgent()}};
    QCOMPARE(last, QUrl((own ? server : other).address(u"/sound"_s)));
    QCOMPARE(StreamHeaders(request).forUrl(last), own ? ownHeaders : usual);
    for (const QByteArray &sent : server.requests()) {
        QVERIFY(sent.contains(": Mine\r\n") && sent.contains("Authorization: Basic x\r\n"));
        QVERIFY(!sent.contains("Injected") && !sent.contains("Null"));
    }
    for (const QByteArray &sent : other.requests()) {
        QVERIFY(sent.contains(usual.constFirst().second));
        QVERIFY(!sent.contains("Mine") && !sent.contains("Basic"));
    }
}

QTEST_GUILESS_MAIN(TestStreamResolver)
#include "tst_streamresolver.moc"
