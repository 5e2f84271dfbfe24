#include "app/quitsignals.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {
constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};

/// The descriptor that the handler writes to. A handler may run on any thread, in the middle of anything.
volatile std::sig_atomic_t wakeUp = -1;

void wake(int)
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(wakeUp, &one, sizeof one);
}

int makeWakeUp()
{
    wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    return wakeUp;
}

void handle(void (*handler)(int))
{
    for (const int signal : quitSignals) {
        struct sigaction action = {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = handler;
            action.sa_flags = SA_RESTART;
            ::sigaction(signal, &action, nullptr);
        }
    }
}
} // namespace

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
    , notifier_(makeWakeUp(), QSocketNotifier::Read)
{
    connect(&notifier_, &QSocketNotifier::activated, this, [](QSocketDescriptor descriptor) {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto taken = ::read(descriptor, &count, sizeof count);
    });
    connect(&notifier_, &QSocketNotifier::activated, this, &QuitSignals::received);
    handle(wake);
}

QuitSignals::~QuitSignals()
{
    handle(SIG_DFL);
    ::close(wakeUp);
    wakeUp = -1;
}
