#include "app/commandline.h"

namespace {
/// What command-line programs end with that were called wrongly.
constexpr int usageError = 2;

QString helpText()
{
    return QStringLiteral(
        "Usage: plumtide [options]\n"
        "Plays internet radio: browse the station directory, double-click a station, listen.\n"
        "\n"
        "Options:\n"
        "  -h, --help     show this text\n"
        "  -v, --version  show the version\n"
        "\n"
        "Environment:\n"
        "  PLUMTIDE_DIRECTORY_URL  address of the directory service\n"
        "  PLUMTIDE_TUNEIN_URL     address that station playlists are fetched from\n"
        "  PLUMTIDE_DIRECTORY_KEY  developer key sent to the directory service\n"
        "  PLUMTIDE_AUDIO_OUTPUT   \"null\" for no sound, \"pcm:FILE\" to write a WAV file\n"
        "  PLUMTIDE_PAUSE_BUFFER   KiB that a paused station may load (default 163840)\n");
}
} // namespace

std::variant<CommandLine::Run, CommandLine::Answer> CommandLine::parse(const QStringList &arguments)
{
    for (const QString &argument : arguments.mid(1)) {
        if (argument == QLatin1StringView("-h") || argument == QLatin1StringView("--help")) {
            return Answer{helpText(), 0};
        }
        if (argument == QLatin1StringView("-v") || argument == QLatin1StringView("--version")) {
            return Answer{QStringLiteral("plumtide %1\n").arg(QStringLiteral(PLUMTIDE_VERSION)), 0};
        }
        if (argument.startsWith(QLatin1StringView("--"))) {
            return Answer{QStringLiteral("plumtide: unknown option %1, see plumtide --help\n").arg(argument),
                          usageError};
        }
    }
    return Run{};
}
