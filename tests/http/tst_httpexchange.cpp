#include "http/httpclient.h"
#include "http/httpexchange.h"
#include "support/scriptedserver.h"

#include <QScopeGuard>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <array>
#include <atomic>
#include <dlfcn.h>
#include <memory>
#include <netdb.h>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {
const QString silentName = u"silent.invalid"_s;
std::atomic_int lookUpsBegun = 0; // of the silent name
QSemaphore lookUpsToEnd;
std::atomic_int lookUpsEnded = 0;

const QByteArray okay = "HTTP/1.1 200 OK\r\n";

/// "200 body", or the fault.
QByteArray outcomeOf(const HttpRequest &request, HttpExchange &exchange)
{
    QByteArray outcome;
    QObject::connect(&exchange, &HttpExchange::finished, &exchange, [&] {
        outcome = QByteArray::number(exchange.response().status) + ' ' + exchange.body();
    });
    QObject::connect(&exchange, &HttpExchange::failed, &exchange, [&outcome](const HttpError &error) {
        static const QHash<int, QByteArray> names{{HttpExchange::NoConnection, "no connection"},
                                                  {HttpExchange::NotHttp, "not HTTP"},
                                                  {HttpExchange::TookTooLong, "too late"},
                                                  {HttpExchange::TooLong, "too long"},
                                                  {HttpExchange::BadRedirect, "bad redirect"}};
        outcome = names.value(error.code) + ": " + error.description.toUtf8();
    });
    exchange.start(request);
    [&outcome] { QTRY_VERIFY(!outcome.isEmpty()); }();
    return outcome;
}

QByteArray outcomeOf(const HttpRequest &request)
{
    HttpExchange exchange;
    return outcomeOf(request, exchange);
}

HttpRequest requestFor(const QString &address)
{
    return {.url = QUrl(address), .isCompressible = true};
}

/// Sets variables of the environment for as long as it lives.
class Variables
{
public:
    explicit Variables(const QHash<QByteArray, QByteArray> &values)
        : names_(values.keys())
    {
        for (auto value = values.cbegin(); value != values.cend(); ++value) {
            qputenv(value.key().constData(), value.value());
        }
    }
    ~Variables()
    {
        for (const QByteArray &name : names_) {
            qunsetenv(name.constData());
        }
    }
    Q_DISABLE_COPY_MOVE(Variables)

private:
    QByteArrayList names_;
};
} // namespace

/// Found before the C library's own: the name server of one name never answers.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **found)
{
    if (name != nullptr && silentName == QLatin1StringView(name)) {
        ++lookUpsBegun;
        lookUpsToEnd.acquire();
        ++lookUpsEnded;
        return EAI_AGAIN;
    }
    static const auto next = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(name, service, hints, found);
}

/// One exchange with servers of all kinds.
class TestHttpExchange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersAreTakenApart_data();
    void answersAreTakenApart();
    void answersAreBounded_data();
    void answersAreBounded();
    void redirectsChangeTheMethod_data();
    void redirectsChangeTheMethod();
    void proxiesAreUsed_data();
    void proxiesAreUsed();
    void credentialsStayAtHome();
    void cookiesLastAsLongAsTheExchange();
    void connectionsAreUsedAgain();
    void nobodyWaitsForANameServer();
};

void TestHttpExchange::answersAreTakenApart_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("outcome");
    const QByteArray body = "200 body";
    const QByteArray chunks = "2;x=y\r\nbo\r\n2\r\ndy\r\n0\r\nt: 1\r\n\r\n";
    const auto coded = [](const QByteArray &coding, const QByteArray &bytes) {
        return okay + "Content-Encoding: " + coding + "\r\n\r\n" + bytes;
    };
    const QByteArray gzip = QByteArray::fromHex("1f8b08000000000002034bca4fa90400b20ba8db04000000");
    const QByteArray deflate = qCompress("body").sliced(4);
    QTest::newRow("until it closes") << QByteArray("HTTP/1.0 200 OK\r\n\r\nbody") << body;
    QTest::newRow("of a length") << okay + "Content-Length: 4\r\n\r\nbodyand more" << body;
    QTest::newRow("in chunks") << okay + "Transfer-Encoding: chunked\r\n\r\n" + chunks << body;
    QTest::newRow("in chunks, after a length")
        << okay + "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks << body;
    QTest::newRow("in chunks, before a length")
        << okay + "Transfer-Encoding: chunked\r\nContent-Length: 99\r\n\r\n" + chunks << body;
    QTest::newRow("LF") << QByteArray("HTTP/1.0 200 OK\nicy-name: D\xe9j\xe0\n\nbody") << body;
    QTest::newRow("without a reason") << QByteArray("HTTP/1.1 200\r\n\r\nbody") << body;
    QTest::newRow("with a blank for one") << QByteArray("HTTP/1.0 200 \nContent-Length: 4\n\nbody") << body;
    QTest::newRow("of nothing") << QByteArray("HTTP/1.1 204 Empty\r\n\r\n") << QByteArray("204 ");
    QTest::newRow("after a word") << QByteArray("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 404 No\r\n\r\nbody")
                                  << QByteArray("404 body");
    QTest::newRow("of an old stream server") << QByteArray("ICY 200 OK\r\nicy-name: x\r\n\r\nbody") << body;
    QTest::newRow("gzip") << coded("gzip", gzip) << body;
    QTest::newRow("deflate") << coded("deflate", deflate) << body;
    QTest::newRow("deflate, bare") << coded("deflate", deflate.sliced(2).chopped(4)) << body;
    for (const QByteArray &broken :
         {QByteArray(), QByteArray("220 mail.example ESMTP\r\n\r\n"),
          QByteArray("HTTP/1.1 200 OK\r\nContent-Le"), okay + "Content-Length: 400\r\n\r\nbody",
          okay + "Content-Length: -1\r\n\r\nbody",
          okay + "Transfer-Encoding: chunked\r\n\r\nx\r\nbody\r\n0\r\n\r\n", coded("gzip", "body"),
          coded("zstd", "body"), coded("gzip, gzip", gzip), coded("gzip\r\nContent-Encoding: gzip", gzip),
          okay + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n"}) {
        QTest::newRow(broken.constData()) << broken << QByteArray("not HTTP");
    }
}

void TestHttpExchange::answersAreTakenApart()
{
    QFETCH(QByteArray, answer);
    ScriptedServer server;
    server.script("/", answer);
    const QByteArray outcome = outcomeOf(requestFor(server.address(u"/"_s)));
    QTEST(outcome.split(':').constFirst(), "outcome");
}

void TestHttpExchange::answersAreBounded_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QByteArray>("fault");
    QTest::newRow("silence") << QByteArray() << QByteArray("too late");
    QTest::newRow("body") << okay + "\r\n" + QByteArray(100'000, 'x') << QByteArray("too long");
    QTest::newRow("line") << okay + "x: " + QByteArray(200'000, 'x') << QByteArray("not HTTP");
    QTest::newRow("head") << okay + QByteArray("x: y\r\n").repeated(12'000) << QByteArray("not HTTP");
    QTest::newRow("words") << QByteArray("HTTP/1.1 102 Wait\r\n\r\n").repeated(4000)
                           << QByteArray("not HTTP");
    QTest::newRow("trailers") << okay + "Transfer-Encoding: chunked\r\n\r\n0\r\n" +
                                     QByteArray("x: y\r\n").repeated(12'000)
                              << QByteArray("not HTTP");
    QTest::newRow("bomb") << okay + "Content-Encoding: deflate\r\n\r\n" +
                                 qCompress(QByteArray(100'000'000, 'x')).sliced(4)
                          << QByteArray("too long");
}

void TestHttpExchange::answersAreBounded()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, fault);
    ScriptedServer server;
    server.script("/", answer, ScriptedServer::After::StayOpen);
    HttpRequest request = requestFor(server.address(u"/"_s));
    request.maximumBytes = 50'000;
    if (answer.isEmpty()) {
        request.deadline = std::chrono::milliseconds(100);
    }
    HttpExchange exchange;
    const QByteArray outcome = outcomeOf(request, exchange);
    QVERIFY2(outcome.startsWith(fault), outcome.constData());
    QCOMPARE(exchange.body().size(), fault == "too long" ? request.maximumBytes : 0);
    QTRY_COMPARE(server.openConnections(), 0);
}

void TestHttpExchange::redirectsChangeTheMethod_data()
{
    QTest::addColumn<bool>("isKept");
    for (const char *status : {"301", "302", "303"}) {
        QTest::newRow(status) << false;
    }
    for (const char *status : {"307", "308"}) {
        QTest::newRow(status) << true;
    }
}

void TestHttpExchange::redirectsChangeTheMethod()
{
    QFETCH(bool, isKept);
    ScriptedServer server;
    server.script("/", QByteArray("HTTP/1.1 ") + QTest::currentDataTag() + " x\r\nLocation: there/\r\n\r\n");
    server.scriptBody("/there/", "x");
    HttpRequest request = requestFor(server.address(u"/"_s));
    request.method = "POST";
    request.body = "form";
    QCOMPARE(outcomeOf(request), QByteArray("200 x"));
    const QByteArray second = server.requests().constLast();
    QVERIFY2(second.startsWith(isKept ? "POST /there/ " : "GET /there/ "), second.constData());
    QCOMPARE(second.endsWith("\r\n\r\nform"), isKept);
    QCOMPARE(second.contains("Content-"), isKept);
}

void TestHttpExchange::proxiesAreUsed_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("asked"); // the proxy
    QTest::addColumn<QByteArray>("outcome");
    const QString http = u"http://radio.invalid/a?b"_s;
    const QByteArray answer = "200 by proxy";
    QTest::newRow("http") << QByteArray("http_proxy") << http << QByteArray("GET http://radio.invalid/a?b ")
                          << answer;
    QTest::newRow("all") << QByteArray("all_proxy") << http << QByteArray("GET http://radio.invalid/a?b ")
                         << answer;
    QTest::newRow("https") << QByteArray("https_proxy") << u"https://radio.invalid/"_s
                           << QByteArray("CONNECT radio.invalid:443 ") << QByteArray("no connection");
    QTest::newRow("another scheme's")
        << QByteArray("https_proxy") << u"OWN/a"_s << QByteArray() << QByteArray("200 own");
    QTest::newRow("exception") << QByteArray("http_proxy no_proxy") << u"OWN/a"_s << QByteArray()
                               << QByteArray("200 own");
    QTest::newRow("nobody there") << QByteArray("http_proxy") << u"OWN/refused"_s << QByteArray()
                                  << QByteArray("no connection");
}

void TestHttpExchange::proxiesAreUsed()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, address);
    QFETCH(QByteArray, asked);
    QFETCH(QByteArray, outcome);
    ScriptedServer proxy;
    proxy.scriptBody("http://radio.invalid/a", "by proxy");
    proxy.scriptBody("radio.invalid:443", "No.", "403 Forbidden");
    ScriptedServer own;
    own.scriptBody("/a", "own");
    if (address.endsWith("refused"_L1)) {
        proxy.close();
    }
    const QByteArrayList names = variable.split(' ');
    QHash<QByteArray, QByteArray> values{{names.constFirst(), proxy.address().toLatin1()}};
    if (names.size() > 1) {
        values.insert(names.constLast(), "elsewhere.invalid,127.0.0.1");
    }
    const Variables variables(values);

    const QByteArray came = outcomeOf(requestFor(address.replace("OWN"_L1, own.address())));
    QVERIFY2(came.startsWith(outcome), came.constData());
    QCOMPARE(came.contains("(the environment sets " + names.constFirst() + ')'), outcome == "no connection");
    QCOMPARE(proxy.requests().size(), asked.isEmpty() ? 0 : 1);
    QVERIFY(proxy.requests().value(0).startsWith(asked));
}

/// What is for one server alone reaches neither those that redirects lead to nor, unencrypted, a proxy.
void TestHttpExchange::credentialsStayAtHome()
{
    ScriptedServer home;
    ScriptedServer proxy;
    ScriptedServer other;
    const QByteArray redirect = "HTTP/1.1 302 x\r\nContent-Length: 0\r\nLocation: ";
    home.script("/", redirect + "http://stranger.invalid/#part\r\n\r\n");
    proxy.script("http://stranger.invalid/",
                 redirect + other.address(u"/a\r\n\r\n"_s).toLatin1().replace("//127", "//user:p%40ss@127"));
    other.script("/a", redirect + home.address(u"/back\r\n\r\n"_s).toLatin1());
    home.scriptBody("/back", "x");
    const Variables variables({{"http_proxy", proxy.address().toLatin1()}});
    HttpRequest request = requestFor(home.address(u"/"_s));
    request.owner = request.url;
    request.headers = {{"User-Agent", "usual"}};
    request.ownerHeaders = {{"Authorization", "Basic x"}, {"user-agent", "mine"}, {"Empty", ""}};
    QCOMPARE(outcomeOf(request), QByteArray("200 x"));
    QCOMPARE(home.targets(), (QByteArrayList{"/", "/back"}));
    for (const QByteArray &asked : home.requests()) {
        QVERIFY(asked.contains("\r\nAuthorization: Basic x\r\n") &&
                asked.contains("\r\nuser-agent: mine\r\n"));
        QVERIFY(asked.contains("\r\nEmpty:\r\n") && !asked.contains("usual"));
    }
    QCOMPARE(proxy.targets(), QByteArrayList{"http://stranger.invalid/"});
    QVERIFY(!proxy.requests().constFirst().contains("uthorization"));
    QVERIFY(proxy.requests().constFirst().contains("\r\nUser-Agent: usual\r\n"));
    QCOMPARE(other.targets(), QByteArrayList{"/a"});
    QVERIFY(other.requests().constFirst().contains("\r\nAuthorization: Basic " +
                                                   QByteArray("user:p@ss").toBase64() + "\r\n"));
}

void TestHttpExchange::cookiesLastAsLongAsTheExchange()
{
    ScriptedServer server;
    const QByteArray elsewhere = "http://localhost:" + QByteArray::number(server.serverPort());
    const QByteArray redirect = "HTTP/1.1 302 x\r\nContent-Length: 0\r\nLocation: ";
    server.script("/", redirect + "/in\r\nSet-Cookie: a=b\r\nSet-Cookie: c=d; Path=/else\r\n"
                                  "Set-Cookie: e=f; Domain=elsewhere.example\r\n\r\n");
    server.script("/in", redirect + elsewhere + "/out\r\n\r\n");
    server.scriptBody("/out", "x");
    for (int exchange = 0; exchange < 2; ++exchange) {
        QCOMPARE(outcomeOf(requestFor(server.address(u"/"_s))), QByteArray("200 x"));
    }
    QCOMPARE(server.targets(), (QByteArrayList{"/", "/in", "/out", "/", "/in", "/out"}));
    for (const QByteArray &asked : server.requests()) {
        QCOMPARE(asked.contains("\r\nCookie: a=b\r\n"), asked.startsWith("GET /in "));
        QCOMPARE(asked.contains("Cookie:"), asked.startsWith("GET /in "));
    }
}

void TestHttpExchange::connectionsAreUsedAgain()
{
    const QByteArray answer = okay + "Content-Length: 1\r\n\r\nx";
    ScriptedServer server;
    server.script("/", answer, ScriptedServer::After::StayOpen);
    const QSignalSpy connected(&server, &QTcpServer::newConnection);
    const HttpRequest request = requestFor(server.address(u"/"_s));
    QCOMPARE(outcomeOf(request), QByteArray("200 x"));
    QCOMPARE(outcomeOf(request), QByteArray("200 x"));
    QCOMPARE(connected.size(), 1);
    // The server has had enough of it in the meantime.
    server.closeConnections();
    QCOMPARE(outcomeOf(request), QByteArray("200 x"));
    QCOMPARE(connected.size(), 2);

    std::array<ScriptedServer, 6> others;
    const auto open = [&] {
        return std::accumulate(others.cbegin(), others.cend(), server.openConnections(),
                               [](int sum, const auto &other) { return sum + other.openConnections(); });
    };
    for (ScriptedServer &other : others) {
        other.script("/", answer, ScriptedServer::After::StayOpen);
        QCOMPARE(outcomeOf(requestFor(other.address(u"/"_s))), QByteArray("200 x"));
    }
    QTRY_COMPARE(open(), 4);
    // As at the end of the program.
    delete &HttpClient::instance();
    QTRY_COMPARE(open(), 0);
    QCOMPARE(outcomeOf(request), QByteArray("200 x"));
}

void TestHttpExchange::nobodyWaitsForANameServer()
{
    const auto ended = qScopeGuard([] {
        lookUpsToEnd.release(3);
        QTRY_COMPARE(lookUpsEnded, 3);
    });
    const HttpRequest request = requestFor(u"http://"_s + silentName + u"/"_s);
    for (int way = 0; way < 3; ++way) {
        auto exchange = std::make_unique<HttpExchange>();
        const QSignalSpy failed(exchange.get(), &HttpExchange::failed);
        exchange->start(request);
        QTRY_COMPARE(lookUpsBegun, way + 1);
        if (way == 0) {
            exchange->cancel();
        } else if (way == 1) {
            exchange.reset();
        } else {
            delete &HttpClient::instance();
        }
        QCOMPARE(lookUpsEnded, 0);
        QCOMPARE(failed.size(), 0);
    }
    ScriptedServer server;
    server.scriptBody("/", "x");
    QCOMPARE(outcomeOf(requestFor(server.address(u"/"_s))), QByteArray("200 x"));
}

QTEST_GUILESS_MAIN(TestHttpExchange)
#include "tst_httpexchange.moc"
