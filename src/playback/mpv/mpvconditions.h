#pragma once

#include <QtGlobal>
#include <memory>

class HeardStream;
class ListenerSound;

/// What the items of one backend have in common.
struct MpvConditions
{
    /// Enough for an hour of pause at 128 kbit/s, what libmpv keeps beside each packet counted.
    static constexpr qint64 usualPausedBufferBytes = 160LL * 1024 * 1024;

    std::shared_ptr<const ListenerSound> sound;
    std::shared_ptr<HeardStream> heard;
    /// What a pause may load until the buffer counts as full.
    qint64 pausedBufferBytes = usualPausedBufferBytes;
    /// Whether the output takes sound at the pace at which it is heard.
    bool inTime = true;
    /// Whether the null output stands in for a sound server, and gives way to it.
    bool nullIsMakeshift = false;
};
