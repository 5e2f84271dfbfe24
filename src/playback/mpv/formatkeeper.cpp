#include "playback/mpv/formatkeeper.h"

#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/mpvnode.h"

namespace {
/// What music is sent in, in Hz.
constexpr qint64 usualRate = 44'100;
constexpr qint64 usualChannels = 2;
} // namespace

FormatKeeper::FormatKeeper(MpvHandle &handle)
    : handle_(handle)
{
}

void FormatKeeper::outputChanged(const mpv_node *format)
{
    keep(!hasEnded_ && format != nullptr && numberAt(*format, "samplerate") >= usualRate &&
         numberAt(*format, "channel-count") >= usualChannels);
}

void FormatKeeper::streamEnded()
{
    hasEnded_ = true;
    keep(false);
}

void FormatKeeper::keep(bool kept)
{
    if (kept != isKept_) {
        isKept_ = kept;
        handle_.setFlag("gapless-audio", kept);
    }
}
