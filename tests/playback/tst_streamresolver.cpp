#include "playback/stream/streamrequest.h"
#include "playback/stream/streamresolver.h"
#include "playback/stream/streamsource.h"
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

/// Takes what is offered, and refuses it.
void refuseEverything(StreamResolver &resolver)
{
    QObject::connect(&resolver, &StreamResolver::streamFound, &resolver, [&resolver](StreamSource *stream) {
        stream->setParent(&resolver);
        QMetaObject::invokeMethod(&resolver, &StreamResolver::refused, Qt::QueuedConnection);
    });
}
} // namespace

class TestStreamResolver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void candidates_data();
    void candidates();
    void deadCandidatesLeaveTime();
    void playlistsDoNotMultiply();
    void headersGoToTheirOwner_data();
    void headersGoToTheirOwner();
};

void TestStreamResolver::candidates_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QList<QByteArray>>("asked");
    QTest::addColumn<int>("offered");
    using Targets = QList<QByteArray>;
    QTest::newRow("a stream") << QByteArray("/sound") << Targets{"/sound"} << 1;
    QTest::newRow("a stream with a long burst") << QByteArray("/burst") << Targets{"/burst"} << 1;
    QTest::newRow("a redirect") << QByteArray("/moved") << Targets{"/moved", "/sound"} << 1;
    QTest::newRow("an old server") << QByteArray("/icy") << Targets{"/icy"} << 1;
    QTest::newRow("a playlist") << QByteArray("/list") << Targets{"/list", "/gone", "/moved", "/sound"} << 1;
    QTest::newRow("a name that there is not") << QByteArray("/lost") << Targets{"/lost", "/sound"} << 1;
    QTest::newRow("a playlist named by another")
        << QByteArray("/lists") << Targets{"/lists", "/inner", "/sound"} << 1;
    QTest::newRow("itself") << QByteArray("/self") << Targets{"/self", "/self", "/self", "/self"} << 0;
    QTest::newRow("no place, three times")
        << QByteArray("/full") << Targets{"/full", "/full", "/full", "/full"} << 0;
    QTest::newRow("a web page") << QByteArray("/page") << Targets{"/page"} << 0;
    QTest::newRow("an error page") << QByteArray("/gone") << Targets{"/gone"} << 0;
    QTest::newRow("nothing") << QByteArray("/empty") << Targets{"/empty"} << 0;
    QTest::newRow("too little to be sound") << QByteArray("/crumb") << Targets{"/crumb"} << 0;
    QTest::newRow("too long") << QByteArray("/endless") << Targets{"/endless"} << 0;
}

/// Everything that is offered is refused, so that each candidate comes to light. None is asked for twice.
void TestStreamResolver::candidates()
{
    QFETCH(QByteArray, start);
    ScriptedServer server;
    server.script("/sound", sound, ScriptedServer::After::StayOpen);
    server.script("/burst", sound + QByteArray(2'000'000, '\x01'), ScriptedServer::After::StayOpen);
    server.script("/moved", "HTTP/1.0 302 x\r\nLocation: /sound\r\n\r\n");
    server.script("/icy", "ICY 200 OK\r\nicy-name: x\r\n\r\n" + QByteArray(2000, '\x01'),
                  ScriptedServer::After::StayOpen);
    server.scriptBody("/gone", QByteArray(2000, '\x01'), "404 Not Found");
    server.scriptBody("/full", "", "503 Service Unavailable");
    server.scriptBody("/page", "<html><body>Welcome</body></html>");
    server.scriptBody("/empty", "");
    server.script("/crumb", "HTTP/1.0 200 OK\r\n\r\n" + QByteArray(100, '\x01'));
    server.scriptBody("/list", "[playlist]\nFile1=" + server.address(u"/gone"_s).toLatin1() +
                                   "\nFile2=" + server.address(u"/moved"_s).toLatin1());
    server.scriptBody("/lost", "http://" + missingName + "/x\n" + server.address(u"/sound"_s).toLatin1());
    server.scriptBody("/lists", server.address(u"/inner"_s).toLatin1());
    server.scriptBody("/inner", server.address(u"/sound"_s).toLatin1());
    server.scriptBody("/self", server.address(u"/self"_s).toLatin1());
    server.script("/endless", "HTTP/1.0 200 OK\r\n\r\n[playlist]\n" + QByteArray(300 * 1024, 'x'),
                  ScriptedServer::After::StayOpen);

    StreamResolver resolver({.url = QUrl(server.address(QString::fromLatin1(start))), .timeout = 20});
    const QSignalSpy offered(&resolver, &StreamResolver::streamFound);
    refuseEverything(resolver);
    const QSignalSpy failed(&resolver, &StreamResolver::failed);
    resolver.start();
    QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, 20'000);
    QTEST(server.targets(), "asked");
    QTEST(static_cast<int>(offered.size()), "offered");
    for (const QByteArray &request : server.requests()) {
        QVERIFY(request.contains("User-Agent: Plumtide/"));
        QVERIFY(request.contains("Icy-MetaData: 1"));
    }
}

void TestStreamResolver::deadCandidatesLeaveTime()
{
    ScriptedServer server;
    server.scriptBody("/list",
                      server.address(u"/silent\n"_s).toLatin1() + server.address(u"/live"_s).toLatin1());
    server.script("/live", sound, ScriptedServer::After::StayOpen);
    StreamResolver resolver({.url = QUrl(server.address(u"/list"_s)), .timeout = 3});
    const QSignalSpy found(&resolver, &StreamResolver::streamFound);
    refuseEverything(resolver);
    // Timers go off in their order, however busy the machine is.
    qsizetype foundInTime = 0;
    QTimer timeout;
    connect(&timeout, &QTimer::timeout, &resolver, [&] { foundInTime = found.size(); });
    timeout.setSingleShot(true);
    timeout.start(3000);
    resolver.start();
    QTRY_COMPARE(foundInTime, 1);
}

void TestStreamResolver::playlistsDoNotMultiply()
{
    ScriptedServer server;
    server.scriptBody("/many", (server.address(u"/many"_s).toLatin1() + "\n").repeated(64));
    StreamResolver resolver({.url = QUrl(server.address(u"/many"_s)), .timeout = 10});
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
    refuseEverything(resolver);
    const QSignalSpy failed(&resolver, &StreamResolver::failed);
    resolver.start();
    QTRY_COMPARE(failed.size(), 1);

    QCOMPARE((own ? server : other).targets().constLast(), "/sound");
    for (const QByteArray &sent : server.requests()) {
        QVERIFY(sent.contains(": Mine\r\n") && sent.contains("Authorization: Basic x\r\n"));
        QVERIFY(!sent.contains("Injected") && !sent.contains("Null"));
    }
    for (const QByteArray &sent : other.requests()) {
        QVERIFY(sent.contains("User-Agent: " + StreamAccess::userAgent()));
        QVERIFY(!sent.contains("Mine") && !sent.contains("Basic"));
    }
}

QTEST_GUILESS_MAIN(TestStreamResolver)
#include "tst_streamresolver.moc"
