#include "playback/stream/streamrequest.h"
#include "playback/stream/streamresolver.h"
#include "playback/stream/streamsource.h"
#include "support/scriptedserver.h"

#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QByteArray secret = "s3cret";
const QByteArray userInfo = "user:" + secret;
/// What nobody logs.
QByteArray messages;

const QByteArray sound = "HTTP/1.0 200 OK\r\n\r\n" + QByteArray(5000, '\x01');
constexpr int holdTime = 1000;

/// How often a server, or a proxy, has been told.
qsizetype timesTold(const ScriptedServer &server)
{
    const QList<QByteArray> &requests = server.requests();
    return std::count_if(requests.cbegin(), requests.cend(), [](const QByteArray &request) {
        return request.contains(secret) || request.contains(userInfo.toBase64());
    });
}
} // namespace

/// Who learns what is for one server alone.
class TestCredentials : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whoLearnsThem_data();
    void whoLearnsThem();

private:
    QSslConfiguration certificate_;
    QTemporaryFile trusted_;
};

void TestCredentials::initTestCase()
{
    certificate_ = ScriptedServer::makeCertificate();
    QVERIFY(!certificate_.isNull() && trusted_.open());
    trusted_.write(certificate_.localCertificate().toPem());
    trusted_.close();
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { messages += text.toUtf8() + '\n'; });
}

void TestCredentials::whoLearnsThem_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("server");
    QTest::addColumn<QByteArray>("road");
    for (const char *kind : {"header", "user info", "query"}) {
        for (const char *server : {"http", "trusted", "unknown", "wrong name", "held"}) {
            for (const char *road : {"direct", "redirect", "playlist", "reconnect", "segment", "proxy"}) {
                QTest::addRow("%s, %s, %s", kind, server, road)
                    << QByteArray(kind) << QByteArray(server) << QByteArray(road);
            }
        }
    }
}

void TestCredentials::whoLearnsThem()
{
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, server);
    QFETCH(QByteArray, road);
    const bool isQuery = kind == "query";
    const bool isEncrypted = server != "http";
    const bool isVerified = server == "trusted" || server == "held";

    ScriptedServer own;
    ScriptedServer other;
    ScriptedServer proxy;
    if (isEncrypted) {
        own.encrypt(certificate_, server == "held" ? holdTime : 0);
        qputenv("SSL_CERT_FILE", server == "unknown" ? "/dev/null" : trusted_.fileName().toLocal8Bit());
    }
    const QByteArray elsewhere = other.address().toLatin1();
    const QByteArray redirect = "HTTP/1.0 302 x\r\nLocation: " + elsewhere + "/sound\r\n\r\n";
    own.script("/redirect", redirect);
    own.scriptBody("/playlist", elsewhere + "/sound\n");
    own.scriptBody("/segment",
                   "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXT-X-PLAYLIST-TYPE:VOD\n#EXTINF:1,\nsound\n"
                   "#EXTINF:1,\n" +
                       elsewhere + "/sound\n#EXT-X-ENDLIST\n");
    for (ScriptedServer *each : {&own, &other, &proxy}) {
        if (road != "segment") {
            each->script("/sound", sound, ScriptedServer::After::StayOpen);
        } else {
            each->scriptBody("/sound", QByteArray(5000, '\x47'));
        }
    }
    if (road == "proxy") {
        qputenv("http_proxy", proxy.address().toLatin1());
        qputenv("https_proxy", proxy.address().toLatin1());
    }

    const bool isNamedPath = road == "redirect" || road == "playlist" || road == "segment";
    QUrl url(own.address(u'/' + QString::fromLatin1(isNamedPath ? road : "sound")));
    StreamRequest request{.url = url, .timeout = 20};
    if (server == "wrong name") {
        url.setHost(u"127.0.0.1"_s);
    }
    if (isQuery) {
        url.setQuery(QString::fromLatin1("token=" + secret));
    } else if (kind == "user info") {
        url.setUserInfo(QString::fromLatin1(userInfo));
    } else {
        request.headers = {{"X-Key", secret}};
    }
    request.url = url;

    StreamResolver resolver(request);
    const auto pipe = std::make_shared<BytePipe>();
    std::unique_ptr<StreamSource> source;
    connect(&resolver, &StreamResolver::streamFound, &resolver, [&](StreamSource *stream) {
        source.reset(stream);
        stream->attach(pipe);
        stream->start();
    });
    const QSignalSpy failed(&resolver, &StreamResolver::failed);
    resolver.start();

    const bool isTold = isQuery || !isEncrypted || isVerified;
    if (road == "proxy" && (isEncrypted || isQuery)) {
        QTRY_VERIFY(!proxy.requests().isEmpty());
        QVERIFY(proxy.requests().constFirst().startsWith("CONNECT ") == isEncrypted);
        QCOMPARE(timesTold(proxy), isEncrypted ? 0 : 1);
        QVERIFY(own.requests().isEmpty());
    } else if (!isTold) {
        QTRY_COMPARE(failed.size(), 1);
        QVERIFY(own.requests().isEmpty());
    } else {
        QTRY_VERIFY(source);
        if (road == "reconnect") {
            own.script("/sound", redirect);
            own.closeConnections();
        }
        const bool leadsElsewhere = road != "direct" && road != "proxy";
        QTRY_COMPARE(other.requests().isEmpty(), !leadsElsewhere);
        // The segments' addresses do not repeat the query.
        const bool isAskedTwice = road == "reconnect" || (road == "segment" && !isQuery);
        QCOMPARE(timesTold(own), isAskedTwice ? 2 : 1);
        QVERIFY(proxy.requests().isEmpty());
    }
    QCOMPARE(timesTold(other), 0);
    QVERIFY(!messages.contains(secret) && !messages.contains(userInfo.toBase64()));
    for (const char *variable : {"SSL_CERT_FILE", "http_proxy", "https_proxy"}) {
        qunsetenv(variable);
    }
}

QTEST_GUILESS_MAIN(TestCredentials)
#include "tst_credentials.moc"
