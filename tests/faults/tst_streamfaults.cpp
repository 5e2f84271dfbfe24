#include "faults/faultwatch.h"
#include "faults/fullport.h"
#include "support/localradio.h"
#include "support/stage.h"

#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <array>
#include <memory>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
/// About two seconds of MP3 at 128 kbit/s.
constexpr int burstBytes = 32'000;
/// More than any one station is asked for in `silenceTime`.
constexpr int mostRequests = 12;
/// How many addresses of one start are tried.
constexpr int mostCandidates = 64;
/// Seconds in which any machine has asked a station for sound that does not come. They are waited for, as
/// those of a failure are.
constexpr int silenceTime = 2;
/// Seconds in which any machine finds out that a station cannot be played.
constexpr int failureTime = 5;
/// Seconds in which a station plays that can. They are not waited for.
constexpr int startTime = 10;

/// How an answer begins whose length is not stated, so that nothing tells its end from a lost connection.
const QByteArray answerHead = "HTTP/1.0 200 OK\r\n\r\n";
const QByteArray note = answerHead + "Closed for the night";

/// A file that would play, and whether it has been opened.
class WatchedSound
{
public:
    explicit WatchedSound(const QByteArray &sound)
        : bytes_(sound)
    {
        QFile file(name());
        if (file.open(QIODevice::WriteOnly)) {
            file.write(bytes_);
            file.close();
            watch_ = ::inotify_init1(IN_NONBLOCK);
            watching_ = ::inotify_add_watch(watch_, QFile::encodeName(name()).constData(), IN_OPEN) >= 0;
        }
    }
    ~WatchedSound() { ::close(watch_); }
    Q_DISABLE_COPY_MOVE(WatchedSound)

    QString name() const { return folder_.filePath(u"sound.mp3"_s); }
    const QByteArray &bytes() const { return bytes_; }
    bool isWatched() const { return watching_; }
    bool wasOpened() const
    {
        std::array<char, 4096> events;
        return ::read(watch_, events.data(), events.size()) >= 0;
    }

private:
    QByteArray bytes_;
    QTemporaryDir folder_;
    int watch_ = -1;
    bool watching_ = false;
};
} // namespace

/// Faults of servers and playlists, one after the other in the same window. None takes more memory than
/// allowed, and after each the next station plays.
class TestStreamFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void deadStationsEnd_data();
    void deadStationsEnd();
    void oddStationsPlay_data();
    void oddStationsPlay();
    void oddTitlesAreShown_data();
    void oddTitlesAreShown();
    void connectionsAreLost_data();
    void connectionsAreLost();
    void hostileSoundIsContained_data();
    void hostileSoundIsContained();
    void stoppedServersEnd();
    void longPlaylistsEnd();
    void credentialsStayAtHome();
    void shortAnswersFail_data();
    void shortAnswersFail();
    void closedServersEnd_data();
    void closedServersEnd();
    void cleanupTestCase();

private:
    QByteArray inFull(QByteArray text) const;
    /// Makes the station's playlist these addresses, with blanks between, and plays it.
    void play(const QByteArray &addresses, int timeout);
    /// The addresses that localradio has been asked for since play().
    QStringList visited() const;

    LocalRadio radio_{{u"--user"_s, u"user"_s, u"--password"_s, u"pass"_s}};
    FullPort full_;
    FaultWatch watch_;
    OneStationDirectory directory_;
    std::unique_ptr<WatchedSound> sound_;
    std::unique_ptr<Stage> stage_;
    qsizetype visitedBefore_ = 0;
};

void TestStreamFaults::initTestCase()
{
    QVERIFY(radio_.isRunning());
    QVERIFY(!radio_.secondAddress().isEmpty());
    const QByteArray answer = radio_.beginning(0, burstBytes);
    sound_ = std::make_unique<WatchedSound>(answer.mid(answer.indexOf("\r\n\r\n") + 4));
    QVERIFY(sound_->isWatched());
    QVERIFY(full_.isFull());
    // What is allocated once only counts for no fault.
    stage_ = std::make_unique<Stage>(directory_.address());
    play("STREAM", startTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
}

void TestStreamFaults::cleanup()
{
    if (QTest::currentTestFailed()) {
        return;
    }
    watch_.report(qPrintable(stage_->statuses.constLast()));
    play("STREAM", startTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
}

void TestStreamFaults::cleanupTestCase()
{
    stage_.reset();
}

QByteArray TestStreamFaults::inFull(QByteArray text) const
{
    return text.replace("STREAM", radio_.stream(0).toLatin1())
        .replace("RADIO", radio_.address().toLatin1())
        .replace("SECOND", radio_.secondAddress().toLatin1())
        .replace("SILENT", directory_.address(u"/silent"_s).toLatin1())
        .replace("SWALLOWED", "http://127.0.0.1:" + QByteArray::number(full_.port()) + "/x")
        .replace("SOUND", QFile::encodeName(sound_->name()));
}

void TestStreamFaults::play(const QByteArray &addresses, int timeout)
{
    directory_.leadTo(inFull(addresses).split(' '));
    visitedBefore_ = radio_.logged(u"request"_s).size();
    stage_->settings.setValue("timeout_value", timeout);
    watch_.start();
    stage_->doubleClick(0);
}

QStringList TestStreamFaults::visited() const
{
    QStringList addresses;
    for (const QJsonObject &request : radio_.logged(u"request"_s).mid(visitedBefore_)) {
        addresses.append(
            u"http://127.0.0.1:%1%2"_s.arg(request["port"_L1].toInt()).arg(request["target"_L1].toString()));
    }
    return addresses;
}

void TestStreamFaults::deadStationsEnd_data()
{
    QTest::addColumn<QStringList>("statuses");
    QTest::addColumn<bool>("endless");
    // Each names all addresses that are visited.
    for (const char *addresses : {
             "STREAM?status=401 STREAM?status=403 STREAM?status=404 STREAM?status=503",
             "STREAM?body=html",
             "STREAM?redirect=loop",
             "STREAM?redirect=file://SOUND",
             "RADIO/refused",
             "file://SOUND memory://x edl://SOUND",
             "RADIO/playlist",
             "RADIO/playlist?itself=1",
             "RADIO/playlist?each-other=1 RADIO/playlist?each-other=2",
             "RADIO/playlist?entry=file://SOUND&entry=memory://x&entry=edl://SOUND",
             "STREAM?chunk=zz",
             "STREAM?tag=268435455&tag-of=picture",
             "STREAM?tag=268435455&tag-of=text",
             "STREAM?tag=268435455",
             "STREAM?chunk=-5",
             "STREAM?close-after=0",
             "STREAM?header=Content-Length:%201000",
         }) {
        QTest::newRow(addresses) << Stage::failure << false;
    }
    for (const char *addresses : {
             "SILENT",
             "SWALLOWED",
             "STREAM?stall-after=0",
             "STREAM?rate=20",
             "STREAM?rate=500",
             "STREAM?tag=268435455&stall-after=10",
         }) {
        QTest::newRow(addresses) << Stage::silence << false;
    }
    for (const char *addresses : {
             "STREAM?body=random",
             "STREAM?body=zeros",
             "STREAM?chunk=ffffffffffffffffffff",
             "RADIO/playlist?endless=1",
             "RADIO/playlist?pad=16777216&entry=STREAM",
         }) {
        QTest::newRow(addresses) << Stage::silence << true;
    }
}

void TestStreamFaults::deadStationsEnd()
{
    const QByteArray addresses = QTest::currentDataTag();
    QFETCH(bool, endless);
    QFETCH(QStringList, statuses);
    play(addresses, statuses == Stage::silence ? silenceTime : failureTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses.value(stage_->statuses.size() - 1), Stage::failure.last(),
                              Stage::soundTime);
    if (endless) {
        // Whether it is found out before the time-out depends on the machine.
        stage_->statuses.removeAll(u"Failed"_s);
    }
    QCOMPARE(stage_->statuses, statuses);
    QCOMPARE(stage_->text(u"playerStatusString"_s), u"idle"_s);
    QStringList reached = visited();
    QCOMPARE_LE(reached.size(), mostRequests);
    reached.removeDuplicates();
    QCOMPARE(reached, QString::fromLatin1(inFull(addresses)).split(u' ').filter(radio_.address() + u'/'));
    QVERIFY(!sound_->wasOpened());
}

void TestStreamFaults::oddStationsPlay_data()
{
    QTest::addColumn<QByteArray>("heard");
    for (const char *addresses : {
             "RADIO/playlist?eol=crlf&bom=1&type=audio/mpeg&entry=STREAM",
             "RADIO/refused STREAM",
             "SILENT STREAM",
             "file://SOUND STREAM?status=404 SILENT STREAM",
             "STREAM?redirect=same",
         }) {
        QTest::newRow(addresses) << QByteArray("STREAM");
    }
    QTest::newRow("STREAM?redirect=port")
        << QByteArray(radio_.stream(0).toLatin1())
               .replace(radio_.address().toLatin1(), radio_.secondAddress().toLatin1());
    for (const char *address : {
             "STREAM?icy=bad-metaint",
             "STREAM?icy=zero-metaint",
             "STREAM?icy=huge-metaint",
             "STREAM?icy=text-metaint",
             "STREAM?icy=unterminated",
             "STREAM?icy=latin1",
             "STREAM?icy=nul",
             "STREAM?icy=long",
             "STREAM?icy=flood",
             "STREAM?icy=old-head",
             "STREAM?type=text/html",
             "STREAM?body=endless",
             "STREAM?header=Content-Length:%20100000000",
         }) {
        QTest::newRow(address) << QByteArray(address);
    }
}

void TestStreamFaults::oddStationsPlay()
{
    QFETCH(QByteArray, heard);
    play(QTest::currentDataTag(), startTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    QCOMPARE(visited().constLast(), QString::fromLatin1(inFull(heard)));
    QVERIFY(!sound_->wasOpened());
}

void TestStreamFaults::oddTitlesAreShown_data()
{
    QTest::addColumn<QString>("form");
    // Which of the station's tracks is on depends on the time.
    QTest::newRow("STREAM") << u"^[^-]+ - [^-]+$"_s;
    QTest::newRow("STREAM?icy=latin1") << u"^Déjà vu, [^-]+ - [^-]+$"_s;
    QTest::newRow("STREAM?icy=nul") << u"^[A-Z][A-Za-z ]+$"_s;
    QTest::newRow("STREAM?icy=unterminated") << u"^[^']+ - [^']+$"_s;
    QTest::newRow("STREAM?icy=long") << u"^.{511}\u2026$"_s;
    QTest::newRow("STREAM?icy=flood") << u"^[^-]+ - [^-]+ \\d+$"_s;
}

void TestStreamFaults::oddTitlesAreShown()
{
    QFETCH(QString, form);
    play(QTest::currentDataTag(), startTime);
    const QRegularExpression wanted(form);
    QTRY_VERIFY2_WITH_TIMEOUT(wanted.match(stage_->text(u"nowPlayingLabel"_s)).hasMatch(),
                              qPrintable(stage_->text(u"nowPlayingLabel"_s)), Stage::soundTime);
    // By the sound, whatever the server announces.
    QCOMPARE(stage_->text(u"formatLabel"_s), u"MP3 128 kbit/s"_s);
}

void TestStreamFaults::connectionsAreLost_data()
{
    QTest::addColumn<bool>("isTakenUp");
    for (const char *address : {
             "STREAM?stall-after=32000",
         }) {
        QTest::newRow(address) << false;
    }
    for (const char *address : {
             "STREAM?reset-after=32000",
             "STREAM?close-after=32000",
             "STREAM?close-after=64000&header=Content-Length:%20100000",
             "STREAM?close-after=16000&rate=16000",
             "STREAM?chunk=2000",
         }) {
        QTest::newRow(address) << true;
    }
}

/// The station ends with its sound but not before, or goes on.
void TestStreamFaults::connectionsAreLost()
{
    QFETCH(bool, isTakenUp);
    play(QTest::currentDataTag(), startTime);
    if (isTakenUp) {
        QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses.constLast(), Stage::healthyStart.constLast(),
                                  Stage::soundTime);
        QTRY_VERIFY_WITH_TIMEOUT(visited().size() > 4, Stage::soundTime);
        QCOMPARE(stage_->statuses.constLast(), Stage::healthyStart.constLast());
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart + Stage::soundsEnd, Stage::soundTime);
        QCOMPARE_LE(visited().size(), mostRequests);
    }
}

void TestStreamFaults::hostileSoundIsContained_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<bool>("isPaused");
    for (const char *address : {
             "RADIO/kind/ogg-vorbis?body=ogg-packet&after=2",
             "RADIO/kind/ogg-vorbis?body=ogg-second&after=2",
             "RADIO/kind/aac?tag=268435455&tag-of=text&after=2",
             "RADIO/kind/fmp4?body=mp4-atom",
             "RADIO/kind/fmp4?body=mp4-bomb",
             "RADIO/kind/webm?body=webm-element&after=2",
             "RADIO/kind/mpegts?body=ts-video&after=2",
         }) {
        QTest::addRow("%s", address) << QByteArray(address) << false;
        QTest::addRow("%s, paused", address) << QByteArray(address) << true;
    }
}

/// As fast as it is read, from the start or once it is heard; whatever becomes of it.
void TestStreamFaults::hostileSoundIsContained()
{
    QFETCH(QByteArray, address);
    QFETCH(bool, isPaused);
    play(address, failureTime);
    const bool isHeard =
        QTest::qWaitFor([this] { return stage_->playback.isPlaying(); }, 2 * silenceTime * 1000);
    QCOMPARE(isHeard, address.contains("after="));
    if (isPaused) {
        stage_->click(u"transportPlayButton"_s);
    }
    // Long enough to take a gigabyte.
    for (int second = 0; second < 2 * failureTime && stage_->playback.myBackendPlayer(); ++second) {
        QTest::qWait(1000);
    }
}

void TestStreamFaults::stoppedServersEnd()
{
    auto stopping = std::make_unique<LocalRadio>(QStringList{u"--burst"_s, u"2"_s});
    play(stopping->stream(0).toLatin1(), startTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    stopping.reset();
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart + Stage::soundsEnd, Stage::soundTime);
}

void TestStreamFaults::longPlaylistsEnd()
{
    play(QByteArray("STREAM?status=404 ").repeated(mostCandidates) + "STREAM", 2 * failureTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::failure, 2 * Stage::soundTime);
    QVERIFY(!visited().contains(radio_.stream(0)));
}

/// Its own server sends the station to another port, where it would play with the credentials.
void TestStreamFaults::credentialsStayAtHome()
{
    const QUrl stream(radio_.stream(0));
    const QString mountpoint = stream.path().replace("/stream/"_L1, "/private/"_L1) + u";?redirect=port"_s;
    const qsizetype before = radio_.logged(u"request"_s).size();
    stage_->settings.setValue("timeout_value", failureTime);
    watch_.start();
    stage_->play(privateStation(stream, mountpoint, u"user"_s, u"pass"_s));
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::failure, Stage::soundTime);
    int atHome = 0;
    int elsewhere = 0;
    for (const QJsonObject &request : radio_.logged(u"request"_s).mid(before)) {
        const bool isHome = request["port"_L1].toInt() == stream.port();
        ++(isHome ? atHome : elsewhere);
        QCOMPARE(QJsonDocument(request).toJson().contains("Authorization"), isHome);
    }
    QVERIFY(atHome > 0 && elsewhere > 0);
}

void TestStreamFaults::shortAnswersFail_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("a note") << note;
    QTest::newRow("too little") << answerHead + sound_->bytes().first(100);
}

void TestStreamFaults::shortAnswersFail()
{
    QFETCH(QByteArray, answer);
    ScriptedServer server;
    server.script("/short", answer);
    play(server.address(u"/short"_s).toLatin1(), failureTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::failure, Stage::soundTime);
    QCOMPARE(server.requests().size(), 1);
}

void TestStreamFaults::closedServersEnd_data()
{
    QTest::addColumn<QByteArray>("next");
    QTest::newRow("sound, then a redirect")
        << QByteArray("HTTP/1.0 302 Found\r\nLocation: ELSEWHERE\r\n\r\n");
    QTest::newRow("sound, then a note") << note;
}

/// Servers that close the connection while they play, and answer the next request otherwise.
void TestStreamFaults::closedServersEnd()
{
    QFETCH(QByteArray, next);
    ScriptedServer elsewhere;
    ScriptedServer server;
    // However often a slow machine asks before it plays.
    server.script("/closed", answerHead + sound_->bytes(), ScriptedServer::After::StayOpen);
    play(server.address(u"/closed"_s).toLatin1(), startTime);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    const qsizetype before = server.requests().size();
    server.script("/closed", next.replace("ELSEWHERE", elsewhere.address(u"/x"_s).toLatin1()));
    server.closeConnections();
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart + Stage::soundsEnd, Stage::soundTime);

    QVERIFY(server.requests().size() > before);
    QTRY_COMPARE(server.openConnections(), 0);
}

QTEST_MAIN(TestStreamFaults)
#include "tst_streamfaults.moc"
