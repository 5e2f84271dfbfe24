#include "playback/heardstream.h"

#include <algorithm>
#include <array>
#include <utility>

void HeardStream::setInfo(const StreamInfo &info)
{
    if (info_ != info) {
        info_ = info;
        Q_EMIT changed(info_);
    }
}

QString codecName(QLatin1StringView codec, QLatin1StringView profile)
{
    using Name = std::pair<QLatin1StringView, QLatin1StringView>;
    // Several versions of one format begin alike.
    static constexpr std::array<Name, 6> names{{
        {QLatin1StringView("aac"), QLatin1StringView("AAC")},
        {QLatin1StringView("vorbis"), QLatin1StringView("Ogg Vorbis")},
        {QLatin1StringView("opus"), QLatin1StringView("Opus")},
        {QLatin1StringView("eac3"), QLatin1StringView("E-AC-3")},
        {QLatin1StringView("wma"), QLatin1StringView("WMA")},
        {QLatin1StringView("pcm"), QLatin1StringView("PCM")},
    }};
    if (profile.startsWith(QLatin1StringView("HE-AAC"))) {
        return profile;
    }
    const auto known = std::find_if(names.cbegin(), names.cend(),
                                    [codec](const Name &name) { return codec.startsWith(name.first); });
    return known != names.cend() ? QString(known->second) : QString(codec).toUpper();
}
