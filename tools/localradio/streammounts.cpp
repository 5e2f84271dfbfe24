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
    , m_catalogue(catalogue)
    , m_loopsDirectory(std::move(loopsDirectory))
    , m_burstSeconds(burstSeconds)
{
    m_onAir.start();
    m_pump.setInterval(125ms);
}

bool StreamMounts::serve(HttpConnection &connection, const RequestTarget &target)
{
    const QString prefix = QStringLiteral("/stream/");
    if (!target.path().startsWith(prefix)) {
        return false;
    }
    const Station *station = m_catalogue.find(target.path().mid(prefix.size()).section(u';', 0, 0).toInt());
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
        const double joined = static_cast<double>(m_onAir.elapsed()) / 1000.0 - m_burstSeconds;
        weaver.emplace([station, joined, bytesPerSecond](qint64 audioByte) {
            return trackAt(*station, joined + static_cast<double>(audioByte) / bytesPerSecond);
        });
    }

    connection.beginStream(200, streamHead(*station, weaver.has_value()));
    if (!connection.isStreaming()) {
        return true;
    }
    auto *listener =
        new Listener(connection, std::move(source), bytesPerSecond, m_burstSeconds, std::move(weaver));
    connect(&m_pump, &QTimer::timeout, listener, &Listener::pump);
    connect(listener, &QObject::destroyed, this, [this] {
        if (--m_listeners == 0) {
            m_pump.stop();
        }
    });
    if (m_listeners++ == 0) {
        m_pump.start();
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
    QByteArray &loop = m_loops.at(static_cast<std::size_t>(index));
    if (loop.isEmpty()) {
        QFile file(m_loopsDirectory + u'/' + QString::number(index) +
                   QLatin1StringView(factsOf(loopFormat(index)).suffix));
        if (file.open(QIODevice::ReadOnly)) {
            loop = file.readAll();
        }
    }
    return loop;
}

} // namespace localradio
