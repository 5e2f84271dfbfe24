#include "localradio/services/streammounts.h"

#include "localradio/faults/streamfaults.h"
#include "localradio/http/httpconnection.h"
#include "localradio/http/streamoutlet.h"
#include "localradio/services/listener.h"
#include "localradio/sound/byteloop.h"
#include "localradio/sound/randombytes.h"

#include <QFile>

#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

namespace localradio {

namespace {

/// Whether the station's own audio is heard.
bool isAudio(StreamFaults::Body body)
{
    return body == StreamFaults::Body::Station || body == StreamFaults::Body::Endless;
}

/// What a stream consists of; `loop` is the station's. Null if that holds nothing to play.
std::unique_ptr<AudioSource> sourceFor(const Station &station, StreamFaults::Body body,
                                       const QByteArray &loop)
{
    if (body == StreamFaults::Body::Random) {
        return std::make_unique<RandomBytes>();
    }
    if (body == StreamFaults::Body::Zeros) {
        return std::make_unique<ByteLoop>(QByteArray(16 * 1024, '\0'), 0);
    }
    return AudioSource::create(loopFormat(station.mount->loop), loop);
}

QByteArray streamHead(const Station &station, const StreamFaults &faults, bool titles)
{
    const bool old = station.mount->oldStatusLine || faults.icy.oldStatusLine;
    QByteArray head = old ? "ICY 200 OK\r\n" : "HTTP/1.0 200 OK\r\n";
    head += "Server: localradio\r\nCache-Control: no-cache\r\nContent-Type: ";
    head += faults.contentType.value_or(isAudio(faults.body) ? station.mediaType.toUtf8() : "audio/mpeg");
    head += "\r\nicy-name: " + station.name.toUtf8();
    head += "\r\nicy-genre: " + station.genres.join(u", ").toUtf8();
    head += "\r\nicy-br: " + QByteArray::number(station.bitrate) + "\r\n";
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

/// What the station plays that many seconds after the mounts went on air; before it, if negative. Every
/// station changes tracks at a pace of its own, between 8 and 15 seconds.
QByteArray trackAt(const Station &station, double seconds)
{
    const int pace = 8 + station.id % 8;
    const auto count = station.mount->tracks.size();
    const auto turn = static_cast<qsizetype>(std::floor(seconds / pace)) % count;
    return station.mount->tracks[(turn + count) % count].toUtf8();
}

} // namespace

StreamMounts::StreamMounts(const Catalogue &catalogue, QString loopsDirectory, double burstSeconds,
                           const Ports &ports, QObject *parent)
    : QObject(parent)
    , catalogue_(catalogue)
    , loopsDirectory_(std::move(loopsDirectory))
    , burstSeconds_(burstSeconds)
    , ports_(ports)
{
    onAir_.start();
    pump_.setInterval(125ms);
}

bool StreamMounts::serve(HttpConnection &connection, const RequestTarget &target)
{
    const Station *station = stationAt(target.path());
    if (station == nullptr) {
        return false;
    }
    const StreamFaults faults = StreamFaults::read(target);
    auto *outlet = new StreamOutlet(connection, faults.delivery);
    if (const auto answer = faults.answerInstead(connection, ports_)) {
        outlet->answer(*answer);
        return true;
    }

    const QByteArray loop = loopAudio(station->mount->loop);
    auto source = sourceFor(*station, faults.body, loop);
    if (!source) {
        outlet->answer(Answer::plain(503, "The loop of this station cannot be read"));
        return true;
    }
    if (faults.tag) {
        source = std::make_unique<TaggedSource>(*faults.tag, std::move(source));
    }
    const Pace live{static_cast<double>(loop.size()) / loopSeconds, burstSeconds_};
    const bool titles = isAudio(faults.body) && loopFormat(station->mount->loop) != Format::Ogg &&
                        connection.request().header("Icy-MetaData") == "1";
    outlet->begin(200, streamHead(*station, faults, titles));
    if (!connection.isStreaming()) {
        return true;
    }
    std::optional<IcyWeaver> weaver;
    if (titles && faults.icy.interval > 0) {
        weaver = weaverFor(*station, faults.icy, live.bytesPerSecond);
    }
    const bool paced = faults.body == StreamFaults::Body::Station && !faults.tag;
    attach(new Listener(*outlet, std::move(source), paced ? std::optional(live) : std::nullopt,
                        std::move(weaver)));
    return true;
}

const Station *StreamMounts::stationAt(const QString &path) const
{
    for (const QLatin1StringView prefix : {QLatin1StringView("/stream/"), privatePrefix}) {
        if (path.startsWith(prefix)) {
            const Station *station = catalogue_.find(path.mid(prefix.size()).section(u';', 0, 0).toInt());
            return station != nullptr && station->mount ? station : nullptr;
        }
    }
    return nullptr;
}

IcyWeaver StreamMounts::weaverFor(const Station &station, const IcyStyle &style, double bytesPerSecond) const
{
    // Titles change with the sound: the burst is what was on air just before.
    const double joined = static_cast<double>(onAir_.elapsed()) / 1000.0 - burstSeconds_;
    const auto titleAt = [&station, joined, bytesPerSecond, title = style.title](qint64 audioByte) {
        const double seconds = joined + static_cast<double>(audioByte) / bytesPerSecond;
        return title(trackAt(station, seconds), audioByte);
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

QString StreamMounts::defaultLoopsDirectory()
{
    return QStringLiteral(LOCALRADIO_LOOPS_DIRECTORY);
}

QByteArray StreamMounts::loopAudio(int index)
{
    QByteArray &loop = loops_.at(static_cast<std::size_t>(index));
    if (loop.isEmpty()) {
        QFile file(loopsDirectory_ + u'/' + QString::number(index) +
                   QLatin1StringView(factsOf(loopFormat(index)).suffix));
        if (file.open(QIODevice::ReadOnly)) {
            loop = file.readAll();
        }
    }
    return loop;
}

} // namespace localradio
