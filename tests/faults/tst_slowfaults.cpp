#include "app/allocator.h"
#include "faults/directorystage.h"
#include "faults/faultwatch.h"
#include "faults/fullport.h"
#include "support/localradio.h"

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
/// Of one request in all, in milliseconds, and room beyond.
constexpr int deadline = 75'000;
} // namespace

/// Directories that keep a request waiting until its deadline, all at the same time.
class TestSlowFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faultsEndAtTheDeadline();

private:
    /// The window has said that there was no answer; the next search finds stations, and the first of them
    /// plays.
    static void carryOn(DirectoryStage &stage);
};

void TestSlowFaults::carryOn(DirectoryStage &stage)
{
    QCOMPARE(stage.text(u"subtitleStatusString"_s), u"Downloading data"_s);
    QCOMPARE(stage.shown(), u"No stations. The directory did not answer."_s);
    stage.search(u"jazz"_s);
    QTRY_VERIFY(!stage.isBusy());
    stage.doubleClick(0);
    QTRY_COMPARE_WITH_TIMEOUT(stage.statuses, Stage::healthyStart, Stage::soundTime);
    stage.click(u"transportStopButton"_s);
}

void TestSlowFaults::faultsEndAtTheDeadline()
{
    returnFreedMemory(); // as in the program
    const LocalRadio radio({u"--faults"_s});
    QVERIFY(radio.isRunning());
    const FullPort swallowing;
    QVERIFY(swallowing.isFull());
    const QStringList faults{u"silent"_s, u"header-drip"_s, u"body-drip"_s,
                             u"redirect=http://127.0.0.1:%1/"_s.arg(swallowing.port())};
    std::vector<std::unique_ptr<DirectoryStage>> stages;
    for (qsizetype index = 0; index < faults.size(); ++index) {
        stages.push_back(std::make_unique<DirectoryStage>(radio.address()));
        QTRY_VERIFY(!stages.back()->isBusy());
    }

    FaultWatch watch;
    watch.start();
    for (std::size_t index = 0; index < stages.size(); ++index) {
        stages[index]->search(u"fault:"_s + faults.at(static_cast<qsizetype>(index)));
        QVERIFY(stages[index]->isBusy());
    }
    for (const auto &stage : stages) {
        QTRY_VERIFY_WITH_TIMEOUT(!stage->isBusy(), deadline);
    }
    watch.report("Downloading data, no answer");
    for (const auto &stage : stages) {
        carryOn(*stage);
    }
}

QTEST_MAIN(TestSlowFaults)
#include "tst_slowfaults.moc"
