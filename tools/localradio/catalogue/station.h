#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace localradio {

/// What one of our own stream mounts plays.
struct Mount
{
    int loop = 0;               ///< index of its loop, see loops.h
    QStringList tracks;         ///< "Artist - Title", announced in turn; not empty
    bool oldStatusLine = false; ///< answers "ICY 200 OK", as old stream servers do
};

/// A station as the directory lists it. Texts are free of control characters.
struct Station
{
    int id = 0; ///< unique in its catalogue, positive
    QString name;
    QStringList genres; ///< the main one first
    QString mediaType;  ///< such as "audio/mpeg"
    int bitrate = 0;    ///< kbit/s, as advertised
    int listeners = 0;
    QString currentTrack; ///< empty: not listed
    QString logo;         ///< address; empty: not listed

    /// The entries of its tune-in playlist, at least one: http(s) addresses, or paths on this server.
    QStringList streams;
    bool crlfPlaylist = false;  ///< its playlist's lines end in CR LF
    std::optional<Mount> mount; ///< none: its streams are served elsewhere
};

} // namespace localradio
