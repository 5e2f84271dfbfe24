#include "localradio/services/listener.h"

#include "localradio/http/streamoutlet.h"

#include <algorithm>

namespace localradio {

Listener::Listener(StreamOutlet &outlet, std::unique_ptr<AudioSource> source, std::optional<Pace> pace,
                   std::optional<IcyWeaver> weaver)
    : QObject(&outlet)
    , outlet_(outlet)
    , source_(std::move(source))
    , pace_(pace)
    , weaver_(std::move(weaver))
{
    elapsed_.start();
    if (!pace_) {
        connect(&outlet_, &StreamOutlet::bytesLeft, this, &Listener::pump);
    }
}

void Listener::pump()
{
    if (pace_ && audioBytes_ >= pace_->untilByte) {
        pace_.reset();
        connect(&outlet_, &StreamOutlet::bytesLeft, this, &Listener::pump);
    }
    qint64 bytes = outlet_.room();
    if (pace_) {
        const double seconds = pace_->burstSeconds + static_cast<double>(elapsed_.elapsed()) / 1000.0;
        bytes = std::min(bytes, static_cast<qint64>(seconds * pace_->bytesPerSecond) - audioBytes_);
    }
    if (bytes <= 0) {
        return;
    }
    const QByteArray audio = source_->read(bytes);
    audioBytes_ += audio.size();
    outlet_.send(weaver_ ? weaver_->weave(audio) : audio);
}

} // namespace localradio
