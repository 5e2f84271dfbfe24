#include "http/address.h"
#include "playback/keypath.h"
#include "playback/privatestream.h"
#include "playback/streamplayback.h"
#include "support/fakebackend.h"

#include <QTest>
#include <QTimer>
#include <array>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
/// Playback on fakes, with the two texts as the window would show them.
struct PlaybackOnFakes
{
    explicit PlaybackOnFakes(const QVariant &storedTimeout = {}, const QVariant &storedUserAgent = {})
        : playback(
              backend, [storedTimeout] { return storedTimeout; },
              [storedUserAgent] { return storedUserAgent; })
    {
        QObject::connect(&playback, &StreamPlayback::titleChanged,
                         [this](const QString &text) { title = text; });
        QObject::connect(&playback, &StreamPlayback::statusChanged, [this](const QString &text) {
            status = text;
            statuses.append(text);
        });
        QObject::connect(&playback, &StreamPlayback::tornDown, [this] { ++tornDown; });
        QObject::connect(&playback, &StreamPlayback::runningChanged, [this](bool now) { running = now; });
    }

    /// Starts a stream and waits for its player.
    void play(const QString &name = u"Station"_s)
    {
        playback.executeSynchAVPlayer(u"http://h/"_s + name, name);
        QTRY_VERIFY(backend.player != nullptr);
    }

    FakeItem &item() { return backend.player->item(); }
    void reportRanges(const QVariantList &ranges = {1}) { item().report(KeyPath::loadedTimeRanges, ranges); }

    FakeBackend backend;
    StreamPlayback playback;
    QString title;
    QString status;
    QStringList statuses;
    int tornDown = 0;
    bool running = false;
};
} // namespace

class TestStreamPlayback : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textOfEachReport_data();
    void textOfEachReport();
    void bufferReportsTearDown_data();
    void bufferReportsTearDown();
    void observersComeAndGoInOrder();
    void lateReportsAreIgnored();
    void lastItemIsHeardAlone();
    void pauseAndResume();
    void timeout_data();
    void timeout();
    void timeoutWithoutPlayer();
    void absentAddresses();
    void addressesAreEscaped();
    void privateUrls_data();
    void privateUrls();
    void privateHeaders();
    void customStations();
};

void TestStreamPlayback::textOfEachReport_data()
{
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<float>("rate");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<bool>("isPlaying");
    const QStringList connecting{u"Connecting please wait.."_s};
    const QStringList failed{u"Failed"_s};
    const QStringList buffering{u"Buffering .."_s};
    const QStringList streaming{u"- Streaming -"_s};
    const QStringList none;
    const QVariantList ranges{1};
    const QString loaded = KeyPath::loadedTimeRanges.toString();
    const QString likely = KeyPath::playbackLikelyToKeepUp.toString();
    QTest::newRow("ready") << u"status"_s << QVariant(1) << 1.0F << connecting << false;
    QTest::newRow("failed") << u"status"_s << QVariant(2) << 1.0F << failed << false;
    QTest::newRow("unknown") << u"status"_s << QVariant(0) << 1.0F << failed << false;
    QTest::newRow("other status") << u"status"_s << QVariant(3) << 1.0F << none << false;
    QTest::newRow("likely") << likely << QVariant(true) << 1.0F << buffering << false;
    QTest::newRow("unlikely") << likely << QVariant(false) << 1.0F << buffering << false;
    QTest::newRow("ranges") << loaded << QVariant(ranges) << 1.0F << streaming << true;
    QTest::newRow("ranges at NaN") << loaded << QVariant(ranges) << std::numeric_limits<float>::quiet_NaN()
                                   << streaming << true;
    QTest::newRow("ranges at rest") << loaded << QVariant(ranges) << 0.0F << QStringList{u"Disconnect"_s}
                                    << false;
    QTest::newRow("no ranges") << loaded << QVariant(QVariantList()) << 1.0F << none << false;
    QTest::newRow("absent ranges") << loaded << QVariant() << 1.0F << none << false;
}

void TestStreamPlayback::textOfEachReport()
{
    QFETCH(QString, keyPath);
    QFETCH(QVariant, value);
    QFETCH(float, rate);
    PlaybackOnFakes fixture;
    fixture.play();
    QCOMPARE(fixture.title, u"Station"_s);
    fixture.backend.player->setRate(rate);
    fixture.statuses.clear();
    if (keyPath == KeyPath::status) {
        fixture.backend.player->reportStatus(value.toInt());
    } else {
        fixture.item().report(keyPath, value);
    }
    QTEST(fixture.statuses, "texts");
    QTEST(fixture.playback.isPlaying(), "isPlaying");
    QVERIFY(fixture.backend.player != nullptr);
}

void TestStreamPlayback::bufferReportsTearDown_data()
{
    QTest::addColumn<QString>("keyPath");
    QTest::addColumn<QString>("notice");
    QTest::newRow("empty") << KeyPath::playbackBufferEmpty.toString() << u"Lost connection !"_s;
    QTest::newRow("full") << KeyPath::playbackBufferFull.toString() << u"Buffer is full !"_s;
}

void TestStreamPlayback::bufferReportsTearDown()
{
    QFETCH(QString, keyPath);
    QFETCH(QString, notice);
    PlaybackOnFakes fixture;
    fixture.play();
    fixture.reportRanges();
    QVERIFY(fixture.running);
    fixture.item().report(keyPath, false);
    QCOMPARE(fixture.statuses.mid(fixture.statuses.size() - 2),
             (QStringList{notice, u"Terminated / lost connection"_s}));
    QCOMPARE(fixture.title, u"idle"_s);
    QVERIFY(!fixture.playback.isPlaying());
    QVERIFY(!fixture.running);
    QVERIFY(!fixture.playback.globalTimer());
    QCOMPARE(fixture.backend.livePlayers, 0);
    QCOMPARE(fixture.tornDown, 1);

    fixture.statuses.clear();
    fixture.playback.destroyPlayer();
    QVERIFY(fixture.statuses.isEmpty());
    QCOMPARE(fixture.tornDown, 1);
}

void TestStreamPlayback::observersComeAndGoInOrder()
{
    const QStringList added{u"item http://h/A"_s,
                            u"+playbackBufferEmpty"_s,
                            u"+playbackBufferFull"_s,
                            u"+playbackLikelyToKeepUp"_s,
                            u"+loadedTimeRanges"_s,
                            u"player"_s,
                            u"+status"_s};
    const QStringList itemLeft{u"-playbackLikelyToKeepUp"_s, u"-playbackBufferEmpty"_s,
                               u"-playbackBufferFull"_s, u"-loadedTimeRanges"_s};
    PlaybackOnFakes fixture;
    fixture.play(u"A"_s);
    QCOMPARE(fixture.backend.journal.lines(), added);

    // A new start releases the player before it stops observing the item; the end of one does it the other
    // way about.
    fixture.backend.journal.clear();
    fixture.playback.executeSynchAVPlayer(u"http://h/B"_s, u"B"_s);
    QCOMPARE(fixture.backend.journal.lines().first(6), QStringList({u"-status"_s, u"~player"_s}) + itemLeft);
    QCOMPARE(fixture.title, u"B"_s);
    QTRY_VERIFY(fixture.backend.player != nullptr);

    fixture.backend.journal.clear();
    fixture.playback.destroyPlayer();
    QCOMPARE(fixture.backend.journal.lines(),
             QStringList{u"-status"_s} + itemLeft + QStringList({u"~player"_s, u"~item"_s}));
}

void TestStreamPlayback::lateReportsAreIgnored()
{
    PlaybackOnFakes fixture;
    fixture.play(u"A"_s);
    const auto stale = std::static_pointer_cast<FakeItem>(fixture.playback.playeritem());
    fixture.playback.executeSynchAVPlayer(u"http://h/B"_s, u"B"_s);
    QTRY_COMPARE(fixture.backend.livePlayers, 1);
    fixture.statuses.clear();
    for (const QStringView keyPath : {KeyPath::loadedTimeRanges, KeyPath::playbackBufferEmpty}) {
        stale->report(keyPath, QVariantList{1});
    }
    QVERIFY(fixture.statuses.isEmpty());
    QVERIFY(fixture.backend.player != nullptr);
}

/// Both items are made before the main thread takes the first of them.
void TestStreamPlayback::lastItemIsHeardAlone()
{
    PlaybackOnFakes fixture;
    {
        const std::scoped_lock held(fixture.backend.itemGate);
        fixture.playback.executeSynchAVPlayer(u"http://h/A"_s, u"A"_s);
        fixture.playback.executeSynchAVPlayer(u"http://h/B"_s, u"B"_s);
    }
    QTRY_COMPARE(fixture.backend.journal.lines().count(u"player"_s), 2);
    QCOMPARE(fixture.backend.livePlayers, 1);
    QCOMPARE(fixture.item().request.url, QUrl(u"http://h/B"_s));
    QCOMPARE(fixture.backend.journal.lines().filter(u"item http"_s),
             (QStringList{u"item http://h/A"_s, u"item http://h/B"_s}));

    fixture.reportRanges();
    QCOMPARE(fixture.status, u"- Streaming -"_s);
    fixture.playback.destroyPlayer();
    QCOMPARE(fixture.backend.livePlayers, 0);
    QCOMPARE(fixture.backend.journal.lines().count(u"~item"_s), 2);
}

void TestStreamPlayback::pauseAndResume()
{
    PlaybackOnFakes fixture;
    QCOMPARE(fixture.playback.togglePause(), StreamPlayback::Toggle::NoPlayer);
    fixture.play();
    QCOMPARE(fixture.playback.togglePause(), StreamPlayback::Toggle::Paused);
    QVERIFY(fixture.playback.globalTimer());
    QCOMPARE(fixture.playback.togglePause(), StreamPlayback::Toggle::Resumed);
    fixture.reportRanges();
    QCOMPARE(fixture.playback.togglePause(), StreamPlayback::Toggle::Paused);
    QCOMPARE(fixture.status, u"Paused (buffering in background)"_s);
    QVERIFY(!fixture.playback.isPlaying());
    QVERIFY(!fixture.running);
    // It has been heard: the time-out has nothing to ask any more.
    QVERIFY(!fixture.playback.globalTimer());
    QCOMPARE(fixture.playback.togglePause(), StreamPlayback::Toggle::Resumed);
    QCOMPARE(fixture.status, u"Paused (buffering in background)"_s);
    QVERIFY(fixture.playback.isPlaying());
    QVERIFY(fixture.running);
}

void TestStreamPlayback::timeout_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("streamed");
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("never streamed") << QVariant(1) << false << 1000;
    QTest::newRow("streamed") << QVariant(1) << true << 1000;
    QTest::newRow("no number") << QVariant(u"x"_s) << false << 0;
    QTest::newRow("negative") << QVariant(-3) << false << 0;
}

void TestStreamPlayback::timeout()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, streamed);
    QFETCH(int, milliseconds);
    PlaybackOnFakes fixture(stored);
    fixture.playback.executeSynchAVPlayer(u"http://h/"_s, u"Station"_s);
    QCOMPARE(fixture.playback.globalTimer()->interval(), milliseconds);
    if (streamed) {
        QTRY_VERIFY(fixture.backend.player != nullptr);
        fixture.reportRanges();
        QTRY_VERIFY(!fixture.playback.globalTimer());
        QCOMPARE(fixture.status, u"- Streaming -"_s);
        QVERIFY(fixture.backend.player != nullptr);
    } else {
        QTRY_COMPARE(fixture.status, u"Server is not responding"_s);
    }
}

/// The time-out of a start passes while its item is still being made: the start goes on without one.
void TestStreamPlayback::timeoutWithoutPlayer()
{
    PlaybackOnFakes fixture(0);
    {
        const std::scoped_lock held(fixture.backend.itemGate);
        fixture.playback.executeSynchAVPlayer(u"http://h/"_s, u"Station"_s);
        QTRY_COMPARE(fixture.status, u"Server is not responding"_s);
        QCOMPARE(fixture.title, u"Station"_s);
        QCOMPARE(fixture.tornDown, 0);
    }
    QTRY_VERIFY(fixture.backend.player != nullptr);
    fixture.reportRanges();
    QCOMPARE(fixture.status, u"- Streaming -"_s);
}

void TestStreamPlayback::absentAddresses()
{
    PlaybackOnFakes fixture;
    fixture.playback.playRadioFromURL({}, u"Station"_s);
    fixture.playback.playRadioFromURL(u""_s, u"Station"_s);
    fixture.playback.executeSynchAVPlayer({}, u"Station"_s);
    QVERIFY(fixture.title.isNull() && fixture.status.isNull());

    // An empty address is one that does not parse.
    fixture.playback.executeSynchAVPlayer(u""_s, u"Station"_s);
    QTRY_VERIFY(fixture.backend.player != nullptr);
    QVERIFY(!fixture.item().request.url.isValid());
}

void TestStreamPlayback::addressesAreEscaped()
{
    PlaybackOnFakes fixture(25);
    fixture.playback.playRadioFromURL(u"http://h/a b/\u00e9?x=%41"_s, u"Station"_s);
    QTRY_VERIFY(fixture.backend.player != nullptr);
    QCOMPARE(fixture.item().request.url.toEncoded(), "http://h/a%20b/%C3%A9?x=%2541");
    QCOMPARE(fixture.item().request.timeout, 25.0);
}

void TestStreamPlayback::privateUrls_data()
{
    QTest::addColumn<QString>("parts");
    QTest::addColumn<QByteArray>("address");
    // Url, mount point, port and scheme, "-" for an absent one; no address where it cannot be played.
    const QList<std::pair<QString, QByteArray>> rows{
        {u"http://host /live 8000 https"_s, "https://host:8000/live"},
        {u"https://host /live 8000abc -"_s, "http://host:8000/live"},
        {u"http://host/there - 8000 -"_s, "http://host:8000"},
        {u"http://host /live x -"_s, "http://host:0/live"},
        {u"http://host /live  -"_s, "http://host:0/live"},
        {u"http://host /live 70000 -"_s, {}},
        {u"http://host /live -1 -"_s, {}},
        {u"http://host:99/?a=b /live 8000 -"_s, "http://host:8000/live?a=b/live"},
        {u"http://host /a_b/\u00e9?%41 8000 -"_s, "http://host:8000/a%20b/%C3%A9%3F%2541?%2541"},
        {u"host /live 8000 -"_s, {}},
        {u"http://host/ live 8000 -"_s, {}},
        {u"http://host /live 8000 "_s, {}},
    };
    for (const auto &[parts, address] : rows) {
        QTest::newRow(qUtf8Printable(parts)) << parts << address;
    }
}

void TestStreamPlayback::privateUrls()
{
    QFETCH(QString, parts);
    RadioModel model;
    const QStringList texts = parts.split(u' ').replaceInStrings(u"_"_s, u" "_s);
    const std::array fields{RadioField::url, RadioField::mountpoint, RadioField::port,
                            RadioField::radioscheme};
    for (std::size_t index = 0; index < fields.size(); ++index) {
        const QString text = texts.value(static_cast<qsizetype>(index));
        model.setValue(fields.at(index), text == u"-" ? QVariant() : text);
    }
    const QUrl made = privateStreamUrl(model);
    QTEST(isHttpUrl(made) ? made.toEncoded() : QByteArray(), "address");
}

void TestStreamPlayback::privateHeaders()
{
    const QByteArray builtIn =
        "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) Plumtide/100.0.0 Version/1.0.0";
    const QByteArray safari = "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_9_3) AppleWebKit/537.75.14 (KHTML, "
                              "like Gecko) Version/7.0.3 Safari/7046A194A";
    const QByteArray firefox = "Mozilla/5.0 (Windows NT 6.3; rv:36.0) Gecko/20100101 Firefox/36.0";
    const QList<std::pair<QVariant, QByteArray>> rows{
        {{}, builtIn},     {0, builtIn}, {1, safari},          {u"2nd"_s, firefox},
        {u"x"_s, builtIn}, {3, {}},      {1LL << 32, builtIn}, {-1, {}},
    };
    for (const auto &[stored, agent] : rows) {
        HttpHeaders expected{{"Authorization", "Basic Og=="}};
        if (!agent.isEmpty()) {
            expected.prepend({"User-Agent", agent});
        }
        QCOMPARE(privateStreamHeaders(*std::make_unique<RadioModel>(), stored), expected);
    }
}

void TestStreamPlayback::customStations()
{
    PlaybackOnFakes fixture(25, 3);
    const auto model = std::make_shared<RadioModel>();
    model->setUrl({});
    model->setPort(u"8000"_s);
    model->setMountpoint(u"/live"_s);
    model->setName(u"Mine"_s);
    fixture.playback.playRadioCustomWithObject(model);
    QVERIFY(fixture.title.isNull() && fixture.status.isNull());

    model->setUrl(u"http://host"_s);
    fixture.playback.playRadioCustomWithObject(model);
    QTRY_VERIFY(fixture.backend.player != nullptr);
    QCOMPARE(fixture.item().request.url.toEncoded(), "http://host/live:8000");
    QCOMPARE(fixture.item().request.headers, HttpHeaders());

    model->setRadioIsPrivate(true);
    fixture.reportRanges();
    fixture.playback.playRadioCustomWithObject(model);
    QCOMPARE(fixture.title, u"Mine"_s);
    QVERIFY(!fixture.playback.isPlaying() && fixture.backend.player == nullptr);
    QTRY_VERIFY(fixture.backend.player != nullptr);
    QCOMPARE(fixture.item().request.url.toEncoded(), "http://host:8000/live");
    QCOMPARE(fixture.item().request.timeout, 25.0);
    QCOMPARE(fixture.item().request.headers, privateStreamHeaders(*model, 3));
}

QTEST_GUILESS_MAIN(TestStreamPlayback)
#include "tst_streamplayback.moc"
