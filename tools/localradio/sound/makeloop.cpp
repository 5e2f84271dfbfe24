// Writes one loop, or one turn of a kind: synthesises a soft pad whose strongest partial is the loop's pitch,
// has ffmpeg encode it and cuts exactly one turn out of the result. The sound is periodic over one turn and
// the cut falls on frame or page boundaries, so that a decoder which is fed the file again and again hears no
// seam. Kinds that carry frames of another are wrapped after the cut.

#include "localradio/sound/frames.h"
#include "localradio/sound/kinds.h"
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

/// What is to be heard.
struct Sound
{
    unsigned seed;
    double pitch;
    int rate;
    int samples;       ///< in one turn
    int marginSamples; ///< before and after it, for the encoder to settle in and for the cut to have room

    double seconds() const { return static_cast<double>(samples) / rate; }
};

Sound soundOfLoop(int index)
{
    return {static_cast<unsigned>(index), loopPitch(index), sampleRate, loopSamples, 8 * 9216};
}

Sound soundOf(const Kind &kind)
{
    const auto seed = static_cast<unsigned>(&kind - kinds.data()) + loopCount;
    return {seed, kindPitch(kind), kindSampleRate, kindSamples, 8 * kindUnitSamples};
}

/// Yields cos(phase + 2 pi * cycles * n / samples) for n = 0, 1, ...: one multiplication a sample.
class Oscillator
{
public:
    Oscillator(double cycles, int samples, double phase)
        : value_(std::polar(1.0, phase))
        , step_(std::polar(1.0, 2.0 * std::numbers::pi * cycles / samples))
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
std::vector<std::int16_t> synthesise(const Sound &sound)
{
    std::mt19937 random(sound.seed);
    const auto uniform = [&random] { return static_cast<double>(random()) / std::mt19937::max(); };

    std::vector<double> left(static_cast<std::size_t>(sound.samples));
    std::vector<double> right(left.size());
    for (const Partial &partial : partials) {
        Oscillator tone(std::round(sound.pitch * partial.ratio * sound.seconds()), sound.samples,
                        2.0 * std::numbers::pi * uniform());
        Oscillator swell(partial.swells, sound.samples, 2.0 * std::numbers::pi * uniform());
        Oscillator pan(partial.swells, sound.samples, 2.0 * std::numbers::pi * uniform());
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

/// What the options `arguments`, with one blank between, make ffmpeg print.
QByteArray convert(const QString &ffmpeg, const QString &arguments, const QByteArray &input,
                   const QStringList &more = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList all = (QStringLiteral("-v error -nostdin ") + arguments).split(u' ');
    process.start(ffmpeg, all + more + QStringList{QStringLiteral("-bitexact"), QStringLiteral("pipe:1")});
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        throw std::runtime_error("ffmpeg failed: " + process.errorString().toStdString());
    }
    return process.readAllStandardOutput();
}

QString rawInput(const Sound &sound)
{
    return QStringLiteral("-f s16le -ar %1 -ac 2 -i pipe:0 ").arg(sound.rate);
}

QByteArray bytesOf(std::span<const std::int16_t> samples)
{
    const auto bytes = std::as_bytes(samples);
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray encode(const QString &ffmpeg, const char *options, const Sound &sound)
{
    const std::vector<std::int16_t> turn = synthesise(sound);
    const auto margin = std::ptrdiff_t{2} * sound.marginSamples; // two channels
    std::vector<std::int16_t> all(turn.end() - margin, turn.end());
    all.insert(all.end(), turn.begin(), turn.end());
    all.insert(all.end(), turn.begin(), turn.begin() + margin);
    return convert(ffmpeg, rawInput(sound) + QLatin1StringView(options), bytesOf(all));
}

/// One turn of frames.
QByteArray cutFrames(const QByteArray &data, const Sound &sound, int samplesPerFrame)
{
    const int first = sound.marginSamples / 2 / samplesPerFrame;
    const int last = first + sound.samples / samplesPerFrame;
    qsizetype begin = 0;
    qsizetype at = 0;
    for (int frame = 0; frame < last; ++frame) {
        const qsizetype size = frameSize(QByteArrayView(data).sliced(std::min(at, data.size())));
        if (size == 0) {
            throw std::runtime_error("the encoder's frames are not where they should be");
        }
        if (frame == first) {
            begin = at;
        }
        at += size;
    }
    return data.mid(begin, at - begin);
}

/// The header pages and one turn of pages, their positions counted from the start of the turn.
QByteArray cutPages(const QByteArray &data, const Sound &sound, int /*samplesPerPage*/)
{
    QByteArray cut;
    qint64 start = 0;
    for (OggPage &page : OggPage::pagesOf(data)) {
        if (page.granulePosition() == 0) {
            cut += page.bytes();
        } else if (start == 0) {
            start = page.granulePosition() >= sound.marginSamples / 2 ? page.granulePosition() : 0;
        } else if (page.granulePosition() <= start + sound.samples) {
            if (page.isContinued()) {
                throw std::runtime_error("a packet crosses a page boundary");
            }
            page.setGranulePosition(page.granulePosition() - start);
            page.updateChecksum();
            cut += page.bytes();
            if (page.granulePosition() == sound.samples) {
                return cut;
            }
        }
    }
    throw std::runtime_error("no page ends where the turn ends");
}

/// How a turn is made.
struct Recipe
{
    const char *name;
    const char *encoder;
    QByteArray (*cut)(const QByteArray &data, const Sound &sound, int samplesPerFrame);
    int samplesPerFrame = 0;
    const char *wrapper = nullptr; ///< makes the file of the turn that was cut
};

// Without a reservoir every frame stands alone, and so can follow any other.
constexpr char mp3[] = "-c:a libmp3lame -b:a 128k -reservoir 0 -write_xing 0 -id3v2_version 0 -f mp3";
constexpr char aac[] = "-c:a aac -b:a 96k -f adts";
constexpr char lowAac[] = "-c:a aac -b:a 32k -f adts";
constexpr char midAac[] = "-c:a aac -b:a 64k -f adts";
constexpr char highAac[] = "-c:a aac -b:a 128k -f adts";

constexpr char latm[] = "-f aac -i pipe:0 -c copy -bsf:a aac_adtstoasc -f latm";
constexpr char transportStream[] = "-f aac -i pipe:0 -c copy -pes_payload_size 0 -f mpegts";
constexpr char fragments[] = "-f aac -i pipe:0 -c copy -bsf:a aac_adtstoasc "
                             "-movflags empty_moov+default_base_moof -frag_duration 320000 -f mp4";
constexpr char clusters[] = "-f ogg -i pipe:0 -c copy -live 1 -cluster_time_limit 319 -f webm";
// A picture that stands alone begins every segment of six units.
constexpr char withVideo[] =
    "-f aac -i pipe:0 -f lavfi -i color=black:s=64x36:r=25:d=30.72 -map 0 -map 1 -c:a copy -c:v libx264 "
    "-preset ultrafast -bf 0 -g 48 -keyint_min 48 -sc_threshold 0 -pes_payload_size 0 -f mpegts";

/// Of the loops, by their formats.
constexpr std::array loopRecipes{
    Recipe{"MP3", mp3, cutFrames, 1152},
    Recipe{"AAC", midAac, cutFrames, 1024},
    // 200 ms: pages of nine long blocks.
    Recipe{"Ogg", "-c:a libvorbis -q:a 4 -page_duration 200000 -f ogg", cutPages},
};

/// Of the kinds; their pages are units.
constexpr std::array kindRecipes{
    Recipe{"mp3", mp3, cutFrames, 1152},
    Recipe{"aac", aac, cutFrames, 1024},
    Recipe{"latm", aac, cutFrames, 1024, latm},
    Recipe{"ac3", "-c:a ac3 -b:a 192k -f ac3", cutFrames, 1536},
    Recipe{"eac3", "-c:a eac3 -b:a 192k -f eac3", cutFrames, 1536},
    Recipe{"ogg-vorbis", "-c:a libvorbis -q:a 4 -page_duration 320000 -f ogg", cutPages},
    Recipe{"ogg-opus", "-c:a libopus -b:a 96k -page_duration 320000 -f ogg", cutPages},
    Recipe{"ogg-flac", "-c:a flac -frame_size 3072 -page_duration 320000 -f ogg", cutPages},
    Recipe{"mpegts", aac, cutFrames, 1024, transportStream},
    Recipe{"fmp4", aac, cutFrames, 1024, fragments},
    Recipe{"webm", "-c:a libopus -b:a 96k -page_duration 320000 -f ogg", cutPages, 0, clusters},
    Recipe{"low-aac", lowAac, cutFrames, 1024},
    Recipe{"low-ts", lowAac, cutFrames, 1024, transportStream},
    Recipe{"low-fmp4", lowAac, cutFrames, 1024, fragments},
    Recipe{"mid-aac", midAac, cutFrames, 1024},
    Recipe{"mid-ts", midAac, cutFrames, 1024, transportStream},
    Recipe{"mid-fmp4", midAac, cutFrames, 1024, fragments},
    Recipe{"high-aac", highAac, cutFrames, 1024},
    Recipe{"high-ts", highAac, cutFrames, 1024, transportStream},
    Recipe{"high-fmp4", highAac, cutFrames, 1024, fragments},
    Recipe{"video-ts", lowAac, cutFrames, 1024, withVideo},
};

struct ChainRecipe
{
    const char *name;
    const char *encoder;
    const char *change = ""; ///< what is otherwise in every second link
};

constexpr std::array chainRecipes{
    ChainRecipe{"chained-vorbis", "-c:a libvorbis -q:a 4"},
    ChainRecipe{"chained-opus", "-c:a libopus -b:a 96k"},
    ChainRecipe{"chained-flac", "-c:a flac"},
    ChainRecipe{"changing-vorbis", "-c:a libvorbis -q:a 4", "-ar 32000 -ac 1 -q:a 7"},
    ChainRecipe{"changing-opus", "-c:a libopus -b:a 96k", "-ac 1"},
    // Blocks of one size: decoders take no longer ones than the first link has announced.
    ChainRecipe{"changing-flac", "-c:a flac -frame_size 3072", "-ar 96000 -ac 1"},
};

QByteArray makeTurn(const QString &ffmpeg, const Recipe &recipe, const Sound &sound)
{
    const QByteArray turn = recipe.cut(encode(ffmpeg, recipe.encoder, sound), sound, recipe.samplesPerFrame);
    return recipe.wrapper == nullptr ? turn : convert(ffmpeg, QLatin1StringView(recipe.wrapper), turn);
}

/// One file a link, one behind the other.
QByteArray makeChain(const QString &ffmpeg, const ChainRecipe &recipe, const Sound &sound)
{
    const std::vector<std::int16_t> turn = synthesise(sound);
    const std::size_t samples = turn.size() / linkTitles.size();
    const auto tag = [](const char *name, std::string_view value) {
        return QLatin1StringView(name) + QLatin1StringView(value.data(), static_cast<int>(value.size()));
    };
    QByteArray chain;
    for (std::size_t link = 0; link < linkTitles.size(); ++link) {
        QString options = rawInput(sound) + QLatin1StringView(recipe.encoder);
        if (link % 2 == 1 && *recipe.change != '\0') {
            options += u' ' + QLatin1StringView(recipe.change);
        }
        chain += convert(ffmpeg, options + QStringLiteral(" -page_duration 320000 -f ogg"),
                         bytesOf(std::span(turn).subspan(link * samples, samples)),
                         {QStringLiteral("-metadata"), tag("artist=", linkArtist),
                          QStringLiteral("-metadata"), tag("title=", linkTitles[link])});
    }
    return chain;
}

/// The file of a kind, or of the loop with that number.
QByteArray make(const QString &ffmpeg, const std::string &name)
{
    const auto kind = std::ranges::find(kinds, name, &Kind::name);
    if (kind == kinds.end()) {
        const int index = std::clamp(std::stoi(name), 0, loopCount - 1);
        const auto recipe = loopRecipes.begin() + static_cast<int>(loopFormat(index));
        return makeTurn(ffmpeg, *recipe, soundOfLoop(index));
    }
    const auto named = [&name](const auto &recipe) { return recipe.name == name; };
    if (const auto chain = std::ranges::find_if(chainRecipes, named); chain != chainRecipes.end()) {
        return makeChain(ffmpeg, *chain, soundOf(*kind));
    }
    const auto recipe = std::ranges::find_if(kindRecipes, named);
    if (recipe == kindRecipes.end()) {
        throw std::runtime_error("nothing tells how this kind is made");
    }
    return makeTurn(ffmpeg, *recipe, soundOf(*kind));
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: makeloop FFMPEG INDEX|KIND FILE\n", stderr);
        return 1;
    }
    try {
        QSaveFile file(arguments[3]);
        if (!file.open(QIODevice::WriteOnly)) {
            throw std::runtime_error(file.errorString().toStdString());
        }
        file.write(make(arguments[1], arguments[2].toStdString()));
        if (!file.commit()) {
            throw std::runtime_error(file.errorString().toStdString());
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "makeloop: %s\n", error.what());
        return 1;
    }
    return 0;
}
