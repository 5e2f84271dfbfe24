#include "playback/mpv/audiooutput.h"

std::optional<AudioOutput> AudioOutput::fromText(const QString &text)
{
    constexpr QLatin1StringView filePrefix("pcm:");
    if (text == QLatin1StringView("null")) {
        return AudioOutput(Kind::Null, {});
    }
    if (text.startsWith(filePrefix) && text.size() > filePrefix.size()) {
        return AudioOutput(Kind::File, text.mid(filePrefix.size()));
    }
    return std::nullopt;
}
