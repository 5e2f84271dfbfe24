#include "localradio/listener.h"

#include "localradio/httpconnection.h"

#include <algorithm>

namespace localradio {

Listener::Listener(HttpConnection &connection, std::unique_ptr<AudioSource> source, double bytesPerSecond,
                   double burstSeconds, std::optional<IcyWeaver> weaver)
    : QObject(&connection)
    , m_connection(connection)
    , m_source(std::move(source))
    , m_bytesPerSecond(bytesPerSecond)
    , m_burstSeconds(burstSeconds)
    , m_weaver(std::move(weaver))
{
    m_elapsed.start();
}

void Listener::pump()
{
    const double seconds = m_burstSeconds + static_cast<double>(m_elapsed.elapsed()) / 1000.0;
    const auto due = static_cast<qint64>(seconds * m_bytesPerSecond) - m_audioBytes;
    const qint64 bytes = std::min(due, maxUnsentBytes - m_connection.unsentBytes());
    if (bytes <= 0) {
        return;
    }
    const QByteArray audio = m_source->read(bytes);
    m_audioBytes += audio.size();
    m_connection.send(m_weaver ? m_weaver->weave(audio) : audio);
}

} // namespace localradio
