#include "localradio/faults/faulthelp.h"

#include <QDir>
#include <QNetworkProxy>
#include <QProcess>
#include <QRegularExpression>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const QByteArray user = "J\xc3\xb6rg";
const QByteArray password = "a:b c";

/// What one client has got so far. On a bare socket: Qt's tells no difference between an end and a reset.
class Client
{
public:
    Client(quint16 port, const QByteArray &target, const QByteArray &headers = {})
        : socket_(::socket(AF_INET, SOCK_STREAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = qToBigEndian(port);
        address.sin_addr.s_addr = qToBigEndian(INADDR_LOOPBACK);
        const QByteArray request = "GET " + target + " HTTP/1.1\r\n" + headers + "\r\n";
        if (::connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0) {
            end_ = "refused";
        } else if (::send(socket_, request.constData(), static_cast<std::size_t>(request.size()),
                          MSG_NOSIGNAL) < 0) {
            end_ = "reset";
        }
    }
    ~Client() { ::close(socket_); }
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

    const QByteArray &bytes()
    {
        std::array<char, 65536> part;
        while (end_ == "open" && bytes_.size() < most) { // of what never ends
            const ssize_t size = ::recv(socket_, part.data(), part.size(), MSG_DONTWAIT);
            if (size > 0) {
                bytes_.append(part.data(), size);
            } else if (size == 0) {
                end_ = "closed";
                ::shutdown(socket_, SHUT_RDWR);
            } else if (errno == EAGAIN) {
                break;
            } else {
                end_ = "reset";
            }
        }
        return bytes_;
    }
    /// What follows the head; everything where the head has no end.
    QByteArray body()
    {
        const qsizetype end = bytes().indexOf("\r\n\r\n");
        return end < 0 ? bytes_ : bytes_.sliced(end + 4);
    }

    /// "open", or how it ended: "closed", "reset" or "refused".
    QByteArray end()
    {
        bytes();
        return end_;
    }

private:
    static constexpr qsizetype most = 20'000'000;

    int socket_;
    QByteArray bytes_;
    QByteArray end_ = "open";
};

/// One way to ask for a fault that the help lists, and what comes.
struct Fault
{
    /// The target; "STREAM" and "PRIVATE" stand for a station's, "fault:" for a search for that.
    const char *request;
    const char *end;
    /// Of the answer, where a dot is any byte; "STATION", "MAIN" and "SECOND" stand for the station and the
    /// ports.
    const char *form;
    /// Of the body in bytes where it ends or stalls, and at least so many where it goes on.
    qsizetype size = -1;
};

/// All of them; at the end of the file, because moc finds no class behind raw strings.
std::span<const Fault> documentedFaults();

} // namespace
Q_DECLARE_METATYPE(Fault)

/// The program with its faults, as clients see it.
class FaultTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        program_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QVERIFY(QDir(directory_.path()).exists());
        const QString key = directory_.filePath(QStringLiteral("key"));
        const QString certificate = directory_.filePath(QStringLiteral("certificate"));
        QCOMPARE(
            QProcess::execute(QStringLiteral("openssl"),
                              QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes "
                                             "-subj /CN=localhost -keyout %1 -out %2")
                                  .arg(key, certificate)
                                  .split(u' ')),
            0);
        program_.start(QStringLiteral(LOCALRADIO_PROGRAM),
                       {QStringLiteral("--tls-key"), key, QStringLiteral("--tls-certificate"), certificate,
                        QStringLiteral("--log"), directory_.filePath(QStringLiteral("log")),
                        QStringLiteral("--faults"), QStringLiteral("--key"), QStringLiteral("k"),
                        QStringLiteral("--user"), QString::fromUtf8(user), QStringLiteral("--password"),
                        QString::fromUtf8(password)});
        port_ = readPort("localradio: listening on ");
        secondPort_ = readPort("localradio: second port on ");
        tlsPort_ = readPort("localradio: encrypted port on ");
        QVERIFY(tlsPort_ != 0 && port_ != 0 && secondPort_ != 0 && port_ != secondPort_);

        Client search(port_, "/legacy/stationsearch?k=k&search=fault");
        QTRY_COMPARE(search.end(), QByteArray("closed"));
        static const QRegularExpression station(QStringLiteral("name=\"Fault: [^\"]+\" [^>]*id=\"(\\d+)\""));
        for (const auto &match : station.globalMatch(QString::fromUtf8(search.body()))) {
            ids_ << match.captured(1).toUtf8();
        }
        QVERIFY(ids_.size() > 1);
    }

    void cleanupTestCase()
    {
        program_.kill();
        program_.waitForFinished();
    }

    void faultsAreAsDocumented_data()
    {
        QTest::addColumn<Fault>("fault");
        for (const Fault &fault : documentedFaults()) {
            QTest::newRow(fault.request) << fault;
        }
    }

    void faultsAreAsDocumented()
    {
        QFETCH(const Fault, fault);
        const QByteArray end = fault.end;
        const auto inFull = [this](QByteArray text) {
            return text.replace("STREAM?", "/stream/STATION?")
                .replace("PRIVATE", "/private/STATION")
                .replace("fault:", "/legacy/stationsearch?k=k&search=fault:")
                .replace("STATION", ids_.first())
                .replace("MAIN", origin(port_))
                .replace("SECOND", origin(secondPort_));
        };
        const QRegularExpression form(QString::fromLatin1(inFull(fault.form)),
                                      QRegularExpression::DotMatchesEverythingOption);
        const auto isAsDocumented = [&form](Client &client) {
            return form.match(QString::fromLatin1(client.bytes())).hasMatch();
        };
        Client client(port_, inFull(fault.request), "Icy-MetaData: 1\r\n");
        if (end == "open") {
            QTRY_VERIFY(isAsDocumented(client) && client.body().size() >= fault.size);
            // As long as the server takes for others, nothing more comes.
            Client other(port_, inFull("STREAM?body=endless&close-after=1000000"));
            QTRY_COMPARE(other.end(), QByteArray("closed"));
        }
        QTRY_COMPARE(client.end(), end);
        QVERIFY2(isAsDocumented(client), client.bytes().left(400).constData());
        if (QByteArray(fault.request).contains("-after=") && fault.size >= 0) {
            QCOMPARE(client.body().size(), fault.size);
        }
        QCOMPARE_GE(client.body().size(), fault.size);
    }

    void everyDocumentedFaultIsTried()
    {
        static const QRegularExpression entry(
            QStringLiteral("^(?: {2}|(    ))([/a-z][a-z:0-9-]*(?:=[a-z][a-z0-9-]*)?)"),
            QRegularExpression::MultilineOption);
        int entries = 0;
        for (const auto &match : entry.globalMatch(QString::fromLatin1(localradio::faultHelp))) {
            const QString name =
                (match.capturedLength(1) > 0 ? QStringLiteral("icy=") : QString()) + match.captured(2);
            QVERIFY2(std::ranges::any_of(documentedFaults(),
                                         [&](const Fault &fault) {
                                             return QString::fromLatin1(fault.request).contains(name);
                                         }),
                     qPrintable(name));
            ++entries;
        }
        QVERIFY(entries > 60);
    }

    void randomBytesAreAlwaysTheSame()
    {
        Client one(port_, stream("body=random&close-after=99999"));
        Client other(secondPort_, stream("body=random&close-after=99999"));
        QTRY_VERIFY(one.end() == "closed" && other.end() == "closed");
        QVERIFY(one.body() == other.body());
    }

    void privateMount_data()
    {
        QTest::addColumn<QByteArray>("credentials");
        QTest::addColumn<QByteArray>("answer");
        const QByteArray right = user + ':' + password;
        QTest::newRow("right") << right << QByteArray("HTTP/1.0 200 ");
        QTest::newRow("longer") << right + ' ' << QByteArray("HTTP/1.1 401 ");
        QTest::newRow("no user") << ':' + password << QByteArray("HTTP/1.1 401 ");
    }

    void privateMount()
    {
        QFETCH(QByteArray, credentials);
        QFETCH(QByteArray, answer);
        Client client(port_, "/private/" + ids_.first() + "?close-after=1000",
                      "Authorization: Basic " + credentials.toBase64() + "\r\n");
        QTRY_COMPARE(client.end(), QByteArray("closed"));
        QVERIFY2(client.bytes().startsWith(answer), client.bytes().constData());
    }

    /// What a search for faults finds leads to no page that is missing; one station leads nowhere at all.
    void everyListedFaultIsServed()
    {
        static const QRegularExpression entry(QStringLiteral("\nFile\\d+=http://127.0.0.1:(\\d+)(/\\S+)\n"));
        for (const QByteArray &id : std::as_const(ids_)) {
            Client playlist(port_, "/sbin/tunein-station.pls?id=" + id);
            QTRY_COMPARE(playlist.end(), QByteArray("closed"));
            for (const auto &match : entry.globalMatch(QString::fromUtf8(playlist.body()))) {
                Client client(match.captured(1).toUShort(), match.captured(2).toUtf8());
                QTRY_VERIFY(client.bytes().contains("\r\n\r\n"));
                QVERIFY2(!client.bytes().contains(" 400 "), client.bytes().left(400).constData());
                QVERIFY(client.body() != "Not found\n"); // which is what the directory says
            }
        }
        Client playlist(port_, "http://radio.example/refused"); // as of a proxy
        QTRY_COMPARE(playlist.end(), QByteArray("closed"));
        const QString port = entry.match(QString::fromUtf8(playlist.body())).captured(1);
        QCOMPARE(Client(port.toUShort(), "/").end(), QByteArray("refused"));
    }

    void outage()
    {
        Client hit(port_, stream("type=a/hit"));
        Client spared(secondPort_, stream("type=a/spared"));
        QTRY_VERIFY(hit.bytes().contains("a/hit") && spared.bytes().contains("a/spared"));

        Client asking(port_, "/outage?seconds=1.5");
        QTRY_COMPARE(hit.end(), QByteArray("reset"));
        QCOMPARE(Client(port_, "/").end(), QByteArray("refused"));
        QTRY_COMPARE(asking.end(), QByteArray("closed"));
        QVERIFY(asking.bytes().contains(" 200 "));
        QCOMPARE(spared.end(), QByteArray("open"));
        const auto isBack = [this] { return Client(port_, "/").end() != "refused"; };
        QTRY_VERIFY(isBack());
    }

    /// The way over a redirect leads to the stream, and a token does so once.
    void admission_data()
    {
        QTest::addColumn<QByteArray>("condition");
        QTest::addColumn<QByteArray>("again");
        QTest::newRow("token") << QByteArray("token") << QByteArray(" 403 ");
        QTest::newRow("cookie") << QByteArray("cookie") << QByteArray(" 200 ");
    }

    void admission()
    {
        QFETCH(QByteArray, condition);
        QFETCH(QByteArray, again);
        Client redirected(port_, stream(condition + "=required&close-after=9"));
        QTRY_COMPARE(redirected.end(), QByteArray("closed"));
        static const QRegularExpression target(QStringLiteral("\nLocation: http://[^/]+(/\\S+)"));
        static const QRegularExpression cookie(QStringLiteral("\nSet-Cookie: ([^;]+)"));
        const auto answer = QString::fromUtf8(redirected.bytes());
        const QByteArray way = target.match(answer).captured(1).toUtf8();
        const QByteArray brought = "Cookie: a=b; " + cookie.match(answer).captured(1).toUtf8() + "\r\n";
        for (const QByteArray &status : {QByteArray(" 200 "), again}) {
            Client client(port_, way, brought);
            QTRY_COMPARE(client.end(), QByteArray("closed"));
            QVERIFY2(client.bytes().contains(status), client.bytes().constData());
        }
    }

    void oneListenerAnAddress()
    {
        const QByteArray target = stream("listeners=1&slot=0.5").replace(ids_.first(), ids_.at(1));
        auto first = std::make_unique<Client>(port_, target);
        QTRY_VERIFY(first->bytes().contains(" 200 "));
        const auto isTaken = [&] {
            Client other(port_, target);
            return QTest::qWaitFor([&] { return other.bytes().contains("\r\n\r\n"); }) &&
                   other.bytes().contains(" 503 ");
        };
        QVERIFY(isTaken());
        first.reset();
        QTest::qWait(100);
        QVERIFY(isTaken());
        QVERIFY(QTest::qWaitFor([&] { return !isTaken(); })); // which takes it
    }

    void silence()
    {
        Client silent(port_, stream("body=endless"));
        Client spared(secondPort_, stream("body=endless"));
        QTRY_VERIFY(silent.bytes().size() > 0 && spared.bytes().size() > 0);
        Client asking(port_, "/silence?seconds=1");
        QTRY_COMPARE(asking.end(), QByteArray("closed"));
        QTest::qWait(200); // for what is on its way
        const qsizetype silentSize = silent.bytes().size();
        const qsizetype sparedSize = spared.bytes().size();
        QTest::qWait(200);
        QCOMPARE(silent.bytes().size(), silentSize);
        QVERIFY(spared.bytes().size() > sparedSize);
        Client fresh(port_, stream("close-after=999"));
        QTRY_COMPARE(fresh.end(), QByteArray("closed"));
        QTRY_VERIFY(silent.bytes().size() > silentSize);
        QCOMPARE(silent.end(), QByteArray("open"));
    }

    /// The same over TLS, directly and through the proxy; and what the log tells of it.
    void encrypted()
    {
        for (const bool proxied : {false, true}) {
            QSslSocket client;
            client.setPeerVerifyMode(QSslSocket::VerifyNone);
            if (proxied) {
                client.setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), port_));
            }
            client.connectToHostEncrypted(proxied ? QStringLiteral("radio.example")
                                                  : QStringLiteral("127.0.0.1"),
                                          proxied ? quint16{443} : tlsPort_);
            QVERIFY2(client.waitForEncrypted(), qPrintable(client.errorString()));
            client.write("GET " + stream("body=endless&close-after=500000") +
                         " HTTP/1.1\r\nAuthorization: Basic secret\r\n\r\n");
            QTRY_COMPARE(client.state(), QAbstractSocket::UnconnectedState);
            QCOMPARE_GE(client.readAll().size(), 500'000);
        }
        QFile file(directory_.filePath(QStringLiteral("log")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray log = file.readAll();
        QVERIFY(log.contains("\"method\":\"CONNECT\"") && log.contains("\"target\":\"radio.example:443\""));
        QVERIFY(log.contains("\"authorization\":true") && log.contains("[\"Authorization\",\"sha256:"));
        QVERIFY(!log.contains("secret"));
    }

private:
    quint16 readPort(const QByteArray &start)
    {
        while (!program_.canReadLine() && program_.waitForReadyRead()) {
        }
        static const QRegularExpression address(
            QStringLiteral("^https?://(?:127\\.0\\.0\\.1|localhost):(\\d+)/\n$"));
        const QByteArray line = program_.readLine();
        return line.startsWith(start)
                   ? address.match(QString::fromUtf8(line.sliced(start.size()))).captured(1).toUShort()
                   : quint16{0};
    }

    static QByteArray origin(quint16 port) { return "http://127.0.0.1:" + QByteArray::number(port); }
    QByteArray stream(const QByteArray &query) const { return "/stream/" + ids_.first() + '?' + query; }

    QProcess program_;
    quint16 port_ = 0;
    quint16 secondPort_ = 0;
    quint16 tlsPort_ = 0;
    QTemporaryDir directory_; // and what the encrypted port needs
    QByteArrayList ids_;      // of the stations with faults
};

namespace {

constexpr Fault faults[] = {
    {"STREAM?status=404&type=a/b%3Bc", "closed", R"(^HTTP/1.1 404 .*Type: a/b;c\r\n.*\nNot Found\n$)"},
    {"STREAM?status=99", "closed", R"(^HTTP/1.1 400 .*\nstatus must be a whole number from 100 to 599\n$)"},
    {"STREAM?redirect=same", "closed", R"(^HTTP/1.1 302 .*\nLocation: MAIN/stream/STATION\r\n)"},
    {"STREAM?redirect=port", "closed", R"(\nLocation: SECOND/stream/STATION\r\n)"},
    {"STREAM?redirect=tls", "closed", R"(\nLocation: https://localhost:\d+/stream/STATION\r\n)"},
    {"STREAM?redirect=loop", "closed", R"(\nLocation: MAIN/stream/STATION\?redirect=loop\r\n)"},
    {"STREAM?redirect=file", "closed", R"(\nLocation: file:///etc/passwd\r\n)"},
    {"STREAM?redirect=x:/?%26&status=308", "closed", R"(^HTTP/1.1 308 .*\nLocation: x:/\?&\r\n)"},
    {"STREAM?body=html&header=Via:%20x", "closed", R"(\nContent-Type: text/html;.*\nVia: x\r\n.*</html>\n$)"},
    {"STREAM?body=random&close-after=999999", "closed", R"(\nContent-Type: audio/mpeg\r\n)", 999'999},
    {"STREAM?body=zeros&close-after=60000", "closed", R"(\r\n\r\n\0{60000}$)"},
    {"STREAM?body=endless&close-after=9000000", "closed", R"(\r\n\r\n.*\xff\xfb)", 9'000'000}, // nine minutes
    {"/kind/ogg-vorbis?body=ogg-packet&close-after=200000", "closed",
     R"(\r\n\r\nOggS.*\xff{99}x{99}.*OggS\0\x01)", 200'000},
    {"/kind/ogg-opus?after=1&body=ogg-packet&close-after=100000", "closed",
     R"(OpusHead.*OggS\0\0\xff{8}.*\xff{255}x)"},
    {"/kind/ogg-flac?body=ogg-second&paced=1&close-after=90000", "closed",
     R"(\r\n\r\nOggS.*FLAC.*OggS.*FLAC.*\xff{16}x.*OggS)"},
    {"/kind/fmp4?body=mp4-atom&close-after=999999", "closed",
     R"(Type: audio/mp4\r\n.*ftypM4A .*covr.{8}\0{3}\r\0{4}x)"},
    {"/kind/fmp4?body=mp4-bomb&close-after=2999999", "closed", R"(\x78\x01\xab\x18\x05\xa3.*\0{99}$)"},
    {"/kind/webm?body=webm-element&close-after=99999", "closed",
     R"(webm.*A_OPUS\x63\xa2\x01\0{3}\x0f\xff\xff\0x)"},
    {"/kind/webm?after=1&body=webm-element&close-after=99999", "closed",
     R"(webm.*\xa3\x01\0{3}\x0f\xff\xff\x04\x81)"},
    {"/kind/mpegts?body=ts-video&close-after=99999", "closed",
     R"(Type: video/mp2t\r\n.*\r\n\r\n\x47\x40\0\x10)"},
    {"/kind/aac?after=1&tag=999999&close-after=9999", "closed",
     R"(\xff\xf1.*ID3\x04\0\0\0\x3d\x04\x3f\0{9})"},
    {"/kind/mp3?after=0.5&close-after=0", "closed", R"(Type: audio/mpeg\r\n)", 8000},
    {"STREAM?after=1&silent-for=2&close-after=999", "closed", "", 16'999},
    {"STREAM?silent-for=1&reset-after=999", "reset", "", 999},
    {"STREAM?after=2&rate=1", "open", "", 32'000},
    {"STREAM?chunk=zz&close-after=0", "closed", R"(\nTransfer-Encoding: chunked\r\n\r\nzz\r\n$)"},
    {"STREAM?tag=268435455&close-after=9999", "closed", R"(\n\r\nID3\x04\0\0\x7f{4}\0{9989}$)"},
    {"STREAM?tag=64&tag-of=padding&close-after=100", "closed", R"(\n\r\nID3\x04\0{5}\x40\0{64}.*[^\0])"},
    {"STREAM?tag=70000&tag-of=picture&close-after=99999", "closed",
     R"(\n\r\nID3\x04\0\0\0\x04\x22\x70APIC\0\x04\x22\x66\0\0\0image/png\0\x03\0x+[^x])", 99'999},
    {"STREAM?tag=64&tag-of=text&close-after=100", "closed",
     R"(\n\r\nID3\x04\0{5}\x40TIT2\0{3}\x36\0{3}x{53}.*[^x])"},
    {"STREAM?close-after=300000&body=endless", "closed", "", 300'000},
    {"STREAM?reset-after=70000", "reset", "", 70'000},
    {"STREAM?stall-after=70000", "open", "", 70'000},
    {"STREAM?status=404&rate=1000", "closed", R"(\nNot Found\n$)"},
    {"STREAM?reset-after=20000&rate=100000", "reset", "", 20'000},
    {"STREAM?icy=bad-metaint&close-after=60000", "closed",
     R"(\nicy-metaint: 16000\r\n\r\n.{12000}.StreamTitle='The Faults - \w+';)", 60'000},
    {"STREAM?icy=zero-metaint&close-after=60000", "closed", R"(^(?!.*StreamTitle).*\nicy-metaint: 0\r\n)"},
    {"STREAM?icy=huge-metaint&close-after=60000", "closed",
     R"(^(?!.*StreamTitle).*\nicy-metaint: 99999999999999999999\r\n)"},
    {"STREAM?icy=text-metaint&close-after=60000", "closed",
     R"(^(?!.*StreamTitle).*\nicy-metaint: often\r\n)"},
    {"STREAM?icy=unterminated&close-after=60000", "closed",
     R"(\r\n\r\n.{16000}.StreamTitle='The Faults - (First\0|Second[^']))"},
    {"STREAM?icy=latin1&close-after=60000", "closed",
     R"(\r\n\r\n.{16000}.StreamTitle='D\xe9j\xe0 vu, The Faults - \w+';)"},
    {"STREAM?icy=nul&close-after=60000", "closed", R"(\r\n\r\n.{16000}.StreamTitle='[^'\0]+\0\0[^'\0]+';)"},
    {"STREAM?icy=long&close-after=60000", "closed", R"(\r\n\r\n.{16000}\xffStreamTitle='.{4065}';)"},
    {"STREAM?icy=flood&close-after=60000", "closed",
     R"(\r\n\r\n.{256}.StreamTitle='[^']+ 1';\0*.{256}.StreamTitle='[^']+ 2';)"},
    {"STREAM?icy=old-head&close-after=60000", "closed", R"(^ICY 200 OK\r\n.*\nicy-metaint: 16000\r\n)"},
    {"STREAM?token=required&close-after=9", "closed",
     R"(^HTTP/1.1 302 .*\nLocation: MAIN/stream/STATION\?token=[0-9a-z]{5,}&close-after=9\r\n)"},
    {"STREAM?token=old", "closed", "^HTTP/1.1 403 "},
    {"/hls/high.m3u8?cookie=required", "closed",
     R"(: MAIN/hls/high.m3u8\?cookie=demanded\r\nSet-Cookie: ticket=\w+; Path=/\r\n)"},
    {"STREAM?cookie=demanded", "closed", "^HTTP/1.1 403 "},
    {"STREAM?listeners=1&busy=403&slot=2", "open", "^HTTP/1.0 200 "},
    {"STREAM?listeners=1&busy=403&slot=2", "closed", "^HTTP/1.1 403 "},
    {"/silence?seconds=61", "closed", "^HTTP/1.1 400 "},
    {"PRIVATE?close-after=9", "closed", R"(^HTTP/1.1 401 .*\nWWW-Authenticate: Basic realm=")"},
    {"/outage?seconds=60.1", "closed", "^HTTP/1.1 400 "},
    {"/refused", "closed", R"(\nFile1=http://127.0.0.1:\d+/\n)"},

    {"/playlist?form=pls", "closed",
     R"(Type: audio/x-scpls\r\n.*\r\n\r\n\[playlist\]\nnumberofentries=0\nVersion=2\n$)"},
    {"/playlist?eol=cr&entry=http://a/?b%26c&entry=%20x&type=text/html", "closed",
     R"(Type: text/html\r\n.*\[playlist\]\rnumberofentries=2\rFile1=http://a/\?b&c\rFile2= x\rVersion=2\r$)"},
    {"/playlist?form=m3u&eol=crlf&bom=1&entry=a", "closed",
     R"(Type: audio/x-mpegurl\r\n.*\r\n\r\n\xef\xbb\xbf#EXTM3U\r\na\r\n$)"},
    {"/playlist?form=m3u&itself=1&entry=a", "closed", R"(\na\nMAIN/playlist\?form=m3u&itself=1&entry=a\n$)"},
    {"/playlist?form=m3u&each-other=1", "closed", R"(\nMAIN/playlist\?form=m3u&each-other=2\n$)"},
    {"/playlist?form=m3u&each-other=2", "closed", R"(\nMAIN/playlist\?form=m3u&each-other=1\n$)"},
    {"/playlist?pad=100&eol=lf", "closed", R"(\[playlist\]\n;-{78}\n;-{18}\nnumberofentries=0\n)"},
    {"/playlist?close-after=14", "closed", R"(\r\n\r\n\[playlist\]\nnum$)"},
    {"/playlist?form=m3u&endless=1&entry=a&close-after=999999", "closed", R"(\na\n#-{78}\n#-{78}\n)",
     999'999},

    {"/hls/master.m3u8?form=fmp4&media-status=404&segment-rate=9", "closed",
     R"(\n#EXT-X-STREAM-INF:BANDWIDTH=140000,CODECS="mp4a.40.2"\n)"
     R"(high.m3u8\?form=fmp4&status=404&segment-rate=9\n)"},
    {"/hls/master.m3u8?variants=video&renditions=1&address=port", "closed",
     R"(URI="SECOND/hls/high.m3u8\?address=port"\n#EXT-X-STREAM-INF:.*,AUDIO="sound-video"\nSECOND/hls/video)"},
    {"/hls/master.m3u8?variants=low,mid&other-variant=file:///a", "closed",
     R"(\nfile:///a\n#EXT.*\nfile:///a\n)"},
    {"/hls/high.m3u8?list=vod&window=5000", "closed", R"(\nhigh/4999.ts\n#EXT-X-ENDLIST\n$)", 99'999},
    {"/hls/high.m3u8?list=live&window=1", "closed", R"(\n#EXTINF:1.920,\nhigh/16\d\d.ts\n$)"},
    {"/hls/high.m3u8?list=event&address=root&discontinuity=1", "closed",
     R"(SEQUENCE:1595\n.*-SEQUENCE:100\n.*:EVENT\n.*\n#EXT-X-DISCONTINUITY\n[^#]*#EXTINF:1.920,\n/hls/high/1600)"},
    {"/hls/high.m3u8?key=aes-iv&key-status=500&segment-every=2", "closed",
     R"(METHOD=AES-128,URI="key/0\?status=500",IV=0x[0-9a-f]{32}\n.*\nhigh/\d+.ts\?key=aes-iv&every=2\n)"},
    {"/hls/high.m3u8?key=rotate&other-key=file:///a", "closed", R"(URI="file:///a",I.*URI="file:///a",I)"},
    {"/hls/high.m3u8?form=fmp4&other-map=x:y&ranges=1", "closed",
     R"(MAP:URI="x:y"\n.*BYTERANGE:\d+@0\nhigh/turn-100.m4s\n)"},
    {"/hls/high.m3u8?other-segment=file:///etc/passwd", "closed", R"(\nfile:///etc/passwd\n$)"},
    {"/hls/high.m3u8?itself=1", "closed", R"(\n/hls/high.m3u8\?itself=1\n$)"},
    {"/hls/high.m3u8?endless=1&close-after=999999", "closed", R"(.ts\n#-{78}\n#-)", 999'999},
    {"/hls/high.m3u8?stall=1&skip=1000", "closed", R"(SEQUENCE:161600\n#EXTINF:1.920,\nhigh/161600.ts\n)"},
    {"/hls/high.m3u8?form=ts&address=absolute", "closed", R"(\nMAIN/hls/high/\d+.ts\n$)"},
    {"/hls/high.m3u8?form=aac&key=aes", "closed", R"(URI="key/0"\n.*\nhigh/\d+.aac\?key=aes\n$)"},
    {"/hls/high/7.ts?status=404&every=2", "closed", R"(^HTTP/1.1 200 )"},
    {"/hls/high/8.ts?status=404&every=2&times=1", "closed", R"(^HTTP/1.1 404 )"},
    {"/hls/high/8.ts?status=404&every=2&times=1", "closed", R"(^HTTP/1.1 200 .*\r\n\r\n\x47)"},
    {"/hls/high/8.aac?redirect=port&key=aes", "closed",
     R"(^HTTP/1.1 302 .*: SECOND/hls/high/8.aac\?key=aes\r\n)"},
    {"/hls/high/8.aac?redirect=port", "closed", R"(: SECOND/hls/high/8.aac\r\n)"},
    {"/private/hls/high.m3u8", "closed", "^HTTP/1.1 401 "},
    {"/hls/none.m3u8", "closed", "^HTTP/1.1 404 "},

    {"fault:silent", "open", "^$"},
    {"fault:closed", "closed", "^$"},
    {"fault:empty", "closed", R"(^HTTP/1.1 200 OK\r\n.*\r\n\r\n$)"},
    {"fault:header-drip", "open", "^H"},
    {"fault:endless-headers", "open", R"(^HTTP/1.1 200 OK\r\n)", 1'000'000},
    {"fault:body-drip", "open", R"(^HTTP/1.1 200 OK\r\n.*\r\n\r\n)"},
    {"fault:endless-body", "open", R"(^HTTP/1.1 200 OK\r\n)", 9'000'000},
    {"fault:bomb=2064000", "closed", R"(\nContent-Encoding: gzip\r\n.*\0{9}$)"},
    {"fault:deflate", "closed", R"(^HTTP/1.1 200 OK\r\n.*\nContent-Encoding: deflate\r\n)"},
    {"fault:cookie", "closed", R"(^HTTP/1.1 302 .*\nSet-Cookie: .*\nFound\n$)"},
    {"fault:long-length", "closed", R"(</stationlist>\n$)"},
    {"fault:short-length", "closed", R"(</stationlist>\n$)"},
    {"fault:bad-chunk", "closed", R"(\r\n0\r\n\r\n$)"},
    {"fault:reset", "reset", R"(^HTTP/1.1 200 OK\r\n.*\r\n\r\n.{100})"},
    {"fault:truncate", "closed", R"(^HTTP/1.1 200 OK\r\n.*\r\n\r\n.{100})"},
    {"fault:truncate=7", "closed", R"(\r\n\r\n<\?xml v$)"},
    {"fault:redirect=port", "closed", R"(^HTTP/1.1 302 .*\nFound\n$)"},
    {"fault:status=503", "closed", R"(^HTTP/1.1 503 .*\nService Unavailable\n$)"},
    {"fault:portal", "closed", R"(</html>\n$)"},
    {"fault:dtd", "closed", R"(<!DOCTYPE .*</stationlist>\n$)"},
    {"fault:entities", "closed", R"(<!ENTITY .*</stationlist>\n$)"},
    {"fault:external-entity", "closed", R"(<!ENTITY .*file:.*</stationlist>\n$)"},
    {"fault:long-attribute=1234567", "closed", R"(aaa"/></stationlist>\n$)", 1'234'567},
    {"fault:attributes=9999", "closed", R"( a9998=""/></stationlist>\n$)"},
    {"fault:depth=2", "closed", R"(\n<a><a></a></a></stationlist>\n$)"},
    {"fault:nul", "closed", R"(\0.*</stationlist>\n$)"},
    {"fault:bad-utf8", "closed", R"([\x80-\xff].*</stationlist>\n$)"},
    {"fault:charset=Shift_JIS", "closed", R"(encoding="shift_jis".*</stationlist>\n$)"},
    {"fault:charset=UTF-16", "closed", R"(>\0\n\0$)"},
    {"fault:numbers", "closed", R"(</stationlist>\n$)"},
    {"fault:html-names", "closed", R"(&lt;.*</stationlist>\n$)"},
    {"fault:long-names=99999", "closed", R"(</stationlist>\n$)"},
    {"fault:bidi", "closed", R"(</stationlist>\n$)"},
    {"fault:nonsense", "closed", "^HTTP/1.1 400 "},
};

std::span<const Fault> documentedFaults()
{
    return faults;
}

} // namespace

QTEST_GUILESS_MAIN(FaultTest)
#include "faulttest.moc"
