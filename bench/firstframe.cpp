// A program that ends when it has painted its first frame, to be timed from outside: the real window, or with
// --empty a window that holds nothing but a table of 500 rows. With --stay as well the empty window stays
// open.

#include "app/program.h"
#include "playback/mpv/mpvbackend.h"
#include "readenvironment.h"
#include "settings/statefile.h"
#include "ui/widgets/look.h"

#include <QApplication>
#include <QMainWindow>
#include <QStandardItemModel>
#include <QTableView>
#include <cstdio>
#include <cstdlib>

namespace {
constexpr int emptyRows = 500;
constexpr int emptyColumns = 7;

class EmptyWindow : public QMainWindow
{
public:
    explicit EmptyWindow(bool stays)
        : rows_(emptyRows, emptyColumns)
        , stays_(stays)
    {
        auto *table = new QTableView(this);
        table->setModel(&rows_);
        setCentralWidget(table);
        resize(1180, 760);
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QMainWindow::paintEvent(event);
        if (!stays_) {
            QMetaObject::invokeMethod(
                this, [] { std::_Exit(0); }, Qt::QueuedConnection);
        }
    }

private:
    QStandardItemModel rows_;
    bool stays_;
};

int runEmpty(int argc, char **argv)
{
    const QApplication application(argc, argv);
    EmptyWindow window(QApplication::arguments().contains(QLatin1StringView("--stay")));
    window.show();
    return QApplication::exec();
}

int runReal(int argc, char **argv)
{
    const auto [directory, audioOutput, pausedBufferBytes] = readEnvironment();
    MpvBackend backend(audioOutput, pausedBufferBytes);
    QApplication application(argc, argv);
    StateFile state;
    applyLook(application);
    Program program(directory, backend, state);
    MainWindow &window = program.window;
    QObject::connect(&window, &MainWindow::firstFramePainted, &window, [] { std::_Exit(0); });
    window.show();
    return QApplication::exec();
}
} // namespace

int main(int argc, char *argv[])
{
    const bool empty = argc > 1 && QByteArrayView(argv[1]) == "--empty";
    return empty ? runEmpty(argc, argv) : runReal(argc, argv);
}
