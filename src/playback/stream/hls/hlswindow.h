#pragma once

#include "playback/stream/hls/hlsplaylist.h"

/// Which segment of a stream comes next, by what its playlists have said so far. A stream that goes on is
/// joined three target durations before its end (RFC 8216, 6.3.3), a complete one at its beginning.
class HlsWindow
{
public:
    /// The segments of a playlist that has just been fetched, in place of those of the one before. Whether
    /// there are any that are new.
    bool update(const HlsPlaylist &playlist);

    /// Null where all that are known have been passed. Valid until update().
    const HlsSegment *next() const;
    /// Passes the next one.
    void advance();
    /// Whether none will follow those that are known.
    bool isComplete() const { return playlist_.isComplete; }
    /// How many playlists in a row had no new segment.
    int updatesWithoutNews() const { return updatesWithoutNews_; }
    /// How long after it was asked for a playlist is due again, by whether the last one had something new
    /// (RFC 8216, 6.3.4).
    std::chrono::milliseconds reloadTime() const;

private:
    bool isBegunAnew() const;
    void join();

    HlsPlaylist playlist_;
    /// Of the playlist's segments.
    qsizetype index_ = 0;
    /// None until a stream is joined.
    std::optional<quint64> nextNumber_;
    int updatesWithoutNews_ = 0;
};
