#include "support/pitch.h"

#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {
constexpr double sampleRate = 44100;
constexpr std::size_t window = 16384;
constexpr qsizetype bytesPerFrame = 4;
constexpr double lowestPitch = 80;
constexpr double highestPitch = 2000;
constexpr double semitone = 1.0594630943592953;
constexpr double quarterTone = 1.0293;

/// The end of a recording.
struct Excerpt
{
    std::vector<double> samples;
    double rate = sampleRate;
};

/// Without samples where the file is too short.
Excerpt excerptOf(const QString &wavFile)
{
    QFile file(wavFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    constexpr qint64 longestHeader = 256;
    constexpr qsizetype rateAt = 24;
    const QByteArray head = file.read(longestHeader);
    const qsizetype header = head.indexOf("data") + 8;
    const qint64 frames = (file.size() - header) / bytesPerFrame;
    if (header < 8 || frames < static_cast<qint64>(window)) {
        return {};
    }
    file.seek(header + (frames - static_cast<qint64>(window)) * bytesPerFrame);
    const QByteArray bytes = file.read(static_cast<qint64>(window) * bytesPerFrame);
    if (bytes.size() < static_cast<qsizetype>(window) * bytesPerFrame) {
        return {};
    }
    std::vector<double> samples(window);
    for (std::size_t index = 0; index < window; ++index) {
        const auto *frame = reinterpret_cast<const uchar *>(bytes.constData()) +
                            static_cast<qsizetype>(index) * bytesPerFrame;
        const double phase = 2 * std::numbers::pi * static_cast<double>(index) / window;
        samples[index] = static_cast<qint16>(frame[0] | frame[1] << 8) * (0.5 - 0.5 * std::cos(phase));
    }
    return {std::move(samples), static_cast<double>(qFromLittleEndian<quint32>(head.constData() + rateAt))};
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
    const Excerpt excerpt = excerptOf(wavFile);
    double strongest = 0;
    double pitch = 0;
    // A pitch between two steps must not weigh less than a fainter one that is met.
    constexpr double resolution = 2 * sampleRate / window;
    const double eighth = std::pow(semitone, 0.125) - 1;
    for (double frequency = lowestPitch; frequency < highestPitch;
         frequency += std::min(frequency * eighth, resolution)) {
        const double energy = energyAt(excerpt.samples, frequency);
        if (energy > strongest) {
            strongest = energy;
            pitch = frequency;
        }
    }
    return pitch * excerpt.rate / sampleRate;
}

bool hasPitch(const QString &wavFile, double pitch)
{
    return std::abs(std::log(strongestPitch(wavFile) / pitch)) < std::log(quarterTone);
}
