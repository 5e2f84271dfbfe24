#include "support/localradio.h"
#include "support/stage.h"

#include <QFile>
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
/// More than any one station is asked for in two seconds.
constexpr int mostRequests = 12;

/// A file that would play, and whether somebody has opened it.
class WatchedSound
{
public:
    explicit WatchedSound(const QByteArray &sound)
    {
        QFile file(name());
        if (file.open(QIODevice::WriteOnly)) {
            file.write(sound);
            file.close();
            watch_ = ::inotify_init1(IN_NONBLOCK);
            watching_ = ::inotify_add_watch(watch_, QFile::encodeName(name()).constData(), IN_OPEN) >= 0;
        }
    }
    ~WatchedSound() { ::close(watch_); }
    Q_DISABLE_COPY_MOVE(WatchedSound)

    QString name() const { return folder_.filePath(u"sound.mp3"_s); }
    bool isWatched() const { return watching_; }
    bool wasOpened() const
    {
        std::array<char, 4096> events;
        return ::read(watch_, events.data(), events.size()) >= 0;
    }

private:
    QTemporaryDir folder_;
    int watch_ = -1;
    bool watching_ = false;
};
} // namespace

/// What servers and playlists do that they should not, one after the other in the same window.
class TestBadStreams : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void deadStationsEnd_data();
    void deadStationsEnd();
    void oddStationsPlay_data();
    void oddStationsPlay();
    void oddTitlesAreShown_data();
    void oddTitlesAreShown();
    void closingServersEnd_data();
    void closingServersEnd();
    void cleanupTestCase();

private:
    QByteArray inFull(QByteArray text) const;
    /// Makes the station's playlist these addresses, with blanks between, and plays it.
    void play(const QByteArray &addresses, int timeout);
    /// The addresses that localradio has been asked for since play().
    QStringList visited() const;

    LocalRadio radio_;
    OneStationDirectory directory_;
    std::unique_ptr<WatchedSound> sound_;
    std::unique_ptr<Stage> stage_;
    qsizetype visitedBefore_ = 0;
};

void TestBadStreams::initTestCase()
{
    QVERIFY(radio_.isRunning());
    QVERIFY(!radio_.secondAddress().isEmpty());
    const QByteArray answer = radio_.beginning(0, burstBytes);
    sound_ = std::make_unique<WatchedSound>(answer.mid(answer.indexOf("\r\n\r\n") + 4));
    QVERIFY(sound_->isWatched());
    stage_ = std::make_unique<Stage>(directory_.address());
}

void TestBadStreams::cleanupTestCase()
{
    stage_.reset();
}

QByteArray TestBadStreams::inFull(QByteArray text) const
{
    return text.replace("STREAM", radio_.stream(0).toLatin1())
        .replace("RADIO", radio_.address().toLatin1())
        .replace("SECOND", radio_.secondAddress().toLatin1())
        .replace("SILENT", directory_.address(u"/silent"_s).toLatin1())
        .replace("SOUND", QFile::encodeName(sound_->name()));
}

void TestBadStreams::play(const QByteArray &addresses, int timeout)
{
    directory_.leadTo(inFull(addresses).split(' '));
    visitedBefore_ = radio_.logged(u"request"_s).size();
    stage_->settings.setValue("timeout_value", timeout);
    stage_->doubleClick(0);
}

QStringList TestBadStreams::visited() const
{
    QStringList addresses;
    for (const QJsonObject &request : radio_.logged(u"request"_s).mid(visitedBefore_)) {
        addresses.append(
            u"http://127.0.0.1:%1%2"_s.arg(request["port"_L1].toInt()).arg(request["target"_L1].toString()));
    }
    return addresses;
}

void TestBadStreams::deadStationsEnd_data()
{
    QTest::addColumn<QStringList>("statuses");
    QTest::addColumn<bool>("endless");
    // Each names all addresses that are visited.
    for (const char *addresses : {
             "STREAM?status=404 STREAM?status=503",
             "STREAM?body=html",
             "STREAM?redirect=loop",
             "STREAM?redirect=file://SOUND",
             "RADIO/refused",
             "file://SOUND memory://x edl://SOUND SOUND",
             "RADIO/playlist",
             "RADIO/playlist?itself=1",
             "RADIO/playlist?each-other=1 RADIO/playlist?each-other=2",
         }) {
        QTest::newRow(addresses) << Stage::failure << false;
    }
    for (const char *addresses : {
             "SILENT",
             "STREAM?stall-after=0",
             "STREAM?close-after=0",
             "STREAM?rate=500",
         }) {
        QTest::newRow(addresses) << Stage::silence << false;
    }
    for (const char *addresses : {
             "STREAM?body=random",
             "STREAM?body=zeros",
             "RADIO/playlist?endless=1",
         }) {
        QTest::newRow(addresses) << Stage::silence << true;
    }
}

/// And the next station plays.
void TestBadStreams::deadStationsEnd()
{
    const QByteArray addresses = QTest::currentDataTag();
    play(addresses, 2);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses.value(stage_->statuses.size() - 1), Stage::failure.last(),
                              Stage::soundTime);
    QFETCH(bool, endless);
    if (endless) {
        // Whether it is found out before the time-out depends on the machine.
        stage_->statuses.removeAll(u"Failed"_s);
    }
    QTEST(stage_->statuses, "statuses");
    QCOMPARE(stage_->text(u"playerStatusString"_s), u"idle"_s);
    QStringList reached = visited();
    QCOMPARE_LE(reached.size(), mostRequests);
    reached.removeDuplicates();
    QCOMPARE(reached, QString::fromLatin1(inFull(addresses)).split(u' ').filter(radio_.address() + u'/'));
    QVERIFY(!sound_->wasOpened());

    play("STREAM", 4);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
}

void TestBadStreams::oddStationsPlay_data()
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
         }) {
        QTest::newRow(address) << QByteArray(address);
    }
}

void TestBadStreams::oddStationsPlay()
{
    QFETCH(QByteArray, heard);
    play(QTest::currentDataTag(), 4);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses, Stage::healthyStart, Stage::soundTime);
    QCOMPARE(visited().constLast(), QString::fromLatin1(inFull(heard)));
    QVERIFY(!sound_->wasOpened());
}

void TestBadStreams::oddTitlesAreShown_data()
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

void TestBadStreams::oddTitlesAreShown()
{
    QFETCH(QString, form);
    play(QTest::currentDataTag(), 4);
    const QRegularExpression wanted(form);
    QTRY_VERIFY2_WITH_TIMEOUT(wanted.match(stage_->text(u"nowPlayingLabel"_s)).hasMatch(),
                              qPrintable(stage_->text(u"nowPlayingLabel"_s)), Stage::soundTime);
    // By the sound, whatever the server announces.
    QCOMPARE(stage_->text(u"formatLabel"_s), u"MP3 128 kbit/s"_s);
}

void TestBadStreams::closingServersEnd_data()
{
    const QByteArray burst = radio_.beginning(0, burstBytes);
    // Of a length that is not stated, so that nothing tells its end from a lost connection.
    const QByteArray note = "HTTP/1.0 200 OK\r\n\r\nClosed for the night";
    const QStringList playedOut = Stage::healthyStart + Stage::soundsEnd;
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("next");
    QTest::addColumn<QStringList>("statuses");
    QTest::newRow("sound, then a redirect") << burst << QByteArray("ELSEWHERE") << playedOut;
    QTest::newRow("sound, then a note") << burst << note << playedOut;
    QTest::newRow("a note") << note << note << Stage::failure;
}

/// Servers that close the connection, and what they answer to those who come back.
void TestBadStreams::closingServersEnd()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, next);
    ScriptedServer elsewhere;
    next.replace("ELSEWHERE",
                 "HTTP/1.0 302 Found\r\nLocation: " + elsewhere.address(u"/x"_s).toLatin1() + "\r\n\r\n");
    ScriptedServer server;
    server.script("/closing", first);
    server.scriptNext("/closing", next);
    play(server.address(u"/closing"_s).toLatin1(), 2);
    QFETCH(QStringList, statuses);
    QTRY_COMPARE_WITH_TIMEOUT(stage_->statuses.value(stage_->statuses.size() - 1), statuses.constLast(),
                              Stage::soundTime);

    QCOMPARE(stage_->statuses, statuses);
    QVERIFY(server.requests().size() > 1);
    QCOMPARE(elsewhere.requests(), QList<QByteArray>());
    QTRY_COMPARE(server.openConnections(), 0);
}

QTEST_MAIN(TestBadStreams)
#include "tst_badstreams.moc"
