#include "playback/keypath.h"
#include "playback/mpv/listenersound.h"
#include "playback/mpv/mpvitem.h"
#include "playback/mpv/mpvplayer.h"
#include "support/scriptedserver.h"

#include <QTest>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 pausedBytes = 1000;

/// A change of a property, on the heap as libmpv's own are.
class Change
{
public:
    static std::unique_ptr<Change> coreRuns()
    {
        auto change = std::make_unique<Change>();
        change->property_ = {"core-idle", MPV_FORMAT_FLAG, &change->coreIdle_};
        return change;
    }

    /// A second of sound that has been loaded.
    static std::unique_ptr<Change> cache(qint64 bytes, bool rests, bool underrun)
    {
        auto change = std::make_unique<Change>();
        change->add("fw-bytes", MPV_FORMAT_INT64).u.int64 = bytes;
        change->add("idle", MPV_FORMAT_FLAG).u.flag = rests ? 1 : 0;
        change->add("cache-end", MPV_FORMAT_DOUBLE).u.double_ = 1;
        change->add("underrun", MPV_FORMAT_FLAG).u.flag = underrun ? 1 : 0;
        for (QByteArray &name : change->names_) {
            change->keys_.push_back(name.data());
        }
        change->list_ = {static_cast<int>(change->values_.size()), change->values_.data(),
                         change->keys_.data()};
        change->node_.format = MPV_FORMAT_NODE_MAP;
        change->node_.u.list = &change->list_;
        change->property_ = {"demuxer-cache-state", MPV_FORMAT_NODE, &change->node_};
        return change;
    }

    mpv_event *event()
    {
        event_.event_id = MPV_EVENT_PROPERTY_CHANGE;
        event_.data = &property_;
        return &event_;
    }

private:
    mpv_node &add(const char *name, mpv_format format)
    {
        names_.emplace_back(name);
        values_.emplace_back().format = format;
        return values_.back();
    }

    int coreIdle_ = 0;
    std::vector<QByteArray> names_;
    std::vector<char *> keys_;
    std::vector<mpv_node> values_;
    mpv_node_list list_ = {};
    mpv_node node_ = {};
    mpv_event_property property_ = {};
    mpv_event event_ = {};
};

/// What the core under test has to tell, and what it has told last; both are gone with its handle.
struct Core
{
    std::deque<std::unique_ptr<Change>> waiting;
    std::unique_ptr<Change> told;
    std::function<void()> wakeup;
};
Core core;
mpv_event noEvent = {};

void tell(std::unique_ptr<Change> change)
{
    core.waiting.push_back(std::move(change));
    core.wakeup();
}

MpvLibrary scriptedLibrary()
{
    MpvLibrary library;
    library.create = [] { return reinterpret_cast<mpv_handle *>(&core); };
    library.initialize = [](mpv_handle *) { return 0; };
    library.terminateDestroy = [](mpv_handle *) {};
    library.setOptionString = [](mpv_handle *, const char *, const char *) { return 0; };
    library.setPropertyAsync = [](mpv_handle *, uint64_t, const char *, mpv_format, void *) { return 0; };
    library.getPropertyAsync = [](mpv_handle *, uint64_t, const char *, mpv_format) { return 0; };
    library.requestLogMessages = [](mpv_handle *, const char *) { return 0; };
    library.observeProperty = [](mpv_handle *, uint64_t, const char *, mpv_format) { return 0; };
    library.streamCbAddRo = [](mpv_handle *, const char *, void *, mpv_stream_cb_open_ro_fn) { return 0; };
    library.commandAsync = [](mpv_handle *, uint64_t, const char **) { return 0; };
    library.commandNodeAsync = [](mpv_handle *, uint64_t, mpv_node *) { return 0; };
    library.waitEvent = [](mpv_handle *, double) {
        if (core.waiting.empty()) {
            core.told.reset();
            return &noEvent;
        }
        core.told = std::move(core.waiting.front());
        core.waiting.pop_front();
        return core.told->event();
    };
    library.setWakeupCallback = [](mpv_handle *, void (*wakeup)(void *), void *data) {
        if (wakeup != nullptr) {
            core.wakeup = [wakeup, data] { wakeup(data); };
        } else {
            core = {};
        }
    };
    return library;
}

/// Releases the player when it is told of one of the key paths.
class Releaser : public Observer
{
public:
    Releaser(std::shared_ptr<MpvPlayer> &player, QString keyPath)
        : player_(player)
        , keyPath_(std::move(keyPath))
    {
    }

    void observeValueForKeyPath(QStringView keyPath, const Observable *, const QVariant &) override
    {
        told.append(keyPath.toString());
        if (keyPath == keyPath_) {
            player_.reset();
        }
    }

    QStringList told;

private:
    std::shared_ptr<MpvPlayer> &player_;
    QString keyPath_;
};
} // namespace

/// One item on a core whose events the test makes.
class TestMpvItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsMayEndTheStream_data();
    void reportsMayEndTheStream();
};

void TestMpvItem::reportsMayEndTheStream_data()
{
    const QString likely = KeyPath::playbackLikelyToKeepUp.toString();
    const QString ranges = KeyPath::loadedTimeRanges.toString();
    const QString empty = KeyPath::playbackBufferEmpty.toString();
    const QString full = KeyPath::playbackBufferFull.toString();
    const QString gone = u"/gone"_s;
    const QString silent = u"/silent"_s;
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isPaused");
    QTest::addColumn<QStringList>("told");
    QTest::newRow("no stream") << gone << false << QStringList{KeyPath::status.toString()};
    QTest::newRow("the first sound") << silent << false << QStringList{likely};
    QTest::newRow("ranges") << silent << false << QStringList{likely, ranges};
    QTest::newRow("nothing more to play") << silent << false << QStringList{likely, ranges, likely, empty};
    QTest::newRow("a full buffer") << silent << true << QStringList{likely, full};
}

/// What an observer may do at any report: the item has to go on without its handle and its player.
void TestMpvItem::reportsMayEndTheStream()
{
    QFETCH(QString, path);
    QFETCH(bool, isPaused);
    QFETCH(QStringList, told);
    const MpvLibrary library = scriptedLibrary();
    const auto detached = std::make_shared<DetachedWork>();
    const MpvConditions conditions{std::make_shared<ListenerSound>(), std::make_shared<HeardStream>(),
                                   pausedBytes};
    ScriptedServer server;
    server.scriptBody("/gone", "Gone", "404 Not Found");
    std::shared_ptr<MpvItem> item(new MpvItem({.url = QUrl(server.address(path))}, conditions,
                                              MpvHandle::create(library, detached, {})),
                                  [](MpvItem *released) { released->deleteLater(); });
    auto player = std::make_shared<MpvPlayer>(item);
    Releaser releaser(player, told.constLast());
    for (const QStringView keyPath : {KeyPath::playbackLikelyToKeepUp, KeyPath::loadedTimeRanges,
                                      KeyPath::playbackBufferEmpty, KeyPath::playbackBufferFull}) {
        item->addObserver(&releaser, keyPath);
    }
    player->addObserver(&releaser, KeyPath::status);
    item.reset();
    player->play();
    if (isPaused) {
        player->pause();
    }
    if (told.contains(KeyPath::playbackLikelyToKeepUp)) {
        tell(Change::coreRuns());
        tell(Change::cache(pausedBytes, isPaused, !isPaused));
    }
    QTRY_VERIFY(!player);
    QCOMPARE(releaser.told, told);
    QVERIFY(detached->waitForNone(std::chrono::seconds(5)));
}

QTEST_GUILESS_MAIN(TestMpvItem)
#include "tst_mpvitem.moc"
