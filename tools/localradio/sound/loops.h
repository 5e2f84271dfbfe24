#pragma once

#include <array>
#include <cmath>

/// The loops of sound that the built-in stations play, as the generator writes them and the server reads
/// them: which there are, what each sounds like and how long it lasts.
namespace localradio {

inline constexpr int loopCount = 48;
inline constexpr int sampleRate = 44100;

/// Samples in one turn of a loop: a whole number of MP3 frames (1152), of AAC frames (1024) and of pages of
/// nine Vorbis blocks (9216), so that the end meets the beginning on a boundary in each format.
inline constexpr int loopSamples = 144 * 9216;

inline constexpr double loopSeconds = static_cast<double>(loopSamples) / sampleRate;

enum class Format { Mp3, Aac, Ogg };

struct FormatFacts
{
    const char *name;      ///< as `--list` prints it
    const char *mediaType; ///< as directories and stream servers name it
    const char *suffix;    ///< of the loop's file, with its dot
    int bitrate;           ///< kbit/s that a station of this format advertises
};

/// The facts about `format`.
constexpr FormatFacts factsOf(Format format)
{
    constexpr std::array<FormatFacts, 3> facts{{{"MP3", "audio/mpeg", ".mp3", 128},
                                                {"AAC", "audio/aacp", ".aac", 64},
                                                {"Ogg", "application/ogg", ".ogg", 128}}};
    return facts[static_cast<std::size_t>(format)];
}

/// The format of loop `index` (0 to loopCount - 1); formats alternate, so each spans the whole range of
/// pitches.
constexpr Format loopFormat(int index)
{
    return static_cast<Format>(index % 3);
}

/// The fundamental of loop `index` in Hz: semitones upwards from 110 Hz, rounded to a whole number of
/// cycles in one turn.
inline double loopPitch(int index)
{
    const double cycles = std::round(110.0 * std::exp2(index / 12.0) * loopSeconds);
    return cycles / loopSeconds;
}

} // namespace localradio
