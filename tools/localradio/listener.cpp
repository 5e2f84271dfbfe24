#include "localradio/listener.h"

#include "localradio/httpconnection.h"

#include <algorithm>

namespace localradio {

Listener::Listener(HttpConnection &connection, std::unique_ptr<AudioSource> source, double bytesPerSecond,
                   double burstSeconds, std::optional<IcyWeaver> weaver)
    : QObject(&connection)
    , connection_(connection)
    , source_(std::move(source))
    , bytesPerSecond_(bytesPerSecond)
    , burstSeconds_(burstSeconds)
    , weaver_(std::move(weaver))
{
    elapsed_.start();
}

void Listener::pump()
{
    const double seconds = burstSeconds_ + static_cast<double>(elapsed_.elapsed()) / 1000.0;
    const auto due = static_cast<qint64>(seconds * bytesPerSecond_) - audioBytes_;
    const qint64 bytes = std::min(due, maxUnsentBytes - connection_.unsentBytes());
    if (bytes <= 0) {
        return;
    }
    const QByteArray audio = source_->read(bytes);
    audioBytes_ += audio.size();
    connection_.send(weaver_ ? weaver_->weave(audio) : audio);
}

} // namespace localradio
