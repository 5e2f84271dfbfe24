#pragma once

#include <QVariantList>
#include <mpv/client.h>
#include <optional>

/// What libmpv's "demuxer-cache-state" says of the buffer, as a value: the node itself goes with its handle,
/// which an observer of a report may release.
struct CacheState
{
    /// What is in the buffer and can be played, as BackendItem::TimeRange.
    QVariantList ranges;
    /// Where the last of the ranges ends, in seconds of the stream; none without ranges.
    std::optional<double> end;
    /// Where the core takes sound from the buffer, in seconds of the stream.
    double reader = 0;
    /// What the buffer holds of what has not been played.
    qint64 bytesAhead = 0;
    /// Nothing is being loaded, because the buffer holds what it may.
    bool loadingRests = false;
    /// The core has asked for sound that is not there.
    bool underrun = false;

    /// A node that is no such state gives an empty one.
    static CacheState from(const mpv_node &node);
};
