#include "localradio/sound/byteloop.h"

#include <algorithm>

namespace localradio {

ByteLoop::ByteLoop(const QByteArray &loop, qsizetype start)
    : loop_(loop)
    , next_(start % loop.size())
{
    if (loop_[next_] == '\xff') { // the first byte of every frame
        next_ = (next_ + 1) % loop_.size();
    }
}

QByteArray ByteLoop::read(qsizetype bytes)
{
    QByteArray audio;
    audio.reserve(bytes);
    while (audio.size() < bytes) {
        const qsizetype part = std::min(bytes - audio.size(), loop_.size() - next_);
        audio.append(QByteArrayView(loop_).sliced(next_, part));
        next_ = (next_ + part) % loop_.size();
    }
    return audio;
}

} // namespace localradio
