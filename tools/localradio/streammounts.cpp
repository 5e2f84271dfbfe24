#include "localradio/streammounts.h"

#include "localradio/httpconnection.h"
#include "localradio/listener.h"

#include <QFile>

#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

namespace localradio {

namespace {

QByteArray streamHead(const Station &station, bool titles)
{
    QByteArray head = station.mount->oldStatusLine ? "ICY 200 OK\r\n" : "HTTP/1.0 200 OK\r\n";
    head += "Server: localradio\r\nCache-Control: no-cache\r\nContent-Type: " + station.mediaType.toUtf8();
    head += "\r\nicy-name: " + station.name.toUtf8();
    head += "\r\nicy-genre: " + station.genres.join(u", ").toUtf8();
    head += "\r\nicy-br: " + QByteArray::number(station.bitrate) + "\r\n";
    if (titles) {
        head += "icy-metaint: " + QByteArray::number(IcyWeaver::interval) + "\r\n";
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
                           QObject *parent)
    : QObject(parent)
    , catalogue_(catalogue)
    , loopsDirectory_(std::move(loopsDirectory))
    , burstSeconds_(burstSeconds)
{
    onAir_.start();
    pump_.setInterval(125ms);
}

bool StreamMounts::serve(HttpConnection &connection, const RequestTarget &target)
{
    const QString prefix = QStringLiteral("/stream/");
    if (!target.path().startsWith(prefix)) {
        return false;
    }
    const Station *station = catalogue_.find(target.path().mid(prefix.size()).section(u';', 0, 0).toInt());
    if (station == nullptr || !station->mount) {
        return false;
    }

    const int index = station->mount->loop;
    const QByteArray audio = loopAudio(index);
    auto source = AudioSource::create(loopFormat(index), audio);
    if (!source) {
        connection.answer({503, "text/plain; charset=utf-8", "The loop of this station cannot be read\n"});
        return true;
    }
    const double bytesPerSecond = static_cast<double>(audio.size()) / loopSeconds;
    std::optional<IcyWeaver> weaver;
    if (loopFormat(index) != Format::Ogg && connection.request().header("Icy-MetaData") == "1") {
        // Titles change with the sound: the burst is what was on air just before.
        const double joined = static_cast<double>(onAir_.elapsed()) / 1000.0 - burstSeconds_;
        weaver.emplace([station, joined, bytesPerSecond](qint64 audioByte) {
            return trackAt(*station, joined + static_cast<double>(audioByte) / bytesPerSecond);
        });
    }

    connection.beginStream(200, streamHead(*station, weaver.has_value()));
    if (!connection.isStreaming()) {
        return true;
    }
    auto *listener =
        new Listener(connection, std::move(source), bytesPerSecond, burstSeconds_, std::move(weaver));
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
    return true;
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
