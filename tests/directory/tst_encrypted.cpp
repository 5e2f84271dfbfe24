#include "directory/httpexchange.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTemporaryDir>
#include <QTest>
#include <optional>

using namespace Qt::StringLiterals;

namespace {
/// On a loopback port, over TLS. Keeps what it is asked, and answers with `answer`.
class EncryptedServer : public QSslServer
{
public:
    explicit EncryptedServer(const QByteArray &answer)
    {
        connect(this, &QTcpServer::pendingConnectionAvailable, this, [this, answer] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, answer] {
                requests += socket->readAll();
                socket->write(answer);
                socket->disconnectFromHost();
            });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
    }

    QByteArray requests;
};
} // namespace

/// Who is let in over TLS, and that what he says comes whole.
class TestEncrypted : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void certificatesAreVerified_data();
    void certificatesAreVerified();

private:
    QSslConfiguration own_;
};

void TestEncrypted::initTestCase()
{
    const QTemporaryDir folder;
    const QString key = folder.filePath(u"key"_s);
    const QString certificate = folder.filePath(u"certificate"_s);
    QProcess openssl;
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
                   u"-nodes"_s, u"-keyout"_s, key, u"-out"_s, certificate, u"-days"_s, u"2"_s, u"-subj"_s,
                   u"/CN=localhost"_s, u"-addext"_s, u"subjectAltName=DNS:localhost"_s});
    QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
    QFile keyFile(key);
    QVERIFY(keyFile.open(QIODevice::ReadOnly));
    own_.setPrivateKey(QSslKey(&keyFile, QSsl::Ec));
    own_.setLocalCertificate(QSslCertificate::fromPath(certificate).value(0));
    QVERIFY(!own_.privateKey().isNull() && !own_.localCertificate().isNull());
}

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
    EncryptedServer server("HTTP/1.0 200 OK\r\n\r\n" + body);
    server.setSslConfiguration(own_);
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    QSslConfiguration trusting = usual;
    trusting.setCaCertificates(isTrusted ? QList{own_.localCertificate()} : QList<QSslCertificate>());
    QSslConfiguration::setDefaultConfiguration(trusting);

    HttpExchange exchange;
    std::optional<int> fault;
    connect(&exchange, &HttpExchange::finished, &exchange, [&fault] { fault = 0; });
    connect(&exchange, &HttpExchange::failed, &exchange,
            [&fault](const HttpError &error) { fault = error.code; });
    exchange.start({.url = QUrl(u"https://%1:%2/"_s.arg(host).arg(server.serverPort()))});
    QTRY_VERIFY(fault.has_value());
    QSslConfiguration::setDefaultConfiguration(usual);

    QCOMPARE(*fault, isLetIn ? 0 : int{HttpExchange::NoConnection});
    QCOMPARE(exchange.body(), isLetIn ? body : QByteArray());
    QCOMPARE(server.requests.startsWith("GET / "), isLetIn);
}

QTEST_GUILESS_MAIN(TestEncrypted)
#include "tst_encrypted.moc"
