#include "playback/keypath.h"
#include "playback/mpv/mpvbackend.h"
#include "playback/streamplayback.h"
#include "support/localradio.h"
#include "support/scriptedserver.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr int soundTime = 30'000;
/// Less than what the radio sends at once.
constexpr qint64 pausedBytes = 128LL * 1024;
/// About a second of MP3 at 128 kbit/s.
constexpr int shortBytes = 16'000;
/// What an observer may need to show what it has been told; libmpv goes on meanwhile.
constexpr unsigned long observerTime = 30;

/// Takes its time over every report, and releases the player at one of them; at the first sound it may pause.
class SlowReleaser : public Observer
{
public:
    SlowReleaser(std::shared_ptr<BackendPlayer> &player, QString keyPath)
        : player_(player)
        , keyPath_(std::move(keyPath))
    {
    }

    void observeValueForKeyPath(QStringView keyPath, const Observable *, const QVariant &) override
    {
        QThread::msleep(observerTime);
        if (keyPath == keyPath_) {
            player_.reset();
        } else if (keyPath == KeyPath::loadedTimeRanges && keyPath_ == KeyPath::playbackBufferFull) {
            player_->pause();
        }
    }

private:
    std::shared_ptr<BackendPlayer> &player_;
    QString keyPath_;
};
} // namespace

/// The backend as it is, with libmpv, on what it reports.
class TestMpvBackend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(radio_.isRunning()); }
    void reportsMayEndTheStream_data();
    void reportsMayEndTheStream();
    void fullBuffersEndAPause();

private:
    LocalRadio radio_;
};

void TestMpvBackend::reportsMayEndTheStream_data()
{
    QTest::addColumn<bool>("isShort");
    for (const QStringView keyPath :
         {KeyPath::status, KeyPath::playbackLikelyToKeepUp, KeyPath::loadedTimeRanges,
          KeyPath::playbackBufferEmpty, KeyPath::playbackBufferFull}) {
        QTest::newRow(keyPath.toUtf8().constData()) << (keyPath == KeyPath::playbackBufferEmpty);
    }
}

/// From within the report, and by an observer that has been slow before.
void TestMpvBackend::reportsMayEndTheStream()
{
    QFETCH(bool, isShort);
    ScriptedServer server;
    const QByteArray answer = radio_.beginning(0, shortBytes);
    server.scriptBody("/short", answer.mid(answer.indexOf("\r\n\r\n") + 4));
    MpvBackend backend(*AudioOutput::fromText(u"null"_s), pausedBytes);
    std::shared_ptr<BackendItem> item =
        backend.makeItem({.url = QUrl(isShort ? server.address(u"/short"_s) : radio_.stream(0))});
    std::shared_ptr<BackendPlayer> player = backend.makePlayer(item);
    SlowReleaser releaser(player, QString::fromLatin1(QTest::currentDataTag()));
    for (const QStringView keyPath : {KeyPath::playbackLikelyToKeepUp, KeyPath::loadedTimeRanges,
                                      KeyPath::playbackBufferEmpty, KeyPath::playbackBufferFull}) {
        item->addObserver(&releaser, keyPath);
    }
    player->addObserver(&releaser, KeyPath::status);
    item.reset();
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(!player, soundTime);
    QVERIFY(backend.waitForDetachedWork(std::chrono::milliseconds(soundTime)));
}

void TestMpvBackend::fullBuffersEndAPause()
{
    MpvBackend backend(*AudioOutput::fromText(u"null"_s), pausedBytes);
    StreamPlayback playback(
        backend, [] { return QVariant(); }, [] { return QVariant(); });
    QStringList statuses;
    connect(&playback, &StreamPlayback::statusChanged, [&statuses](const QString &text) {
        if (statuses.isEmpty() || statuses.constLast() != text) {
            statuses.append(text);
        }
    });
    playback.playRadioFromURL(radio_.stream(0), u"station"_s);
    QTRY_VERIFY_WITH_TIMEOUT(playback.isPlaying(), soundTime);
    playback.togglePause();
    QTRY_COMPARE_WITH_TIMEOUT(playback.myBackendPlayer(), nullptr, soundTime);
    QCOMPARE(statuses.last(3), (QStringList{u"Paused (buffering in background)"_s, u"Buffer is full !"_s,
                                            u"Terminated / lost connection"_s}));
    QVERIFY(backend.waitForDetachedWork(std::chrono::milliseconds(soundTime)));
}

QTEST_MAIN(TestMpvBackend)
#include "tst_mpvbackend.moc"
