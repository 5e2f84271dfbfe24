#pragma once

#include "localradio/sound/audiosource.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace localradio {

/// What a mount plays, and what it says of itself. A value.
struct Programme
{
    int number = 0; ///< sets the pace at which its tracks change
    QString name;
    QString genre;
    QByteArray mediaType;
    int bitrate = 0;            ///< kbit/s
    double bytesPerSecond = 0;  ///< of the sound
    bool hasTitles = false;     ///< within the sound, if the client wants them
    bool oldStatusLine = false; ///< answers "ICY 200 OK"
    QStringList tracks;         ///< not empty if it has titles

    /// Its sound without end, joined anywhere; null if its file holds nothing to play.
    std::function<std::unique_ptr<AudioSource>()> play;

    /// What it plays that many seconds after the mounts went on air; before it, if negative. Every programme
    /// changes tracks at a pace of its own, between 8 and 15 seconds.
    QByteArray trackAt(double seconds) const;
};

} // namespace localradio
