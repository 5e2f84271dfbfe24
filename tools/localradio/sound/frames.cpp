#include "localradio/sound/frames.h"

namespace localradio {

qsizetype frameSize(QByteArrayView data)
{
    if (data.size() < 7) {
        return 0;
    }
    const auto byte = [&data](qsizetype at) { return static_cast<unsigned char>(data[at]); };
    if (byte(0) == 0xff && (byte(1) & 0xf6U) == 0xf0) { // ADTS (ISO/IEC 13818-7): layer 0
        return ((byte(3) & 0x03) << 11) | (byte(4) << 3) | (byte(5) >> 5);
    }
    if (byte(0) == 0xff && (byte(1) & 0xfeU) == 0xfa) { // layer III (ISO/IEC 11172-3)
        const int rate = ((byte(2) >> 2) & 0x03) == 1 ? 48000 : 44100;
        return 144 * 128000 / rate + ((byte(2) >> 1) & 0x01);
    }
    if (byte(0) == 0x56 && (byte(1) & 0xe0U) == 0xe0) { // LOAS (ISO/IEC 14496-3)
        return 3 + (((byte(1) & 0x1f) << 8) | byte(2));
    }
    if (byte(0) == 0x0b && byte(1) == 0x77) { // AC-3 (ETSI TS 102 366)
        return 192000 / 8 * 1536 / 48000;
    }
    return 0;
}

} // namespace localradio
