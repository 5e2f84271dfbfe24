#include "support/localradio.h"
#include "support/soundserver.h"
#include "support/stage.h"

#include <QTest>
#include <algorithm>
#include <cmath>
#include <csignal>

using namespace Qt::StringLiterals;

namespace {
/// The radio sends so many seconds at once to whoever comes.
constexpr int burst = 30;
/// Nothing in the stations' sound is so low for so many samples.
constexpr double silent = 1e-4;
constexpr qsizetype longestSilence = SoundRecorder::sampleRate / 50;

qsizetype longestSilenceIn(const std::vector<double> &samples)
{
    qsizetype longest = 0;
    qsizetype current = 0;
    for (const double sample : samples) {
        current = std::abs(sample) < silent ? current + 1 : 0;
        longest = std::max(longest, current);
    }
    return longest;
}
} // namespace

/// The network's bad moments, as they are heard at the sound server.
class TestOutages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(server_.isRunning()); }
    void badMomentsAreUnheard_data();
    void badMomentsAreUnheard();
    void nothingInHandEnds_data();
    void nothingInHandEnds();

private:
    SoundServer server_;
};

void TestOutages::badMomentsAreUnheard_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("seconds");
    for (const int seconds : {5, 10, 20}) {
        QTest::addRow("an outage of %d s", seconds) << u"outage"_s << seconds;
    }
    QTest::newRow("a silent link of 10 s") << u"silence"_s << 10;
    QTest::newRow("a frozen server of 20 s") << QString() << 20;
}

/// With half a minute in hand; and the radio is heard afterwards for longer than that.
void TestOutages::badMomentsAreUnheard()
{
    QFETCH(QString, fault);
    QFETCH(int, seconds);
    LocalRadio radio({u"--burst"_s, QString::number(burst)});
    QVERIFY(radio.isRunning());
    SoundRecorder recorder;
    Stage stage(radio.address(), AudioOutput::automatic());
    stage.playback.playRadioFromURL(radio.stream(0), u"station"_s);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    // What is there as the sound begins is no gap.
    QVERIFY(!recorder.next(SoundRecorder::sampleRate).empty());
    const qsizetype begin = recorder.size();
    if (fault.isEmpty()) {
        radio.signal(SIGSTOP);
        QTest::qWait(seconds * 1000);
        radio.signal(SIGCONT);
    } else {
        QVERIFY(!radio.get(u"/%1?seconds=%2"_s.arg(fault).arg(seconds)).isEmpty());
        QTest::qWait(seconds * 1000);
    }
    // By then it would have run dry.
    QTest::qWait((burst + 5 - seconds) * 1000);
    QCOMPARE(stage.statuses, Stage::healthyStart);
    QCOMPARE_LE(longestSilenceIn(recorder.samples(begin)), longestSilence);
}

void TestOutages::nothingInHandEnds_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("an outage") << u"outage"_s;
    QTest::newRow("a frozen server") << QString();
}

/// And the next station plays.
void TestOutages::nothingInHandEnds()
{
    QFETCH(QString, fault);
    LocalRadio radio({u"--burst"_s, u"2"_s});
    const LocalRadio healthy;
    QVERIFY(radio.isRunning() && healthy.isRunning());
    Stage stage(radio.address(), AudioOutput::automatic());
    stage.playback.playRadioFromURL(radio.stream(0), u"station"_s);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    if (fault.isEmpty()) {
        radio.signal(SIGSTOP);
    } else {
        QVERIFY(!radio.get(u"/%1?seconds=30"_s.arg(fault)).isEmpty());
    }
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart + Stage::soundsEnd, Stage::soundTime);
    stage.statuses.clear();
    stage.playback.playRadioFromURL(healthy.stream(0), u"station"_s);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    radio.signal(SIGCONT);
}

QTEST_MAIN(TestOutages)
#include "tst_outages.moc"
