#pragma once

#include <algorithm>

/// How loud, and with what tone, everything is played: what the listener has set, not what a station record
/// carries.
struct SoundSettings
{
    static constexpr int loudest = 100;
    /// The furthest that a band of the tone is raised or lowered, in dB.
    static constexpr int furthestTone = 12;

    /// In percent, 0 to loudest; the amplitude is the cube of it, so that equal steps sound equal.
    int volume = loudest;
    bool muted = false;
    /// In dB, -furthestTone to furthestTone; 0 leaves the sound as it is.
    int bass = 0;
    int middle = 0;
    int treble = 0;

    bool operator==(const SoundSettings &) const = default;

    /// The same with every value inside its range.
    SoundSettings bounded() const
    {
        const auto tone = [](int value) { return std::clamp(value, -furthestTone, furthestTone); };
        return {std::clamp(volume, 0, loudest), muted, tone(bass), tone(middle), tone(treble)};
    }

    /// The factor that samples are multiplied by, 0 to 1.
    double amplitude() const
    {
        const double share = static_cast<double>(volume) / loudest;
        return muted ? 0.0 : share * share * share;
    }
};
