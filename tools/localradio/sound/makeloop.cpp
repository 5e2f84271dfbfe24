// Writes one loop: synthesises a soft pad whose strongest partial is the loop's pitch, has ffmpeg encode it
// and cuts exactly one turn out of the result. The sound is periodic over one turn and the cut falls on
// frame or page boundaries, so that a decoder which is fed the file again and again hears no seam.

#include "localradio/sound/loops.h"
#include "localradio/sound/oggpage.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QStringList>

#include <algorithm>
#include <complex>
#include <cstdio>
#include <numbers>
#include <random>
#include <span>
#include <stdexcept>
#include <vector>

using namespace localradio;

namespace {

/// Sound before and after the turn, for the encoder to settle in and for the cut to have room.
constexpr int marginSamples = 8 * 9216;

/// Yields cos(phase + 2 pi * cycles * n / loopSamples) for n = 0, 1, ...: one multiplication a sample.
class Oscillator
{
public:
    Oscillator(double cycles, double phase)
        : value_(std::polar(1.0, phase))
        , step_(std::polar(1.0, 2.0 * std::numbers::pi * cycles / loopSamples))
    {
    }

    double next()
    {
        const double value = value_.real();
        value_ *= step_;
        return value;
    }

private:
    std::complex<double> value_;
    std::complex<double> step_;
};

/// One partial of the pad. Its level swells and fades `swells` times in a turn between level * (1 - depth)
/// and level, and it wanders between left and right at the same pace.
struct Partial
{
    double ratio;
    double level;
    double depth;
    int swells;
};

/// The fundamental stays well above the rest all the time: the pitch can be measured at any place.
constexpr std::array<Partial, 8> partials{{
    {1.0, 0.34, 0.15, 11},
    {2.0, 0.10, 0.60, 7},
    {3.0, 0.05, 0.70, 13},
    {4.0, 0.03, 0.80, 17},
    {1.5, 0.07, 1.00, 3},
    {1.25, 0.05, 1.00, 5},
    {2.5, 0.03, 1.00, 9},
    {0.5, 0.06, 0.80, 4},
}};

/// One turn of interleaved 16-bit stereo.
std::vector<std::int16_t> synthesise(int index)
{
    std::mt19937 random(static_cast<std::mt19937::result_type>(index));
    const auto uniform = [&random] { return static_cast<double>(random()) / std::mt19937::max(); };

    std::vector<double> left(loopSamples);
    std::vector<double> right(loopSamples);
    for (const Partial &partial : partials) {
        Oscillator tone(std::round(loopPitch(index) * partial.ratio * loopSeconds),
                        2.0 * std::numbers::pi * uniform());
        Oscillator swell(partial.swells, 2.0 * std::numbers::pi * uniform());
        Oscillator pan(partial.swells, 2.0 * std::numbers::pi * uniform());
        for (std::size_t i = 0; i < left.size(); ++i) {
            const double level = partial.level * (1.0 - partial.depth * (0.5 + 0.5 * swell.next()));
            const double value = level * tone.next();
            const double balance = 0.2 * pan.next();
            left[i] += value * (1.0 + balance);
            right[i] += value * (1.0 - balance);
        }
    }

    // A breath of noise: keeps the encoders at the bit rate of real programmes.
    constexpr double air = 0.012;
    std::vector<std::int16_t> turn;
    turn.reserve(2 * left.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        for (const double value : {left[i], right[i]}) {
            const double sample = std::clamp(value + air * (uniform() + uniform() - 1.0), -1.0, 1.0);
            turn.push_back(static_cast<std::int16_t>(std::lround(sample * 32767.0)));
        }
    }
    return turn;
}

QStringList encoderArguments(Format format)
{
    const QString options = [format] {
        switch (format) {
        case Format::Mp3: // without a reservoir every frame stands alone, and so can follow any other
            return QStringLiteral(
                "-c:a libmp3lame -b:a 128k -reservoir 0 -write_xing 0 -id3v2_version 0 -f mp3");
        case Format::Aac:
            return QStringLiteral("-c:a aac -b:a 64k -f adts");
        case Format::Ogg: // 200 ms: pages of nine long blocks
            return QStringLiteral("-c:a libvorbis -q:a 4 -page_duration 200000 -f ogg");
        }
        return QString();
    }();
    return QStringLiteral("-v error -nostdin -f s16le -ar %1 -ac 2 -i pipe:0 -bitexact %2 pipe:1")
        .arg(sampleRate)
        .arg(options)
        .split(u' ');
}

QByteArray encode(const QString &ffmpeg, Format format, const std::vector<std::int16_t> &turn)
{
    constexpr auto margin = std::ptrdiff_t{2} * marginSamples; // two channels
    std::vector<std::int16_t> sound(turn.end() - margin, turn.end());
    sound.insert(sound.end(), turn.begin(), turn.end());
    sound.insert(sound.end(), turn.begin(), turn.begin() + margin);

    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(ffmpeg, encoderArguments(format));
    const auto bytes = std::as_bytes(std::span(sound));
    process.write(reinterpret_cast<const char *>(bytes.data()), static_cast<qint64>(bytes.size()));
    process.closeWriteChannel();
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        throw std::runtime_error("ffmpeg failed: " + process.errorString().toStdString());
    }
    return process.readAllStandardOutput();
}

/// The bytes of the MPEG audio layer III frame at `at`: 128 kbit/s, 44.1 kHz.
qsizetype mp3FrameSize(const QByteArray &data, qsizetype at)
{
    const bool padded = (static_cast<unsigned char>(data[at + 2]) & 0x02U) != 0;
    return 144 * 128000 / sampleRate + (padded ? 1 : 0);
}

/// The bytes of the ADTS frame at `at`, as its header says.
qsizetype adtsFrameSize(const QByteArray &data, qsizetype at)
{
    const auto byte = [&](qsizetype i) { return static_cast<unsigned char>(data[at + i]); };
    return ((byte(3) & 0x03) << 11) | (byte(4) << 3) | (byte(5) >> 5);
}

/// One turn of MP3 or ADTS frames, each found through `frameSize`.
QByteArray cutFrames(const QByteArray &data, int samplesPerFrame,
                     qsizetype (*frameSize)(const QByteArray &, qsizetype))
{
    const int first = marginSamples / 2 / samplesPerFrame;
    const int last = first + loopSamples / samplesPerFrame;
    qsizetype begin = 0;
    qsizetype at = 0;
    for (int frame = 0; frame < last; ++frame) {
        if (at + 7 > data.size() || static_cast<unsigned char>(data[at]) != 0xff) {
            throw std::runtime_error("the encoder's frames are not where they should be");
        }
        if (frame == first) {
            begin = at;
        }
        at += frameSize(data, at);
    }
    return data.mid(begin, at - begin);
}

/// The header pages and one turn of pages, their positions counted from the start of the turn.
QByteArray cutPages(const QByteArray &data)
{
    QByteArray cut;
    qint64 start = 0;
    for (OggPage &page : OggPage::pagesOf(data)) {
        if (page.granulePosition() == 0) {
            cut += page.bytes();
        } else if (start == 0) {
            start = page.granulePosition() >= marginSamples / 2 ? page.granulePosition() : 0;
        } else if (page.granulePosition() <= start + loopSamples) {
            if (page.isContinued()) {
                throw std::runtime_error("a Vorbis packet crosses a page boundary");
            }
            page.setGranulePosition(page.granulePosition() - start);
            page.updateChecksum();
            cut += page.bytes();
            if (page.granulePosition() == loopSamples) {
                return cut;
            }
        }
    }
    throw std::runtime_error("no page ends where the turn ends");
}

QByteArray cutTurn(Format format, const QByteArray &data)
{
    switch (format) {
    case Format::Mp3:
        return cutFrames(data, 1152, mp3FrameSize);
    case Format::Aac:
        return cutFrames(data, 1024, adtsFrameSize);
    case Format::Ogg:
        return cutPages(data);
    }
    return {};
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: makeloop FFMPEG INDEX FILE\n", stderr);
        return 1;
    }
    try {
        const int index = std::clamp(arguments[2].toInt(), 0, loopCount - 1);
        const Format format = loopFormat(index);
        QSaveFile file(arguments[3]);
        if (!file.open(QIODevice::WriteOnly)) {
            throw std::runtime_error(file.errorString().toStdString());
        }
        file.write(cutTurn(format, encode(arguments[1], format, synthesise(index))));
        if (!file.commit()) {
            throw std::runtime_error(file.errorString().toStdString());
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "makeloop: %s\n", error.what());
        return 1;
    }
    return 0;
}
