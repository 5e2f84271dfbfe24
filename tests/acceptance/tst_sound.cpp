#include "settings/statefile.h"
#include "support/localradio.h"
#include "support/pitch.h"
#include "support/scriptedserver.h"
#include "support/soundserver.h"
#include "support/stage.h"

#include <QDataStream>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {
using Samples = std::vector<double>;

constexpr qsizetype second = SoundRecorder::sampleRate;
/// Short against the swell of the stations' sound.
constexpr qsizetype excerpt = second / 3;
/// By what factor a change of the sound may be rougher than the sound before and after it. A jump of the
/// level is rougher by ten and more; the noise in the stations' sound makes differences of a quarter.
constexpr double click = 2;
const QString streaming = u"- Streaming -"_s;

double levelOf(const Samples &samples)
{
    const double sum = std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0);
    return std::sqrt(sum / static_cast<double>(std::max<std::size_t>(1, samples.size())));
}

double peakOf(const Samples &samples)
{
    return std::accumulate(samples.begin(), samples.end(), 0.0,
                           [](double most, double sample) { return std::max(most, std::abs(sample)); });
}

/// How many samples of nothing at all there are on end, between what is heard.
std::ptrdiff_t longestGap(const Samples &samples)
{
    std::ptrdiff_t longest = 0;
    const auto isHeard = [](double value) { return value != 0; };
    auto last = std::find_if(samples.begin(), samples.end(), isHeard);
    while (last != samples.end()) {
        const auto next = std::find_if(last + 1, samples.end(), isHeard);
        longest = next == samples.end() ? longest : std::max(longest, next - last - 1);
        last = next;
    }
    return longest;
}

/// The second differences: little is left of tones, and everything of clicks and hiss.
Samples edgesOf(const Samples &samples)
{
    Samples edges;
    for (std::size_t index = 2; index < samples.size(); ++index) {
        edges.push_back(samples[index] - 2 * samples[index - 1] + samples[index - 2]);
    }
    return edges;
}

/// How many of the samples there are until silence.
std::size_t heard(const Samples &samples)
{
    const auto last = std::find_if(samples.rbegin(), samples.rend(), [](double value) { return value != 0; });
    return static_cast<std::size_t>(samples.rend() - last);
}

/// The real window and the real player, through the sound server.
struct SoundStage : Stage
{
    SoundStage(const QString &directory, SoundRecorder &soundRecorder)
        : Stage(directory, AudioOutput::automatic())
        , recorder(soundRecorder)
    {
        // Its controls are there from the first time that it is shown.
        click(u"audioButton"_s);
        click(u"audioButton"_s);
    }

    void set(const QString &slider, int value) { window.findChild<QSlider *>(slider)->setValue(value); }
    void press(const QString &button) { window.findChild<QPushButton *>(button)->click(); }
    /// Whether the stream comes to be heard.
    bool plays(const QString &address)
    {
        statuses.clear();
        const qsizetype begin = recorder.size();
        playback.playRadioFromURL(address, address);
        return QTest::qWaitFor(
            [&] { return statuses.contains(streaming) && levelOf(recorder.samples(begin)) > 0; }, soundTime);
    }
    /// Makes a change, waits until the sound is as it should be, and returns how much rougher it was on the
    /// way than before and after.
    double roughnessOf(const std::function<void()> &change, const std::function<bool(const Samples &)> &done)
    {
        const double before = peakOf(edgesOf(recorder.last(excerpt)));
        const qsizetype begin = recorder.size();
        change();
        if (!QTest::qWaitFor([&] { return done(recorder.last(excerpt)); }, soundTime)) {
            return std::numeric_limits<double>::infinity();
        }
        const double after = peakOf(edgesOf(recorder.last(excerpt)));
        return peakOf(edgesOf(recorder.samples(begin))) / std::max(before, after);
    }

    SoundRecorder &recorder;
};

/// A WAV file of a tone that grows with the time, so that its level tells the position.
constexpr int growingSeconds = 20;
constexpr double growingPitch = 1000;
QByteArray growingTone()
{
    constexpr int samples = growingSeconds * second;
    // 16 bits, one channel, 44.1 kHz, of unknown length.
    constexpr char header[] =
        "RIFF\xff\xff\xff\xffWAVEfmt \x10\0\0\0\1\0\1\0\x44\xac\0\0\x88\x58\1\0\2\0\x10\0"
        "data\xff\xff\xff\xff";
    QByteArray file(header, sizeof(header) - 1);
    QDataStream stream(&file, QIODevice::Append);
    stream.setByteOrder(QDataStream::LittleEndian);
    for (int index = 0; index < samples; ++index) {
        const double amplitude = 32767.0 * index / samples;
        const double phase = 2 * std::numbers::pi * growingPitch * index / second;
        stream << static_cast<qint16>(std::lround(amplitude * std::sin(phase)));
    }
    return file;
}

double secondsAt(const Samples &growing)
{
    return levelOf(growing) * std::numbers::sqrt2 * growingSeconds;
}
} // namespace

class TestSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void levelIsCubicAndSmooth();
    void toneChangesItsBand_data();
    void toneChangesItsBand();
    void everyStartHasTheLevel();
    void soundServerMayGoAndCome();
    void silenceIsImmediate();
    void chainIsHeardAsOne();

private:
    QString station(double pitch) const;

    SoundServer server_;
    LocalRadio radio_;
};

void TestSound::initTestCase()
{
    QVERIFY(server_.isRunning());
    QVERIFY(radio_.isRunning());
}

void TestSound::init()
{
    QFile::remove(StateFile::path());
}

/// The address of the station whose pitch is the nearest.
QString TestSound::station(double pitch) const
{
    const auto distance = [pitch](const QJsonValue &station) {
        return std::abs(std::log(station["pitch"_L1].toDouble() / pitch));
    };
    const auto &stations = radio_.stations();
    const auto nearest = std::min_element(
        stations.begin(), stations.end(),
        [&](const QJsonValue &left, const QJsonValue &right) { return distance(left) < distance(right); });
    return radio_.address() + (*nearest)["tunein"_L1].toString();
}

void TestSound::levelIsCubicAndSmooth()
{
    SoundRecorder recorder;
    SoundStage stage(radio_.address(), recorder);
    QVERIFY(stage.plays(station(110)));
    recorder.next(excerpt);
    const double loudest = levelOf(recorder.next(excerpt));

    const auto volume = [&stage](int value) { return [=, &stage] { stage.set(u"volumeSlider"_s, value); }; };
    const auto mute = [&stage] { stage.press(u"muteButton"_s); };
    const std::pair<std::function<void()>, double> changes[] = {
        {volume(50), 0.125}, {mute, 0.0}, {mute, 0.125}, {volume(100), 1.0}, {mute, 0.0}, {mute, 1.0}};
    for (const auto &[change, part] : changes) {
        const auto done = [loudest, share = part](const Samples &sound) {
            return std::abs(levelOf(sound) / loudest - share) <= 0.2 * share;
        };
        QCOMPARE_LT(stage.roughnessOf(change, done), click);
    }
}

void TestSound::toneChangesItsBand_data()
{
    QTest::addColumn<QString>("slider");
    QTest::addColumn<double>("pitch");
    QTest::addColumn<bool>("hiss");
    QTest::addColumn<double>("decibels");
    QTest::newRow("bass") << u"bassSlider"_s << 110.0 << false << 5.5;
    QTest::newRow("middle") << u"middleSlider"_s << 1046.5 << false << 12.0;
    QTest::newRow("treble") << u"trebleSlider"_s << 110.0 << true << 12.0;
}

/// By so many decibels at the station's pitch, or in the hiss above it.
void TestSound::toneChangesItsBand()
{
    QFETCH(QString, slider);
    QFETCH(double, pitch);
    QFETCH(bool, hiss);
    QFETCH(double, decibels);
    const auto strength = [hiss, pitch](const Samples &sound) {
        return 20 * std::log10(hiss ? levelOf(edgesOf(sound)) : std::sqrt(energyAt(sound, pitch)));
    };
    SoundRecorder recorder;
    SoundStage stage(radio_.address(), recorder);
    // What is raised has room.
    stage.set(u"volumeSlider"_s, 50);
    QVERIFY(stage.plays(station(pitch)));
    recorder.next(excerpt);
    const double before = strength(recorder.next(excerpt));

    for (const int gain : {12, -12}) {
        const double wanted = before + (gain > 0 ? decibels : -decibels);
        const auto done = [&strength, wanted](const Samples &sound) {
            return std::abs(strength(sound) - wanted) < 2;
        };
        QCOMPARE_LT(stage.roughnessOf([&] { stage.set(slider, gain); }, done), click);
    }
}

/// From the first sample: what was set there, and what was set in the window before.
void TestSound::everyStartHasTheLevel()
{
    SoundRecorder recorder;
    const double fullScale = std::pow(0.2, 3);
    {
        SoundStage stage(radio_.address(), recorder);
        stage.set(u"volumeSlider"_s, 20);
        for (const double pitch : {110.0, 220.0}) {
            QVERIFY(stage.plays(station(pitch)));
            recorder.next(second);
            QCOMPARE_LT(peakOf(recorder.samples(0)), fullScale);
        }
    }
    SoundStage stage(radio_.address(), recorder);
    QVERIFY(stage.plays(station(110)));
    recorder.next(second);
    QCOMPARE_LT(peakOf(recorder.samples(0)), fullScale);
    QCOMPARE_GT(peakOf(recorder.last(excerpt)), fullScale / 4);
}

/// The station goes on unheard, and is heard again.
void TestSound::soundServerMayGoAndCome()
{
    SoundRecorder recorder;
    SoundStage stage(radio_.address(), recorder);
    stage.set(u"volumeSlider"_s, 50);
    QVERIFY(stage.plays(station(110)));
    const QStringList healthy = stage.statuses;

    QTest::ignoreMessage(QtWarningMsg, "no sound server answers; playing unheard until one does");
    server_.end();
    QSignalSpy reports(&stage.playback, &StreamPlayback::statusChanged);
    QTRY_VERIFY_WITH_TIMEOUT(reports.size() >= 3, Stage::soundTime);
    server_.start();
    SoundRecorder again;
    QTRY_VERIFY_WITH_TIMEOUT(levelOf(again.last(excerpt)) > 0, Stage::soundTime);
    again.next(second);
    QCOMPARE_LT(peakOf(again.samples(0)), 0.125);
    QCOMPARE(stage.statuses, healthy);
}

/// What is in the sound server's queue is not heard after a pause or an end, nor lost by a pause.
void TestSound::silenceIsImmediate()
{
    ScriptedServer tone;
    tone.script("/tone", "HTTP/1.0 200 OK\r\nContent-Type: audio/wav\r\n\r\n" + growingTone(),
                ScriptedServer::After::StayOpen);
    constexpr std::size_t longest = second / 5;
    constexpr qsizetype reading = second / 50;
    SoundRecorder recorder;
    auto stage = std::make_unique<SoundStage>(radio_.address(), recorder);
    QVERIFY(stage->plays(tone.address(u"/tone"_s)));
    recorder.next(second);

    const qsizetype pause = recorder.size();
    stage->click(u"transportPlayButton"_s);
    const std::size_t end = heard(recorder.next(second / 2));
    QCOMPARE_LT(end, longest);
    const double stopped =
        secondsAt(recorder.samples(pause + static_cast<qsizetype>(end) - reading, reading));
    const qsizetype resume = recorder.size();
    stage->click(u"transportPlayButton"_s);
    recorder.next(second / 2);
    const Samples resumed = recorder.samples(resume);
    const auto first = std::find_if(resumed.begin(), resumed.end(), [](double value) { return value != 0; });
    QCOMPARE_GT(resumed.end() - first, reading);
    QCOMPARE_LT(std::abs(secondsAt(Samples(first, first + reading)) - stopped), 0.1);

    stage->click(u"transportStopButton"_s);
    QCOMPARE_LT(heard(recorder.next(second)), longest);
    QVERIFY(stage->plays(tone.address(u"/tone"_s)));
    stage.reset();
    QCOMPARE_LT(heard(recorder.next(second)), longest);
}

/// Each link has its title, also in FLAC, where FFmpeg tells none, and there is no gap where the next one has
/// another rate and fewer channels.
void TestSound::chainIsHeardAsOne()
{
    constexpr std::ptrdiff_t shortestGap = second / 200;
    // A title changes with what is decoded, ahead of what is heard.
    constexpr qsizetype decodedAhead = 2 * second;
    const QStringList links{u"The Chain - First Link"_s, u"The Chain - Second Link"_s};
    const auto keepTitles = [](Stage &stage, QStringList &titles) {
        connect(&stage.backend.heardStream(), &HeardStream::changed, &stage.window,
                [&titles](const StreamInfo &info) {
                    if (!info.title.isEmpty() && (titles.isEmpty() || titles.constLast() != info.title)) {
                        titles.append(info.title);
                    }
                });
    };
    QStringList flacTitles;
    Stage unheard(radio_.address());
    keepTitles(unheard, flacTitles);
    unheard.playback.playRadioFromURL(radio_.address() + u"/kind/chained-flac"_s, u"FLAC"_s);

    SoundRecorder recorder;
    QStringList titles;
    SoundStage stage(radio_.address(), recorder);
    keepTitles(stage, titles);
    QVERIFY(stage.plays(radio_.address() + u"/kind/changing-vorbis"_s));
    QTRY_COMPARE_WITH_TIMEOUT(titles, links, Stage::soundTime);
    QTRY_COMPARE_WITH_TIMEOUT(flacTitles, links, Stage::soundTime);
    recorder.next(decodedAhead);
    QCOMPARE_LT(longestGap(recorder.samples(0)), shortestGap);
}

QTEST_MAIN(TestSound)
#include "tst_sound.moc"
