#pragma once

#include "app/program.h"
#include "playback/mpv/audiooutput.h"
#include "playback/mpv/mpvbackend.h"
#include "settings/statefile.h"
#include "support/scriptedserver.h"

#include <QSettings>
#include <QStringList>
#include <QUrl>
#include <QVariant>

class RVTableView;

/// The real window and the real player before a directory.
class Stage
{
public:
    /// How long a test waits for a station to be heard or to end, in milliseconds.
    static constexpr int soundTime = 30'000;
    /// The status texts of a station that plays.
    static const QStringList healthyStart;
    /// Those that follow when it ends to play, because its sound has run out.
    static const QStringList soundsEnd;
    /// Those of a station with nothing to play.
    static const QStringList failure;
    /// Those of a station that leaves it open, until the time-out.
    static const QStringList silence;

    /// `directory` is "http://HOST:PORT"; stored settings begin empty.
    explicit Stage(const QString &directory,
                   const AudioOutput &output = *AudioOutput::fromText(QStringLiteral("null")));

    RVTableView *table();
    /// Of the label of that name; empty where it is not there yet.
    QString text(const QString &name);
    void click(const QString &button);
    /// Forgets the status texts so far and plays the station in that row, once there is one.
    void doubleClick(int row);
    /// The same with a station of the user's own.
    void play(const StationRecord &station);

    MpvBackend backend;
    QSettings settings;
    StateFile state;
    Program program;
    MainWindow &window = program.window;
    StreamPlayback &playback = program.session.playback();
    /// The status texts since the last double click; one that is repeated stands here once.
    QStringList statuses;
};

/// A private station at `mountpoint` of the server whose host and port are those of `server`. The scheme that
/// it names is none, which stands for http.
StationRecord privateStation(const QUrl &server, const QString &mountpoint, const QVariant &username,
                             const QVariant &password);

/// A directory of one station.
class OneStationDirectory : public ScriptedServer
{
public:
    OneStationDirectory();

    /// Makes the station's playlist one of these addresses.
    void leadTo(const QList<QByteArray> &entries);
};
