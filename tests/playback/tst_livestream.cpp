#include "playback/mpv/timedtitles.h"
#include "playback/stream/icyreader.h"
#include "playback/stream/livestream.h"
#include "playback/stream/streamrequest.h"
#include "playback/stream/streamresolver.h"
#include "support/scriptedserver.h"

#include <QSignalSpy>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QByteArray head = "HTTP/1.0 200 OK\r\n\r\n";
const QByteArray sound = QByteArray(20'000, '\x01');
/// Until an open connection is no longer trusted, and any machine has tried another.
constexpr int silenceTime = 15'000;

/// A stream that is listened to, from a server's path.
class Listening
{
public:
    explicit Listening(const QString &address, bool isSettled = true)
        : resolver_({.url = QUrl(address), .timeout = 30})
    {
        QObject::connect(&resolver_, &StreamResolver::streamFound, [this, isSettled](StreamSource *stream) {
            source_.reset(stream);
            QObject::connect(stream, &StreamSource::finished, [this] { isFinished_ = true; });
            stream->attach(pipe_);
            stream->start();
            if (isSettled) {
                stream->settle();
            }
        });
        resolver_.start();
    }

    /// Reads what there is.
    qsizetype received()
    {
        std::array<char, 4096> some;
        while (!pipe_->isEmpty()) {
            received_ += pipe_->read(some.data(), some.size());
        }
        return received_;
    }
    bool isFinished() const { return isFinished_; }

private:
    StreamResolver resolver_;
    const std::shared_ptr<BytePipe> pipe_ = std::make_shared<BytePipe>();
    std::unique_ptr<StreamSource> source_;
    qsizetype received_ = 0;
    bool isFinished_ = false;
};
} // namespace

/// A stream over one connection after another, and the titles in it.
class TestLiveStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lostConnectionsAreMadeAgain_data();
    void lostConnectionsAreMadeAgain();
    void silentConnectionsAreReplaced();
    void attemptsAreSpaced();
    void wholeAnswersEnd();
    void unheardStreamsAreGivenUp();
    void titlesAreTakenOut_data();
    void titlesAreTakenOut();
    void titlesAreTimed();
};

void TestLiveStream::lostConnectionsAreMadeAgain_data()
{
    QTest::addColumn<QByteArray>("next");
    QTest::addColumn<QByteArrayList>("asked");
    QTest::newRow("where it was") << head + sound << QByteArrayList{"/start", "/token", "/token"};
    QTest::newRow("at the station's address, where a token was for once")
        << QByteArray("HTTP/1.0 403 Used\r\nContent-Length: 0\r\n\r\n")
        << QByteArrayList{"/start", "/token", "/token", "/start", "/new"};
    QTest::newRow("at the station's address, where there is a page now")
        << head + QByteArray("<html>").repeated(100)
        << QByteArrayList{"/start", "/token", "/token", "/start", "/new"};
}

void TestLiveStream::lostConnectionsAreMadeAgain()
{
    QFETCH(QByteArray, next);
    QFETCH(QByteArrayList, asked);
    ScriptedServer server;
    const QByteArray redirect = "HTTP/1.0 302 x\r\nLocation: ";
    server.script("/start", redirect + "/token\r\n\r\n");
    server.script("/token", head + sound, ScriptedServer::After::StayOpen);
    server.script("/new", head + sound, ScriptedServer::After::StayOpen);
    Listening listening(server.address(u"/start"_s));
    QTRY_COMPARE(listening.received(), sound.size());
    server.script("/start", redirect + "/new\r\n\r\n");
    server.script("/token", next, ScriptedServer::After::StayOpen);
    server.closeConnections();
    QTRY_COMPARE(listening.received(), 2 * sound.size());
    QCOMPARE(server.targets(), asked);
}

/// By one that answers; the silent one is not asked to go before.
void TestLiveStream::silentConnectionsAreReplaced()
{
    ScriptedServer server;
    server.script("/", head + sound, ScriptedServer::After::StayOpen);
    Listening listening(server.address(u"/"_s));
    QTRY_COMPARE(listening.received(), sound.size());
    QCOMPARE(server.requests().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(listening.received(), 2 * sound.size(), silenceTime);
    QCOMPARE(server.requests().size(), 2);
    QTRY_COMPARE(server.openConnections(), 1);
}

/// However soon a server closes.
void TestLiveStream::attemptsAreSpaced()
{
    ScriptedServer server;
    server.script("/", head + sound.first(2000));
    Listening listening(server.address(u"/"_s));
    QTest::qWait(3000);
    QVERIFY(server.requests().size() > 2);
    QCOMPARE_LE(server.requests().size(), 5);
}

void TestLiveStream::wholeAnswersEnd()
{
    ScriptedServer server;
    server.scriptBody("/", sound);
    Listening listening(server.address(u"/"_s));
    QTRY_VERIFY(listening.isFinished());
    QCOMPARE(listening.received(), sound.size());
    QCOMPARE(server.requests().size(), 1);
}

/// So that others are tried.
void TestLiveStream::unheardStreamsAreGivenUp()
{
    ScriptedServer server;
    server.script("/", head + sound.first(2000));
    Listening listening(server.address(u"/"_s), false);
    QTRY_VERIFY(listening.isFinished());
    QCOMPARE(server.requests().size(), 3);
}

void TestLiveStream::titlesAreTakenOut_data()
{
    QTest::addColumn<QByteArray>("interval");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArrayList>("titles");
    const auto block = [](const QByteArray &text) {
        const auto units = static_cast<char>((text.size() + 15) / 16);
        return units + text + QByteArray(units * 16 - text.size(), '\0');
    };
    const QByteArray two = "abc" + block("StreamTitle='A - 'B'';StreamUrl='';") + "def" + block("") + "gh";
    QTest::newRow("two blocks") << QByteArray("3") << two << QByteArrayList{"3 A - 'B'"};
    QTest::newRow("no end") << QByteArray("3") << "abc" + block("StreamTitle='A") + "def" + block("") + "gh"
                            << QByteArrayList{"3 A"};
    QTest::newRow("no title") << QByteArray("3") << "abc" + block("StreamUrl='x';") + "def" + block("") + "gh"
                              << QByteArrayList{};
    for (const char *none : {"", "0", "-3", "word", "99999999999999999999"}) {
        QTest::addRow("interval %s", none) << QByteArray(none) << QByteArray("abcdefgh") << QByteArrayList{};
    }
}

/// However they come in pieces.
void TestLiveStream::titlesAreTakenOut()
{
    QFETCH(QByteArray, interval);
    QFETCH(QByteArray, bytes);
    for (qsizetype piece = 1; piece <= bytes.size(); ++piece) {
        IcyReader reader({.url = {}, .status = 200, .headers = {{"Icy-MetaInt", interval}}});
        QByteArray taken;
        QByteArrayList titles;
        for (qsizetype at = 0; at < bytes.size(); at += piece) {
            const qsizetype before = taken.size();
            taken += reader.take(bytes.mid(at, piece), [&](qsizetype soundBefore, const QByteArray &title) {
                titles.append(QByteArray::number(before + soundBefore) + ' ' + title);
            });
        }
        QCOMPARE(taken, "abcdefgh");
        QTEST(titles, "titles");
    }
}

void TestLiveStream::titlesAreTimed()
{
    TimedTitles titles;
    titles.add(1000, "first");
    titles.add(16'000, "second");
    titles.add(40'000, "third");
    QCOMPARE(titles.heardAt(0), "first");
    // 32 s at once: the second one stands in the middle of them.
    titles.loaded(32'000, 32);
    QCOMPARE(titles.heardAt(15.9), std::nullopt);
    QCOMPARE(titles.heardAt(16.1), "second");
    titles.loaded(42'000, 42);
    QCOMPARE(titles.heardAt(39.9), std::nullopt);
    QCOMPARE(titles.heardAt(40.1), "third");
}

QTEST_GUILESS_MAIN(TestLiveStream)
#include "tst_livestream.moc"
