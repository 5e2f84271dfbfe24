#include "playback/keypath.h"
#include "playback/mpv/mpvbackend.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/stream/bytepipe.h"
#include "support/localradio.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <functional>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr int soundTime = 30'000;

/// Counts how often more has been loaded.
class Listener : public Observer
{
public:
    void observeValueForKeyPath(QStringView, const Observable *, const QVariant &) override { ++reports_; }
    /// Whether so many more reports come, a second of sound each.
    bool hearsMore(int reports)
    {
        const int wanted = reports_ + reports;
        return QTest::qWaitFor([this, wanted] { return reports_ >= wanted; }, soundTime);
    }

private:
    int reports_ = 0;
};

/// The names of this process's threads, each of which ends with a line end.
QByteArray threadNames()
{
    QByteArray names;
    for (const QString &thread : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(u"/proc/self/task/%1/comm"_s.arg(thread));
        if (name.open(QIODevice::ReadOnly)) {
            names += name.readAll();
        }
    }
    return names;
}
} // namespace

/// With the libmpv that is installed: versions differ in what they know.
class TestMpvHandle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void refusalsAreLogged_data();
    void refusalsAreLogged();
    void nothingIsRefused_data();
    void nothingIsRefused();

private:
    std::unique_ptr<const MpvLibrary> library_;
    LocalRadio radio_;
};

void TestMpvHandle::initTestCase()
{
    library_ = MpvLibrary::open();
    QVERIFY(library_);
    QVERIFY(radio_.isRunning());
}

void TestMpvHandle::refusalsAreLogged_data()
{
    QTest::addColumn<QByteArray>("refused");
    QTest::addColumn<std::function<void(MpvHandle &)>>("ask");
    QTest::addColumn<MpvHandle::Options>("ofTheStream");
    using Ask = std::function<void(MpvHandle &)>;
    const auto row = [](const char *name, const QByteArray &refused, const Ask &ask) {
        QTest::newRow(name) << refused << ask << MpvHandle::Options();
    };
    row("command", "nonsense:", [](MpvHandle &handle) { handle.command({"nonsense"}); });
    row("argument", "af:", [](MpvHandle &handle) { handle.command({"af", "add", "nonsense"}); });
    row("property", "nonsense:", [](MpvHandle &handle) { handle.setFlag("nonsense", true); });
    row("value", "volume:", [](MpvHandle &handle) { handle.setNumber("volume", -1000); });
    row("observed", "nonsense:", [](MpvHandle &handle) { handle.observe("nonsense", MPV_FORMAT_FLAG); });
    QTest::newRow("stream") << QByteArray("an option of a stream:.* nonsense ") << Ask([](MpvHandle &) {})
                            << MpvHandle::Options{{"nonsense", "yes"}};
}

void TestMpvHandle::refusalsAreLogged()
{
    QFETCH(QByteArray, refused);
    QFETCH(std::function<void(MpvHandle &)>, ask);
    QFETCH(MpvHandle::Options, ofTheStream);
    QTest::ignoreMessage(QtWarningMsg, "libmpv refuses option: option not found");
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"^libmpv refuses "_s + QString::fromLatin1(refused)));
    const auto handle =
        MpvHandle::create(*library_, std::make_shared<DetachedWork>(), {{"option", "x"}, {"idle", "yes"}});
    QVERIFY(handle);
    ask(*handle);
    // Nothing comes. Its end is told after all replies, and before what libmpv's log says of it.
    const auto pipe = std::make_shared<BytePipe>();
    pipe->finish();
    handle->load(pipe, ofTheStream, 1);
    bool ended = false;
    QVERIFY(QTest::qWaitFor([&handle, &ended] {
        const mpv_event_id event = handle->nextEvent().event_id;
        ended = ended || event == MPV_EVENT_END_FILE;
        return ended && event == MPV_EVENT_NONE;
    }));
}

void TestMpvHandle::nothingIsRefused_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("null") << u"null"_s;
    QTest::newRow("pcm") << u"pcm:"_s;
}

/// Nor deprecated, nor more than is wanted: a station is played, and everything is done with it that a user
/// can do.
void TestMpvHandle::nothingIsRefused()
{
    QFETCH(QString, output);
    QTest::failOnWarning(QRegularExpression(u"."_s));
    const QTemporaryDir folder;
    if (output.endsWith(u':')) {
        output += folder.filePath(u"sound.wav"_s);
    }
    MpvBackend backend(*AudioOutput::fromText(output));
    backend.setSound({.volume = 80, .bass = 3});
    const auto item = backend.makeItem(
        {.url = QUrl(radio_.stream(0)), .headers = {{"Authorization", "Basic eDp5"}, {"X", "y"}}});
    Listener listener;
    item->addObserver(&listener, KeyPath::loadedTimeRanges);
    auto player = backend.makePlayer(item);
    player->play();
    QVERIFY(listener.hearsMore(1));
    QVERIFY2(!threadNames().contains("lua"), threadNames().constData());
    backend.setSound({.volume = 50, .bass = -3, .middle = 3, .treble = 3});
    // The tone has got there, and whatever was asked of the core has been answered.
    QVERIFY(listener.hearsMore(2));
    player->pause();
    backend.setSound({.muted = true});
    player->play();
    QVERIFY(listener.hearsMore(1));
    item->removeObserver(&listener, KeyPath::loadedTimeRanges);
    player.reset();
    QVERIFY(backend.waitForDetachedWork(std::chrono::milliseconds(soundTime)));
}

QTEST_MAIN(TestMpvHandle)
#include "tst_mpvhandle.moc"
