#pragma once

#include <QtGlobal>
#include <chrono>
#include <memory>

class HeardStream;
class ListenerSound;

/// What the items of one backend have in common.
struct MpvConditions
{
    /// Enough for half an hour of pause at 128 kbit/s, what libmpv keeps beside each packet counted.
    static constexpr qint64 usualPausedBufferBytes = 64LL * 1024 * 1024;
    /// Enough for minutes of sound ahead, so that a server that sends faster than it should costs no more.
    static constexpr qint64 playingBufferBytes = 8LL * 1024 * 1024;
    /// The sound that libmpv has ready for the output.
    static constexpr std::chrono::milliseconds readySound{50};
    /// The sound that the sound server queues of it.
    static constexpr std::chrono::milliseconds serverQueue{600};

    std::shared_ptr<const ListenerSound> sound;
    std::shared_ptr<HeardStream> heard;
    /// What a pause may load until the buffer counts as full.
    qint64 pausedBufferBytes = usualPausedBufferBytes;
    /// Whether the output takes sound at the pace at which it is heard.
    bool isPaced = true;
    /// Whether the null output stands in for a sound server, and gives way to it.
    bool nullIsFallback = false;
};
