#pragma once

#include "playback/stream/hls/moviefragments.h"
#include "playback/stream/hls/transportpackets.h"

#include <QByteArray>
#include <QtGlobal>

/// Joins segments to a stream that a player can read as one: leaves out the tags before packed sound (ID3),
/// which say when it is heard (RFC 8216, 3.4), and keeps the times of other sound from jumping.
class HlsSplicer
{
public:
    /// A segment begins, or what stands before segments.
    void begin();
    /// What of the stream its next bytes are.
    QByteArray take(const QByteArray &bytes);

private:
    enum class Kind { Unknown, Packets, Fragments, Other };

    bool skipTags();
    void recognise();

    /// What has come while it is not clear what it is.
    QByteArray head_;
    Kind kind_ = Kind::Unknown;
    quint64 toSkip_ = 0;
    TransportPackets packets_;
    MovieFragments fragments_;
};
