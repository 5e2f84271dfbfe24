#include "http/httpexchange.h"
#include "support/scriptedserver.h"

#include <QSslCertificate>
#include <QTemporaryFile>
#include <QTest>
#include <optional>

using namespace Qt::StringLiterals;

/// Who is let in over TLS, and that what they say arrives whole.
class TestEncrypted : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void certificatesAreVerified_data();
    void certificatesAreVerified();
};

void TestEncrypted::certificatesAreVerified_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("isTrusted");
    QTest::addColumn<bool>("isLetIn");
    QTest::newRow("trusted") << u"localhost"_s << true << true;
    QTest::newRow("of an unknown maker") << u"localhost"_s << false << false;
    QTest::newRow("of another name") << u"127.0.0.1"_s << true << false;
}

void TestEncrypted::certificatesAreVerified()
{
    QFETCH(QString, host);
    QFETCH(bool, isTrusted);
    QFETCH(bool, isLetIn);
    // More than is read ahead, and its end is that of the connection.
    const QByteArray body(3'000'000, 'x');
    const QSslConfiguration certificate = ScriptedServer::makeCertificate();
    QVERIFY(!certificate.isNull());
    ScriptedServer server;
    server.encrypt(certificate);
    server.script("/", "HTTP/1.0 200 OK\r\n\r\n" + body);
    QTemporaryFile trusted;
    QVERIFY(trusted.open());
    trusted.write(certificate.localCertificate().toPem());
    trusted.close();
    if (isTrusted) {
        qputenv("SSL_CERT_FILE", QFile::encodeName(trusted.fileName()));
    }

    HttpExchange exchange;
    std::optional<int> fault;
    connect(&exchange, &HttpExchange::finished, &exchange, [&fault] { fault = 0; });
    connect(&exchange, &HttpExchange::failed, &exchange,
            [&fault](const HttpError &error) { fault = error.code; });
    exchange.start({.url = QUrl(u"https://%1:%2/"_s.arg(host).arg(server.serverPort()))});
    QTRY_VERIFY(fault.has_value());
    qunsetenv("SSL_CERT_FILE");

    QCOMPARE(*fault, isLetIn ? 0 : int{HttpExchange::NoConnection});
    QCOMPARE(exchange.body(), isLetIn ? body : QByteArray());
    QCOMPARE(server.targets(), isLetIn ? QByteArrayList{"/"} : QByteArrayList());
}

QTEST_GUILESS_MAIN(TestEncrypted)
#include "tst_encrypted.moc"
