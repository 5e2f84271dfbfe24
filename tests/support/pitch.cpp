#include "support/pitch.h"

#include <QFile>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {
constexpr double sampleRate = 44100;
constexpr std::size_t window = 32768;
constexpr qsizetype bytesPerFrame = 4;
constexpr double lowestPitch = 80;
constexpr double highestPitch = 2000;
constexpr double semitone = 1.0594630943592953;
constexpr double quarterTone = 1.0293;

std::vector<double> lastSamples(const QString &wavFile)
{
    QFile file(wavFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    const qsizetype header = bytes.indexOf("data") + 8;
    const qsizetype frames = (bytes.size() - header) / bytesPerFrame;
    if (header < 8 || frames < static_cast<qsizetype>(window)) {
        return {};
    }
    std::vector<double> samples(window);
    const qsizetype first = header + (frames - static_cast<qsizetype>(window)) * bytesPerFrame;
    for (std::size_t index = 0; index < window; ++index) {
        const auto *frame = reinterpret_cast<const uchar *>(bytes.constData()) + first +
                            static_cast<qsizetype>(index) * bytesPerFrame;
        const double phase = 2 * std::numbers::pi * static_cast<double>(index) / window;
        samples[index] = static_cast<qint16>(frame[0] | frame[1] << 8) * (0.5 - 0.5 * std::cos(phase));
    }
    return samples;
}
} // namespace

/// The Goertzel algorithm.
double energyAt(const std::vector<double> &samples, double frequency)
{
    const double coefficient = 2 * std::cos(2 * std::numbers::pi * frequency / sampleRate);
    double last = 0;
    double beforeLast = 0;
    for (const double sample : samples) {
        const double next = sample + coefficient * last - beforeLast;
        beforeLast = last;
        last = next;
    }
    return last * last + beforeLast * beforeLast - coefficient * last * beforeLast;
}

double strongestPitch(const QString &wavFile)
{
    const std::vector<double> samples = lastSamples(wavFile);
    double strongest = 0;
    double pitch = 0;
    // An eighth of a semitone a step is finer than the window's own resolution over most of the range.
    for (double frequency = lowestPitch; frequency < highestPitch; frequency *= std::pow(semitone, 0.125)) {
        const double energy = energyAt(samples, frequency);
        if (energy > strongest) {
            strongest = energy;
            pitch = frequency;
        }
    }
    return pitch;
}

bool hasPitch(const QString &wavFile, double pitch)
{
    return std::abs(std::log(strongestPitch(wavFile) / pitch)) < std::log(quarterTone);
}
