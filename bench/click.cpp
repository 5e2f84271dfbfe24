// From a double click on a station in the running program to the first sound at the sound server, beside an
// idle mpv that is told to load the station's stream, and its playlist, and beside idle players that are told
// to play that playlist over D-Bus; in turn. Prints the medians in milliseconds.

// Before X11, whose macros have names of Qt's.
#include <QDBusConnection>
#include <QDBusMessage>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <pulse/error.h>
#include <pulse/simple.h>
#include <thread>
#include <vector>

namespace {
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int rounds = 15;
constexpr uint32_t sampleRate = 48'000;
/// The resolution of what is measured.
constexpr auto pieceTime = 2ms;
constexpr size_t pieceSamples = sampleRate * pieceTime.count() / 1000;
/// About -60 dB.
constexpr int audibleSample = 32;
/// Longer than the time within which two double clicks are taken for one another.
constexpr auto silentTime = 600ms;
constexpr auto soundTime = 10s;
constexpr auto clickInterval = 100ms;

/// What a sound card at the sink would get.
class Monitor
{
public:
    explicit Monitor(const char *source)
    {
        const pa_sample_spec format{.format = PA_SAMPLE_S16NE, .rate = sampleRate, .channels = 1};
        const auto standard = static_cast<uint32_t>(-1);
        const pa_buffer_attr buffer{.maxlength = standard,
                                    .tlength = standard,
                                    .prebuf = standard,
                                    .minreq = standard,
                                    .fragsize = pieceSamples * sizeof(int16_t)};
        int error = 0;
        stream_.reset(pa_simple_new(nullptr, "bench", PA_STREAM_RECORD, source, "monitor", &format, nullptr,
                                    &buffer, &error));
        if (!stream_) {
            fail(error);
        }
    }

    /// When the first piece came that can be heard; nothing after soundTime.
    std::optional<Clock::time_point> waitForSound()
    {
        const auto deadline = Clock::now() + soundTime;
        while (!nextPieceIsAudible()) {
            if (Clock::now() > deadline) {
                return {};
            }
        }
        return Clock::now();
    }

    /// Until nothing has been heard for silentTime.
    void waitForSilence()
    {
        auto silent = 0ms;
        while (silent < silentTime) {
            silent = nextPieceIsAudible() ? 0ms : silent + pieceTime;
        }
    }

private:
    bool nextPieceIsAudible()
    {
        std::array<int16_t, pieceSamples> piece{};
        int error = 0;
        if (pa_simple_read(stream_.get(), piece.data(), sizeof(piece), &error) < 0) {
            fail(error);
        }
        return std::ranges::any_of(piece, [](int sample) { return std::abs(sample) > audibleSample; });
    }

    [[noreturn]] static void fail(int error)
    {
        std::fprintf(stderr, "monitor: %s\n", pa_strerror(error));
        std::exit(1);
    }

    std::unique_ptr<pa_simple, decltype(&pa_simple_free)> stream_{nullptr, &pa_simple_free};
};

/// The display's pointer and keyboard.
class InputDevices
{
public:
    InputDevices()
        : display_(XOpenDisplay(nullptr), &XCloseDisplay)
    {
        if (!display_) {
            std::fputs("there is no display\n", stderr);
            std::exit(1);
        }
    }

    /// When the second press was sent, which is what makes it a double click.
    Clock::time_point doubleClick(int x, int y)
    {
        XTestFakeMotionEvent(display_.get(), -1, x, y, CurrentTime);
        press(true);
        press(false);
        std::this_thread::sleep_for(clickInterval);
        const auto pressed = Clock::now();
        press(true);
        press(false);
        return pressed;
    }

    void controlAnd(KeySym symbol)
    {
        const auto control = XKeysymToKeycode(display_.get(), XK_Control_L);
        const auto key = XKeysymToKeycode(display_.get(), symbol);
        XTestFakeKeyEvent(display_.get(), control, True, CurrentTime);
        XTestFakeKeyEvent(display_.get(), key, True, CurrentTime);
        XTestFakeKeyEvent(display_.get(), key, False, CurrentTime);
        XTestFakeKeyEvent(display_.get(), control, False, CurrentTime);
        XFlush(display_.get());
    }

private:
    void press(bool down)
    {
        XTestFakeButtonEvent(display_.get(), Button1, down ? True : False, CurrentTime);
        XFlush(display_.get());
    }

    std::unique_ptr<Display, decltype(&XCloseDisplay)> display_;
};

/// One of the ways to hear the station.
struct Contender
{
    /// Asks for the station; when that was.
    std::function<Clock::time_point()> play;
    std::function<void()> stop;
    std::vector<double> milliseconds;

    double median()
    {
        std::ranges::nth_element(milliseconds, milliseconds.begin() + rounds / 2);
        return milliseconds[rounds / 2];
    }
};
} // namespace

int main(int argc, char *argv[])
{
    if (argc < 7) {
        std::fprintf(stderr, "Usage: %s SOURCE X Y MPV-COMMANDS STREAM PLAYLIST [PLAYER...]\n", argv[0]);
        return 2;
    }
    Monitor monitor(argv[1]);
    InputDevices devices;
    std::ofstream commands(argv[4]);
    const auto load = [&commands](const char *address) {
        return [&commands, address] {
            const auto asked = Clock::now();
            commands << "loadfile " << address << std::endl;
            return asked;
        };
    };
    const auto stop = [&commands] { commands << "stop" << std::endl; };
    std::vector<Contender> contenders{
        Contender{[&] { return devices.doubleClick(std::atoi(argv[2]), std::atoi(argv[3])); },
                  [&devices] { devices.controlAnd(XK_period); },
                  {}},
        Contender{load(argv[5]), stop, {}},
        Contender{load(argv[6]), stop, {}},
    };
    for (int index = 7; index < argc; ++index) {
        // The names are those of MPRIS, where one of the two does not offer to open an address.
        const QString player = QString::fromLocal8Bit(argv[index]);
        const auto tell = [](const QString &service, const QString &path, const QString &interface,
                             const QString &method, const QVariantList &arguments) {
            QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
            message.setArguments(arguments);
            const auto asked = Clock::now();
            QDBusConnection::sessionBus().send(message);
            return asked;
        };
        const auto tellPlayer = [tell, player](const QString &method, const QVariantList &arguments) {
            return tell(QStringLiteral("org.mpris.MediaPlayer2.") + player,
                        QStringLiteral("/org/mpris/MediaPlayer2"),
                        QStringLiteral("org.mpris.MediaPlayer2.Player"), method, arguments);
        };
        const auto play = [tell, tellPlayer, player, playlist = QString::fromLocal8Bit(argv[6])] {
            const QString audacious = QStringLiteral("audacious");
            if (player != audacious) {
                return tellPlayer(QStringLiteral("OpenUri"), {playlist});
            }
            const QString name = QStringLiteral("org.atheme.") + audacious;
            return tell(name, QStringLiteral("/org/atheme/") + audacious, name, QStringLiteral("OpenList"),
                        {QStringList(playlist)});
        };
        contenders.push_back({play, [tellPlayer] { tellPlayer(QStringLiteral("Stop"), {}); }, {}});
    }

    for (int round = 0; round < rounds; ++round) {
        for (Contender &contender : contenders) {
            monitor.waitForSilence();
            const auto asked = contender.play();
            const auto heard = monitor.waitForSound();
            if (!heard) {
                std::fprintf(stderr, "contender %td was not heard\n", &contender - contenders.data());
                return 1;
            }
            contender.milliseconds.push_back(
                std::chrono::duration<double, std::milli>(*heard - asked).count());
            contender.stop();
        }
    }
    for (Contender &contender : contenders) {
        std::printf("%.2f ", contender.median());
    }
    std::puts("");
    return 0;
}
