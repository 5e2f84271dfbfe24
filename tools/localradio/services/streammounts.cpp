#include "localradio/services/streammounts.h"

#include "localradio/faults/streamfaults.h"
#include "localradio/http/httpconnection.h"
#include "localradio/http/streamoutlet.h"
#include "localradio/services/listener.h"
#include "localradio/sound/byteloop.h"
#include "localradio/sound/randombytes.h"
#include "localradio/sound/soundlibrary.h"
#include "localradio/sound/switchingsource.h"

#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

namespace localradio {

namespace {

/// Whether the station's own audio is heard, at first at least.
bool isAudio(const StreamFaults &faults)
{
    return faults.body == StreamFaults::Body::Station || faults.body == StreamFaults::Body::Endless ||
           faults.afterSeconds > 0;
}

/// What goes wrong in place of the station's audio, or that audio if nothing does. Null if that holds nothing
/// to play.
std::unique_ptr<AudioSource> bodyOf(const Programme &programme, const StreamFaults &faults)
{
    switch (faults.body) {
    case StreamFaults::Body::Random:
        return std::make_unique<RandomBytes>();
    case StreamFaults::Body::Zeros:
        return std::make_unique<ByteLoop>(QByteArray(16 * 1024, '\0'), 0);
    case StreamFaults::Body::Hostile:
        return faults.hostile->make(programme.play, faults.afterSeconds > 0);
    default:
        return programme.play();
    }
}

/// What a stream consists of, where `bytes` of it are as they should be. Null if that holds nothing to play.
std::unique_ptr<AudioSource> sourceFor(const Programme &programme, const StreamFaults &faults, qint64 bytes)
{
    auto source = programme.play();
    if (!source || faults.isStation()) {
        return source;
    }
    auto wrong = bodyOf(programme, faults);
    if (faults.tag) {
        wrong = std::make_unique<TaggedSource>(*faults.tag, std::move(wrong));
    }
    return std::make_unique<SwitchingSource>(std::move(source), bytes, std::move(wrong));
}

/// At the pace of the sound, as long as that is played.
std::optional<Pace> paceFor(const Programme &programme, const StreamFaults &faults, double burstSeconds,
                            qint64 bytes)
{
    Pace pace{programme.bytesPerSecond, burstSeconds};
    if (faults.paced && faults.hostile != nullptr) {
        pace.bytesPerSecond *= faults.hostile->expansion;
    } else if (!faults.paced && !faults.isStation()) {
        pace.untilByte = bytes;
    }
    return pace.untilByte > 0 ? std::optional(pace) : std::nullopt;
}

QByteArray mediaTypeOf(const Programme &programme, const StreamFaults &faults)
{
    if (isAudio(faults)) {
        return programme.mediaType;
    }
    return faults.hostile == nullptr ? QByteArray("audio/mpeg") : faults.hostile->mediaType;
}

QByteArray streamHead(const Programme &programme, const StreamFaults &faults, bool titles)
{
    const bool old = programme.oldStatusLine || faults.icy.oldStatusLine;
    QByteArray head = old ? "ICY 200 OK\r\n" : "HTTP/1.0 200 OK\r\n";
    head += "Server: localradio\r\nCache-Control: no-cache\r\nContent-Type: ";
    head += faults.contentType.value_or(mediaTypeOf(programme, faults));
    head += "\r\nicy-name: " + programme.name.toUtf8();
    head += "\r\nicy-genre: " + programme.genre.toUtf8();
    head += "\r\nicy-br: " + QByteArray::number(programme.bitrate) + "\r\n";
    if (titles) {
        head += "icy-metaint: " + faults.icy.announcedInterval + "\r\n";
    }
    if (faults.header) {
        head += *faults.header + "\r\n";
    }
    if (faults.chunkSize) {
        return head + "Transfer-Encoding: chunked\r\n\r\n" + *faults.chunkSize + "\r\n";
    }
    return head + "\r\n";
}

/// What stands behind the prefix that `path` begins with, privately or not; a null string if it does not.
QString behind(QStringView path, QLatin1StringView start)
{
    if (path.startsWith(StreamMounts::privatePrefix)) {
        path = path.sliced(StreamMounts::privatePrefix.size() - 1);
    }
    return path.startsWith(start) ? path.sliced(start.size()).toString() : QString();
}

} // namespace

StreamMounts::StreamMounts(const Catalogue &catalogue, SoundLibrary &library, double burstSeconds,
                           const Ports &ports, QObject *parent)
    : QObject(parent)
    , catalogue_(catalogue)
    , library_(library)
    , burstSeconds_(burstSeconds)
    , ports_(ports)
{
    onAir_.start();
    pump_.setInterval(125ms);
}

bool StreamMounts::serve(HttpConnection &connection, const RequestTarget &target)
{
    const auto programme = programmeAt(target.path());
    if (!programme) {
        return false;
    }
    StreamFaults faults = StreamFaults::read(target);
    const auto healthyBytes = std::llround(faults.afterSeconds * programme->bytesPerSecond);
    faults.delivery.delay(healthyBytes);
    auto *outlet = new StreamOutlet(connection, faults.delivery);
    if (const auto answer = faults.answerInstead(connection, ports_)) {
        outlet->answer(*answer);
        return true;
    }

    auto source = sourceFor(*programme, faults, healthyBytes);
    if (!source) {
        outlet->answer(Answer::plain(503, "The sound of this station cannot be read"));
        return true;
    }
    const bool titles =
        isAudio(faults) && programme->hasTitles && connection.request().header("Icy-MetaData") == "1";
    outlet->begin(200, streamHead(*programme, faults, titles));
    if (!connection.isStreaming()) {
        return true;
    }
    std::optional<IcyWeaver> weaver;
    if (titles && faults.icy.interval > 0) {
        weaver = weaverFor(*programme, faults.icy);
    }
    attach(new Listener(*outlet, std::move(source), paceFor(*programme, faults, burstSeconds_, healthyBytes),
                        std::move(weaver)));
    return true;
}

std::optional<Programme> StreamMounts::programmeAt(const QString &path)
{
    const QByteArray kindName = behind(path, kindPrefix).toUtf8();
    if (const Kind *kind = findKind(kindName.toStdString()); kind != nullptr && kind->isStream) {
        return programmeOf(*kind);
    }
    QString id = behind(path, QLatin1StringView("/stream/"));
    if (path.startsWith(privatePrefix)) {
        id = path.sliced(privatePrefix.size());
    }
    const Station *station = catalogue_.find(id.section(u';', 0, 0).toInt());
    return station != nullptr && station->mount ? std::optional(programmeOf(*station)) : std::nullopt;
}

Programme StreamMounts::programmeOf(const Station &station)
{
    const Format format = loopFormat(station.mount->loop);
    const QByteArray &loop = library_.loop(station.mount->loop);
    return {.number = station.id,
            .name = station.name,
            .genre = station.genres.join(u", "),
            .mediaType = station.mediaType.toUtf8(),
            .bitrate = station.bitrate,
            .bytesPerSecond = static_cast<double>(loop.size()) / loopSeconds,
            .hasTitles = format != Format::Ogg,
            .oldStatusLine = station.mount->oldStatusLine,
            .tracks = station.mount->tracks,
            .play = [format, loop] { return AudioSource::create(format, loop); }};
}

Programme StreamMounts::programmeOf(const Kind &kind)
{
    const auto name = QString::fromLatin1(kind.name.data(), static_cast<qsizetype>(kind.name.size()));
    const double bytesPerSecond = static_cast<double>(library_.file(kind).size()) / kindSeconds;
    return {.name = QStringLiteral("Kind: ") + name,
            .genre = QStringLiteral("Kinds"),
            .mediaType = kind.mediaType,
            .bitrate = static_cast<int>(bytesPerSecond * 8 / 1000),
            .bytesPerSecond = bytesPerSecond,
            .hasTitles = kind.container == Container::Frames,
            .tracks = {QStringLiteral("The Kinds - First"), QStringLiteral("The Kinds - Second")},
            .play = [this, &kind] { return library_.source(kind); }};
}

IcyWeaver StreamMounts::weaverFor(const Programme &programme, const IcyStyle &style) const
{
    // Titles change with the sound: the burst is what was on air just before.
    const double joined = static_cast<double>(onAir_.elapsed()) / 1000.0 - burstSeconds_;
    const auto titleAt = [programme, joined, title = style.title](qint64 audioByte) {
        const double seconds = joined + static_cast<double>(audioByte) / programme.bytesPerSecond;
        return title(programme.trackAt(seconds), audioByte);
    };
    return IcyWeaver(titleAt, style.interval, style.block);
}

void StreamMounts::attach(Listener *listener)
{
    connect(&pump_, &QTimer::timeout, listener, &Listener::pump);
    connect(listener, &QObject::destroyed, this, [this] {
        if (--listeners_ == 0) {
            pump_.stop();
        }
    });
    if (listeners_++ == 0) {
        pump_.start();
    }
    listener->pump();
}

} // namespace localradio
