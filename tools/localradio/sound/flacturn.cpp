#include "localradio/sound/oggpage.h"
#include "localradio/sound/turn.h"

namespace localradio {

namespace {

// Of RFC 9639.
constexpr qsizetype numberAt = 4;
constexpr qsizetype oggMappingSize = 9; // in front of the native signature, section 10.1
constexpr unsigned lastBlockFlag = 0x80;

quint32 crc(QByteArrayView bytes, int bits, quint32 polynomial)
{
    quint32 value = 0;
    for (const char byte : bytes) {
        value ^= static_cast<quint32>(static_cast<unsigned char>(byte)) << (bits - 8);
        for (int bit = 0; bit < 8; ++bit) {
            value = (value << 1) ^ ((value >> (bits - 1) & 1) != 0 ? polynomial : 0);
        }
    }
    return value & ((1U << bits) - 1);
}

/// As UTF-8 would code it, section 9.1.5.
QByteArray codedNumber(qint64 number)
{
    if (number < 0x80) {
        return {1, static_cast<char>(number)};
    }
    QByteArray tail;
    qint64 rest = number;
    qint64 room = 0x40; // values that fit into the first byte
    while (rest >= room || tail.isEmpty()) {
        tail.prepend(static_cast<char>(0x80 | (rest & 0x3f)));
        rest >>= 6;
        room = 0x40 >> tail.size();
    }
    const auto mark = static_cast<unsigned char>(0xff << (7 - tail.size()));
    return static_cast<char>(mark | rest) + tail;
}

QByteArray renumbered(const QByteArray &frame, qint64 number)
{
    const auto byte = [&frame](qsizetype at) { return static_cast<unsigned char>(frame[at]); };
    qsizetype rest = numberAt + 1; // behind the old number
    while ((byte(rest) & 0xc0U) == 0x80) {
        ++rest;
    }
    const int blockSize = byte(2) >> 4;
    const int sampleRate = byte(2) & 0x0f;
    const qsizetype extra = (blockSize == 6   ? 1
                             : blockSize == 7 ? 2
                                              : 0) +
                            (sampleRate == 12                       ? 1
                             : sampleRate == 13 || sampleRate == 14 ? 2
                                                                    : 0);
    QByteArray stamped = frame.first(numberAt) + codedNumber(number) + frame.mid(rest, extra);
    stamped += static_cast<char>(crc(stamped, 8, 0x07));
    stamped += frame.mid(rest + extra + 1).chopped(2);
    const quint32 checksum = crc(stamped, 16, 0x8005);
    stamped += static_cast<char>(checksum >> 8);
    stamped += static_cast<char>(checksum);
    return stamped;
}

} // namespace

Turn Turn::ofFlac(const QByteArray &oggFile)
{
    Turn turn;
    const QList<QByteArray> packets = OggPage::packetsOf(oggFile);
    for (const QByteArray &packet : packets) {
        if (turn.header.isEmpty()) {
            turn.header = packet.mid(oggMappingSize);
            if (turn.header.size() > 4) { // the first block shall be the only one
                turn.header[4] =
                    static_cast<char>(static_cast<unsigned char>(turn.header[4]) | lastBlockFlag);
            }
        } else if (packet.startsWith('\xff')) {
            turn.units.push_back(packet);
        }
    }
    turn.stamp = [](const QByteArray &unit, qint64 number, qint64 /*turns*/) {
        return renumbered(unit, number);
    };
    return turn;
}

} // namespace localradio
