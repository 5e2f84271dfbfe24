#include "base/atomicfield.h"
#include "playback/mpv/mpvcores.h"
#include "playback/streamplayback.h"
#include "support/fakebackend.h"
#include "threads/handovers.h"
#include "ui/rack/artworkloader.h"

#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr std::chrono::seconds deadline{60};

/// What stands in for a core of libmpv. It belongs to whoever has the handle, and so needs no lock.
struct FakeCore
{
    int uses = 0;
};

struct
{
    std::atomic<int> opened = 0;
    std::atomic<int> made = 0;
    std::atomic<int> gone = 0;
} libmpv;

int use(mpv_handle *handle)
{
    return ++reinterpret_cast<FakeCore *>(handle)->uses;
}

/// Calls `action` on four threads that begin at the same moment, each with its number, and waits for them.
void together(const std::function<void(int)> &action)
{
    constexpr int count = 4;
    std::barrier start(count);
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&start, &action, number] {
            start.arrive_and_wait();
            action(number);
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}
} // namespace

/// In place of the one that opens libmpv.
std::unique_ptr<const MpvLibrary> MpvLibrary::open()
{
    ++libmpv.opened;
    auto library = std::make_unique<MpvLibrary>();
    library->create = [] {
        ++libmpv.made;
        return reinterpret_cast<mpv_handle *>(new FakeCore);
    };
    library->initialize = use;
    library->terminateDestroy = [](mpv_handle *handle) {
        ++libmpv.gone;
        delete reinterpret_cast<FakeCore *>(handle);
    };
    library->setOptionString = [](mpv_handle *handle, const char *, const char *) { return use(handle); };
    library->setPropertyAsync = [](mpv_handle *handle, uint64_t, const char *, mpv_format, void *) {
        return use(handle);
    };
    library->requestLogMessages = [](mpv_handle *handle, const char *) { return use(handle); };
    library->streamCbAddRo = [](mpv_handle *handle, const char *, void *, mpv_stream_cb_open_ro_fn) {
        return use(handle);
    };
    library->setWakeupCallback = [](mpv_handle *handle, void (*)(void *), void *) { use(handle); };
    return library;
}

/// What several threads do at the same time. Most faults here are seen by ThreadSanitizer only.
class TestThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { QVERIFY(detached_->waitForNone(deadline)); }
    void fieldsAreReadWhole();
    void oldValuesAreDestroyedOutsideTheLock();
    void detachedWorkIsCounted();
    void oneCoreIsInReserve();
    void coresHaveOneOwner();
    void artworkIsKeptMeanwhile();
    void itemsAreMadeMeanwhile();

private:
    QTemporaryDir folder_;
    std::shared_ptr<DetachedWork> detached_;
};

void TestThreads::init()
{
    detached_ = std::make_shared<DetachedWork>();
    libmpv.opened = libmpv.made = libmpv.gone = 0;
}

void TestThreads::fieldsAreReadWhole()
{
    AtomicField<std::shared_ptr<const std::string>> field(std::make_shared<const std::string>(64, 'a'));
    std::atomic<int> torn = 0;
    together([&](int number) {
        for (int round = 0; round < 20'000; ++round) {
            if (number % 2 == 0) {
                field.set(std::make_shared<const std::string>(64, static_cast<char>('a' + number)));
            } else if (const auto text = field.get(); *text != std::string(64, text->front())) {
                ++torn;
            }
        }
    });
    QCOMPARE(torn, 0);
}

/// The last owner's destructor may use the field itself.
void TestThreads::oldValuesAreDestroyedOutsideTheLock()
{
    AtomicField<std::shared_ptr<int>> field;
    bool destroyed = false;
    field.set(std::shared_ptr<int>(new int(1), [&field, &destroyed](const int *value) {
        destroyed = field.get() == nullptr;
        delete value;
    }));
    field.set(nullptr);
    QVERIFY(destroyed);
}

void TestThreads::detachedWorkIsCounted()
{
    std::array<int, 200> results{};
    together([&](int number) {
        for (std::size_t at = static_cast<std::size_t>(number); at < results.size(); at += 4) {
            DetachedWork::run(detached_, [&results, at] { results.at(at) = 1; });
        }
    });
    QVERIFY(detached_->waitForNone(deadline));
    QCOMPARE(std::count(results.begin(), results.end(), 1), 200);

    std::mutex gate;
    {
        const std::scoped_lock held(gate);
        DetachedWork::run(detached_, [&gate] { const std::scoped_lock passed(gate); });
        QVERIFY(!detached_->waitForNone({}));
    }
    QVERIFY(detached_->waitForNone(deadline));
}

void TestThreads::oneCoreIsInReserve()
{
    MpvCores cores(detached_, {{"option", "value"}});
    cores.prepare();
    cores.prepare();
    QCOMPARE(libmpv.made, 1);
    auto first = cores.take();
    QCOMPARE(libmpv.made, 1);
    const auto second = cores.take();
    QCOMPARE(libmpv.made, 2);
    cores.prepare();
    cores.close();
    cores.prepare();
    QVERIFY(detached_->waitForNone(deadline));
    QCOMPARE(libmpv.made, 3);
    QCOMPARE(libmpv.gone, 1);
    first.reset();
    QVERIFY(detached_->waitForNone(deadline));
    QCOMPARE(libmpv.gone, 2);
    QCOMPARE(libmpv.opened, 1);
}

void TestThreads::coresHaveOneOwner()
{
    constexpr int libraries = 10;
    for (int library = 0; library < libraries; ++library) {
        MpvCores cores(detached_, {{"option", "value"}});
        together([&](int number) {
            for (int round = 0; round < 100; ++round) {
                if (number % 2 == 0) {
                    cores.prepare();
                } else {
                    cores.take()->setFlag("pause", true);
                }
            }
            if (number == 0) {
                cores.close();
            }
        });
        QVERIFY(detached_->waitForNone(deadline));
    }
    QCOMPARE(libmpv.opened, libraries);
    QCOMPARE(libmpv.gone, libmpv.made.load());
}

void TestThreads::artworkIsKeptMeanwhile()
{
    if (!handoversAreSeen) {
        QSKIP("this Qt's handovers would look like races");
    }
    QStringList files;
    for (int number = 0; number < 8; ++number) {
        files.append(folder_.filePath(QString::number(number) + u".png"_s));
        QImage image(30, 30, QImage::Format_RGB32);
        image.fill(Qt::green);
        QVERIFY(image.save(files.last()));
    }
    qsizetype answered = 0;
    std::vector<std::shared_ptr<const ArtworkLoader::Request>> requests;
    ArtworkLoader loader;
    for (const int side : {20, 21, 22, 20, 21, 22}) {
        for (const QString &file : std::as_const(files)) {
            requests.push_back(loader.request(file, side, [&answered](const QImage &image) {
                answered += image.pixelColor(3, 3) == QColor(Qt::green) ? 1 : 0;
            }));
            const QImage shown = loader.picture(file, side);
            QVERIFY(shown.isNull() || shown.width() == side);
        }
    }
    QTRY_COMPARE(answered, 6 * files.size());
}

void TestThreads::itemsAreMadeMeanwhile()
{
    if (!handoversAreSeen) {
        QSKIP("this Qt's handovers would look like races");
    }
    const auto nothingStored = [] { return QVariant(); };
    FakeBackend backend;
    StreamPlayback playback(backend, nothingStored, nothingStored);
    for (int round = 1; round <= 50; ++round) {
        for (const QString &address : {u"http://h/A"_s, u"http://h/B"_s, u"http://h/C"_s}) {
            playback.executeSynchAVPlayer(address, u"Station"_s);
        }
        QTRY_COMPARE(backend.journal.lines().count(u"player"_s), 3 * round);
        QCOMPARE(backend.player->item().request.url, QUrl(u"http://h/C"_s));
        playback.destroyPlayer();
    }
}

int main(int argc, char *argv[])
{
    HandoverApplication application(argc, argv);
    TestThreads test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_threads.moc"
