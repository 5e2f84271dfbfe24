#include "playback/mpv/soundcontrol.h"

#include "playback/mpv/listenersound.h"
#include "playback/mpv/mpvhandle.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {
/// A ramp of the level: 20 steps in a tenth of a second cannot be heard one by one.
constexpr int levelSteps = 20;
constexpr std::chrono::milliseconds levelStepTime{5};
/// The tone moves by one dB at a time.
constexpr std::chrono::milliseconds toneStepTime{40};
} // namespace

SoundControl::SoundControl(MpvHandle &handle, const ListenerSound &sound)
    : handle_(handle)
    , sound_(sound)
    , bands_{{{"bass", "bass=f=150", &SoundSettings::bass},
              {"middle", "equalizer=f=1000:t=o:w=2", &SoundSettings::middle},
              {"treble", "treble=f=3000", &SoundSettings::treble}}}
{
    levelTimer_.setInterval(levelStepTime);
    levelTimer_.setTimerType(Qt::PreciseTimer);
    connect(&levelTimer_, &QTimer::timeout, this, &SoundControl::stepLevel);
    toneTimer_.setInterval(toneStepTime);
    connect(&toneTimer_, &QTimer::timeout, this, &SoundControl::stepTone);
    connect(&sound_, &ListenerSound::changed, this, &SoundControl::change);
    for (Band &band : bands_) {
        setGain(band, sound_.settings().*band.setting);
    }
}

void SoundControl::outputOpened(const QByteArray &name)
{
    open_ = true;
    // Of other outputs it is the sound card's own level, or one on another scale.
    atServer_ = name == "pulse";
    if (atServer_) {
        handle_.setNumber("volume", SoundSettings::loudest);
    }
    restore();
}

void SoundControl::restore()
{
    if (!open_) {
        return;
    }
    levelTimer_.stop();
    setLevel(sound_.settings().amplitude());
    for (const Band &band : bands_) {
        if (band.present) {
            sendGain(band);
        }
    }
}

void SoundControl::change()
{
    if (open_) {
        amplitudeStep_ = (sound_.settings().amplitude() - amplitude_) / levelSteps;
        levelTimer_.start();
    }
    toneTimer_.start();
}

void SoundControl::stepLevel()
{
    const double wanted = sound_.settings().amplitude();
    if (std::abs(wanted - amplitude_) <= std::abs(amplitudeStep_)) {
        levelTimer_.stop();
        setLevel(wanted);
    } else {
        setLevel(amplitude_ + amplitudeStep_);
    }
}

void SoundControl::stepTone()
{
    bool done = true;
    for (Band &band : bands_) {
        const int wanted = sound_.settings().*band.setting;
        if (band.gain != wanted) {
            setGain(band, band.gain + std::clamp(wanted - band.gain, -1, 1));
        }
        done = done && band.gain == wanted;
    }
    if (done) {
        toneTimer_.stop();
    }
}

void SoundControl::setLevel(double amplitude)
{
    amplitude_ = amplitude;
    // Both take percents of the same cubic scale as ours.
    handle_.setNumber(atServer_ ? "ao-volume" : "volume", SoundSettings::loudest * std::cbrt(amplitude));
}

void SoundControl::setGain(Band &band, int gain)
{
    if (gain == band.gain) {
        return;
    }
    band.gain = gain;
    if (band.present) {
        sendGain(band);
    } else {
        // One thread: handing a few samples to others costs more than filtering them.
        handle_.command({"af", "add",
                         QByteArray("@") + band.label + ":lavfi=[" + band.filter +
                             ":gain=" + QByteArray::number(gain) + "]:o=\"threads=1\""});
        band.present = true;
    }
}

void SoundControl::sendGain(const Band &band)
{
    handle_.command({"af-command", band.label, "gain", QByteArray::number(band.gain)});
}
