#pragma once

#include "desktop/remotecommand.h"

#include <QString>
#include <QStringList>
#include <variant>

/// What the program's arguments ask for.
namespace CommandLine {
/// A text to print before the program ends.
struct Answer
{
    QString text;
    int exitStatus;
};

struct Run
{
};

/// The window, a command to the program that runs already, or an answer (help, the version, or what is
/// wrong). Qt's own arguments ("-platform", "-style" and others with one dash) are ignored here. Needs no
/// application object.
std::variant<Run, RemoteCommand, Answer> parse(const QStringList &arguments);
} // namespace CommandLine
