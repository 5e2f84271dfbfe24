#include "localradio/byteloop.h"

#include <algorithm>

namespace localradio {

ByteLoop::ByteLoop(const QByteArray &loop, qsizetype start)
    : m_loop(loop)
    , m_next(start % loop.size())
{
    if (m_loop[m_next] == '\xff') { // the first byte of every frame
        m_next = (m_next + 1) % m_loop.size();
    }
}

QByteArray ByteLoop::read(qsizetype bytes)
{
    QByteArray audio;
    audio.reserve(bytes);
    while (audio.size() < bytes) {
        const qsizetype part = std::min(bytes - audio.size(), m_loop.size() - m_next);
        audio.append(QByteArrayView(m_loop).sliced(m_next, part));
        m_next = (m_next + part) % m_loop.size();
    }
    return audio;
}

} // namespace localradio
