#pragma once

#include "playback/playbackstate.h"

#include <QMetaType>
#include <QString>

/// What the radio plays, as a value. Its texts are fit to be shown: one line each, of bounded length.
struct NowPlaying
{
    PlaybackState state = PlaybackState::Stopped;
    /// The station's name; stays after a failure, and is empty once the radio is stopped.
    QString station = {};
    /// What is heard, as the station says it; empty where it says nothing.
    QString title = {};
    /// The sound's format by the name that people know it by; empty while there is no sound.
    QString codec = {};
    /// In kbit/s; 0 where it is not known.
    int bitrate = 0;
    /// The station's picture, as its record names it; empty for a station without a record.
    QString artwork = {};

    /// Whether sound is to be heard, now or as soon as it comes.
    bool isRunning() const
    {
        return state == PlaybackState::Connecting || state == PlaybackState::Buffering ||
               state == PlaybackState::Playing;
    }

    bool operator==(const NowPlaying &) const = default;
};
Q_DECLARE_METATYPE(NowPlaying)
