#pragma once

#include "localradio/sound/loops.h"

#include <array>
#include <cmath>
#include <string_view>

/// The kinds of sound that real stations send, one turn of each: as the generator writes them and the server
/// reads them.
namespace localradio {

inline constexpr int kindSampleRate = 48000;

/// Samples in one unit of a turn: a whole number of frames of AAC (1024), AC-3 (1536) and Opus (960).
inline constexpr int kindUnitSamples = 15360;

inline constexpr int kindUnits = 96; ///< in one turn
inline constexpr int kindSamples = kindUnits * kindUnitSamples;
inline constexpr double kindSeconds = static_cast<double>(kindSamples) / kindSampleRate;

/// How the file of a kind is taken apart.
enum class Container { Frames, Flac, Ogg, Chain, TransportStream, Fragments, Clusters };

struct Kind
{
    std::string_view name; ///< of its file as well
    const char *mediaType;
    Container container;
    const char *source = nullptr; ///< the kind whose file this is as well; none: its own
    bool isStream = true;         ///< false: for segments only
};

/// All of them. Their pitches follow from their places.
inline constexpr std::array kinds{
    Kind{"mp3", "audio/mpeg", Container::Frames},
    Kind{"aac", "audio/aac", Container::Frames},
    Kind{"latm", "audio/mp4a-latm", Container::Frames},
    Kind{"ac3", "audio/ac3", Container::Frames},
    Kind{"eac3", "audio/eac3", Container::Frames},
    Kind{"flac", "audio/flac", Container::Flac, "ogg-flac"},
    Kind{"ogg-vorbis", "audio/ogg", Container::Ogg},
    Kind{"ogg-opus", "audio/ogg", Container::Ogg},
    Kind{"ogg-flac", "audio/ogg", Container::Ogg},
    Kind{"chained-vorbis", "application/ogg", Container::Chain},
    Kind{"chained-opus", "application/ogg", Container::Chain},
    Kind{"chained-flac", "application/ogg", Container::Chain},
    Kind{"changing-vorbis", "application/ogg", Container::Chain},
    Kind{"changing-opus", "application/ogg", Container::Chain},
    Kind{"changing-flac", "application/ogg", Container::Chain},
    Kind{"mpegts", "video/mp2t", Container::TransportStream},
    Kind{"fmp4", "audio/mp4", Container::Fragments},
    Kind{"webm", "audio/webm", Container::Clusters},
    Kind{"low-aac", "audio/aac", Container::Frames, nullptr, false},
    Kind{"low-ts", "video/mp2t", Container::TransportStream, nullptr, false},
    Kind{"low-fmp4", "audio/mp4", Container::Fragments, nullptr, false},
    Kind{"mid-aac", "audio/aac", Container::Frames, nullptr, false},
    Kind{"mid-ts", "video/mp2t", Container::TransportStream, nullptr, false},
    Kind{"mid-fmp4", "audio/mp4", Container::Fragments, nullptr, false},
    Kind{"high-aac", "audio/aac", Container::Frames, nullptr, false},
    Kind{"high-ts", "video/mp2t", Container::TransportStream, nullptr, false},
    Kind{"high-fmp4", "audio/mp4", Container::Fragments, nullptr, false},
    Kind{"video-ts", "video/mp2t", Container::TransportStream, nullptr, false},
};

/// The titles of a chain's links, which share a turn equally.
inline constexpr std::array<std::string_view, 3> linkTitles{"First Link", "Second Link", "Third Link"};
inline constexpr std::string_view linkArtist = "The Chain";

/// The fundamental of a kind in Hz: a whole number of cycles in every link of a chain.
inline double kindPitch(const Kind &kind)
{
    constexpr double linkSeconds = kindSeconds / linkTitles.size();
    const Kind *sounding = &kind;
    for (const Kind &other : kinds) {
        if (kind.source != nullptr && other.name == kind.source) {
            sounding = &other;
        }
    }
    const auto index = static_cast<double>(sounding - kinds.data());
    return std::round(196.0 * std::exp2(index / 12.0) * linkSeconds) / linkSeconds;
}

} // namespace localradio
