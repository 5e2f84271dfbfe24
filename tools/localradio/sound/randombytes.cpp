#include "localradio/sound/randombytes.h"

namespace localradio {

QByteArray RandomBytes::read(qsizetype bytes)
{
    // In whole words, so that the bytes do not depend on how many are asked for at a time.
    QByteArray noise;
    noise.reserve(bytes + qsizetype{sizeof(quint32)});
    while (noise.size() < bytes) {
        const quint32 word = generator_.generate();
        noise.append(reinterpret_cast<const char *>(&word), sizeof(word));
    }
    return noise;
}

} // namespace localradio
