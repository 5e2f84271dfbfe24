#include "app/accessibility.h"
#include "app/allocator.h"
#include "app/commandline.h"
#include "app/environment.h"
#include "app/log.h"
#include "app/program.h"
#include "app/quitsignals.h"
#include "app/translations.h"
#include "base/exception.h"
#include "desktop/desktoplook.h"
#include "desktop/shell.h"
#include "desktop/singleinstance.h"
#include "http/httpclient.h"
#include "playback/mpv/mpvbackend.h"
#include "settings/statefile.h"
#include "ui/widgets/svgicon.h"

#include <QApplication>
#include <QLoggingCategory>
#include <QTimer>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <variant>

namespace {
Q_LOGGING_CATEGORY(lcApp, "plumtide.app")

constexpr int unusableEnvironment = 2;
constexpr int notDelivered = 1;
/// How long the program may take to end once its window is gone.
constexpr std::chrono::milliseconds endingTime{1000};

/// Ends the process after endingTime, whatever still holds it up then. Name lookups that are never answered
/// would: Qt waits for its own, and a core of libmpv for those of its stream.
void boundEnding(int status)
{
    std::thread([status] {
        std::this_thread::sleep_for(endingTime);
        std::_Exit(status);
    }).detach();
}

/// How long after the first frame libmpv is opened: as long as the directory's first answer may take of a
/// near server, and less than anybody takes to choose a station.
constexpr std::chrono::milliseconds preloadDelay{25};

/// The window whose rack is not saved yet.
MainWindow *openWindow = nullptr;

/// A display that goes away, as at the end of a session, ends the process by way of exit(), from within the
/// event loop. An orderly quit has saved the rack long before. The window and the threads of libmpv are still
/// there, and other exit handlers would destroy what they use.
void saveAtExit()
{
    if (openWindow != nullptr) {
        openWindow->player().radioDataChanges(Player::willTerminate);
        std::_Exit(EXIT_FAILURE);
    }
}

/// Logs an exception that escapes from an event handler; the event is lost, the program goes on.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    /// Called with true before a requested quit closes the windows, and with false after they have refused
    /// it.
    std::function<void(bool isEnding)> endingChanged;

    bool notify(QObject *receiver, QEvent *event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const Exception &exception) {
            qCWarning(lcApp).noquote() << "uncaught exception:" << exception.reason();
            return true;
        }
    }

protected:
    /// Every orderly quit arrives as this event, the session manager's too.
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::Quit || !endingChanged) {
            return QApplication::event(event);
        }
        endingChanged(true);
        const bool isTaken = QApplication::event(event);
        endingChanged(event->isAccepted());
        return isTaken;
    }
};

/// The status that this process exits with; nothing where it is to run.
std::optional<int> exitStatusOf(SingleInstance::Outcome outcome)
{
    switch (outcome) {
    case SingleInstance::Outcome::Run:
        return std::nullopt;
    case SingleInstance::Outcome::Delivered:
        return 0;
    case SingleInstance::Outcome::Unanswered:
        qCCritical(lcApp).noquote() << "Plumtide is running already, but does not answer";
        break;
    case SingleInstance::Outcome::NotRunning:
        qCCritical(lcApp).noquote() << "no running Plumtide is to be found on the session bus";
        break;
    }
    return notDelivered;
}

/// Runs the window until the user quits. Everything but the backend is destroyed afterwards, and the
/// program's name on the session bus is free.
int runWindow(int argc, char **argv, const Environment &environment, MpvBackend &backend,
              std::unique_ptr<SingleInstance> instance)
{
    Application application(argc, argv);
    // QApplication has just set the user's locale; libmpv needs numbers with a decimal point.
    std::setlocale(LC_NUMERIC, "C");
    installTranslations(application);
    StateFile state;
    DesktopLook look(application, state);
    installAccessibility();
    QApplication::setWindowIcon(svgIcon(QStringLiteral("plumtide")));

    int status = 0;
    {
        const QuitSignals quitSignals;
        QObject::connect(&quitSignals, &QuitSignals::received, &application, &QApplication::quit);
        Program program(environment.directory, backend, state);
        MainWindow &window = program.window;
        QObject::connect(&window, &MainWindow::firstFramePainted, &window, [&window, &backend] {
            // Both would take the processors from the first frame, and libmpv from the directory's answer,
            // too.
            HttpClient::instance().open();
            QTimer::singleShot(preloadDelay, &window, [&backend] { backend.preload(); });
        });
        QObject::connect(&window, &MainWindow::firstFramePainted, &look,
                         [&look, &instance] { look.watchDesktop(instance->connection()); });
        QObject::connect(&window, &MainWindow::appearanceChosen, &look, &DesktopLook::setAppearance);
        Shell shell(window, program.session, *instance);
        application.endingChanged = [&shell](bool isEnding) { shell.setEnding(isEnding); };
        openWindow = &window;
        std::atexit(saveAtExit);
        window.show();
        status = QApplication::exec();
        openWindow = nullptr;
        application.endingChanged = {};
        window.hide();
        boundEnding(status);
    }
    instance.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return status;
}
} // namespace

int main(int argc, char *argv[])
{
    returnFreedMemory();
    installLog();
    QCoreApplication::setApplicationName(QStringLiteral("plumtide"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PLUMTIDE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.ostrel.plumtide"));

    QStringList arguments;
    for (int index = 0; index < argc; ++index) {
        arguments.append(QString::fromLocal8Bit(argv[index]));
    }
    const auto wanted = CommandLine::parse(arguments);
    if (const auto *answer = std::get_if<CommandLine::Answer>(&wanted)) {
        std::fputs(answer->text.toLocal8Bit().constData(), answer->exitStatus == 0 ? stdout : stderr);
        return answer->exitStatus;
    }

    const auto environment = Environment::from(QProcessEnvironment::systemEnvironment());
    if (const auto *refusal = std::get_if<QString>(&environment)) {
        qCCritical(lcApp).noquote() << *refusal;
        return unusableEnvironment;
    }

    auto instance = std::make_unique<SingleInstance>();
    const auto *command = std::get_if<RemoteCommand>(&wanted);
    if (const auto exitStatus =
            exitStatusOf(command != nullptr ? instance->tell(*command) : instance->begin())) {
        return *exitStatus;
    }

    MpvBackend backend(std::get<Environment>(environment).audioOutput,
                       std::get<Environment>(environment).pausedBufferBytes);
    const int status =
        runWindow(argc, argv, std::get<Environment>(environment), backend, std::move(instance));
    // Exit handlers would destroy what threads that still run are using.
    backend.waitForDetachedWork(2 * endingTime);
    return status;
}
