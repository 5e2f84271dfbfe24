// Double-clicks over the rows of the real window, one every few milliseconds, each on another station, rests
// on the last one until it streams, and prints how long the event loop was ever held, and what is left
// behind.

#include "app/allocator.h"
#include "app/program.h"
#include "playback/mpv/mpvbackend.h"
#include "readenvironment.h"
#include "settings/statefile.h"
#include "support/gapwatch.h"
#include "ui/table/rvtableview.h"
#include "ui/widgets/look.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace {
constexpr int clicks = 200;
constexpr int betweenClicks = 30;
constexpr int restTime = 5'000;
constexpr int rows = 20;

qsizetype entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

void report(const QByteArray &when, double gap)
{
    QFile memory(QStringLiteral("/proc/self/smaps_rollup"));
    double megabytes = 0;
    if (memory.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : memory.readAll().split('\n')) {
            if (line.startsWith("Anonymous:")) {
                megabytes = line.mid(10).trimmed().split(' ').constFirst().toDouble() / 1024;
            }
        }
    }
    std::printf("%-28s %12.1f %9lld %12lld %14.1f\n", when.constData(), gap,
                static_cast<long long>(entriesOf(QStringLiteral("/proc/self/task"))),
                static_cast<long long>(entriesOf(QStringLiteral("/proc/self/fd"))), megabytes);
    std::fflush(stdout);
}

/// The start of the program, one station, many in a row, and the last one of them, each with its figures.
class Storm : public QObject
{
public:
    explicit Storm(Program &program)
        : table_(*program.window.findChild<RVTableView *>(QStringLiteral("myTableView")))
        , playback_(program.session.playback())
    {
        std::printf("%-28s %12s %9s %12s %14s\n", "", "longest, ms", "threads", "descriptors",
                    "anonymous, MB");
        QTimer::singleShot(restTime, this, &Storm::playOne);
        connect(&clicking_, &QTimer::timeout, this, &Storm::clickNext);
    }

private:
    void playOne()
    {
        if (table_.model()->rowCount() < rows) {
            std::fputs("The directory has too few stations.\n", stderr);
            std::_Exit(1);
        }
        report("start of the program", watch_.longest());
        doubleClick(0);
        QTimer::singleShot(restTime, this, [this] {
            reportStation("one station");
            clicking_.start(betweenClicks);
        });
    }

    void clickNext()
    {
        doubleClick(++done_ % rows);
        if (done_ == clicks) {
            clicking_.stop();
            report(QByteArray::number(clicks) + " double clicks", watch_.longest());
            QTimer::singleShot(restTime, this, [this] {
                reportStation("the last of them");
                std::_Exit(0);
            });
        }
    }

    void reportStation(const QByteArray &station)
    {
        report(station + (playback_.isPlaying() ? ", streaming" : ", silent"), watch_.longest());
    }

    void doubleClick(int row)
    {
        QWidget *viewport = table_.viewport();
        const QPoint position = table_.visualRect(table_.model()->index(row, 1)).center();
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                        QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
            const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
            QCoreApplication::postEvent(
                viewport,
                new QMouseEvent(type, position, viewport->mapToGlobal(position), Qt::LeftButton, held, {}));
        }
    }

    RVTableView &table_;
    StreamPlayback &playback_;
    GapWatch watch_;
    QTimer clicking_;
    int done_ = 0;
};
} // namespace

int main(int argc, char *argv[])
{
    returnFreedMemory();
    const auto [directory, audioOutput, pausedBufferBytes] = readEnvironment();
    MpvBackend backend(audioOutput, pausedBufferBytes);
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    StateFile state;
    applyLook(application);
    Program program(directory, backend, state);
    MainWindow &window = program.window;
    QObject::connect(&window, &MainWindow::firstFramePainted, &window, [&backend] { backend.preload(); });
    window.show();
    const Storm storm(program);
    return QApplication::exec();
}
