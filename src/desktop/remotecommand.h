#pragma once

#include <QLatin1StringView>
#include <QStringView>
#include <array>
#include <optional>
#include <utility>

/// What the running program can be told from outside its window, besides showing it.
enum class RemoteCommand { PlayPause, Stop, Quit };

/// Their names on the session bus, in the desktop file, and with two dashes before them on the command line.
inline constexpr std::array remoteCommandNames{
    std::pair{RemoteCommand::PlayPause, QLatin1StringView("play-pause")},
    std::pair{RemoteCommand::Stop, QLatin1StringView("stop")},
    std::pair{RemoteCommand::Quit, QLatin1StringView("quit")},
};

/// The command of that name; nothing where there is none.
inline std::optional<RemoteCommand> remoteCommand(QStringView name)
{
    for (const auto &[command, itsName] : remoteCommandNames) {
        if (name == itsName) {
            return command;
        }
    }
    return std::nullopt;
}
