#include "app/commandline.h"

namespace {
/// The exit status of a command line that cannot be used.
constexpr int usageError = 2;

QString helpText()
{
    return QStringLiteral(
        "Usage: plumtide [options]\n"
        "Plays internet radio: browse the station directory, double-click a station, listen.\n"
        "Started once more, it shows the window that is open already.\n"
        "\n"
        "Options:\n"
        "  -h, --help     show this text\n"
        "  -v, --version  show the version\n"
        "  --play-pause   let the running program play or pause\n"
        "  --stop         let it stop\n"
        "  --quit         let it save the favourites and end\n"
        "\n"
        "Environment:\n"
        "  PLUMTIDE_DIRECTORY_URL  address of the directory service\n"
        "  PLUMTIDE_TUNEIN_URL     address that station playlists are fetched from\n"
        "  PLUMTIDE_DIRECTORY_KEY  developer key sent to the directory service\n"
        "  PLUMTIDE_AUDIO_OUTPUT   \"null\" for no sound, \"pcm:FILE\" to write a WAV file\n"
        "  PLUMTIDE_PAUSE_BUFFER   KiB that a paused station may load (default 65536)\n");
}
} // namespace

std::variant<CommandLine::Run, RemoteCommand, CommandLine::Answer>
CommandLine::parse(const QStringList &arguments)
{
    for (const QString &argument : arguments.mid(1)) {
        if (argument == QLatin1StringView("-h") || argument == QLatin1StringView("--help")) {
            return Answer{helpText(), 0};
        }
        if (argument == QLatin1StringView("-v") || argument == QLatin1StringView("--version")) {
            return Answer{QStringLiteral("plumtide %1\n").arg(QStringLiteral(PLUMTIDE_VERSION)), 0};
        }
        if (argument.startsWith(QLatin1StringView("--"))) {
            if (const auto command = remoteCommand(QStringView(argument).sliced(2))) {
                return *command;
            }
            return Answer{QStringLiteral("plumtide: unknown option %1, see plumtide --help\n").arg(argument),
                          usageError};
        }
    }
    return Run{};
}
