#include "localradio/sound/hostilefiles.h"

#include <QRandomGenerator>
#include <QtEndian>

#include <array>

namespace localradio {

namespace {

constexpr quint32 hugeSize = 0x0fff'ff00;

template <typename Number>
QByteArray bigEndian(Number number)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray box(const char *name, const QByteArray &content, quint32 missing = 0)
{
    const auto size = static_cast<quint32>(content.size()) + 8 + missing;
    return bigEndian(size) + name + content;
}

QByteArray mp4Type()
{
    return box("ftyp", QByteArray("M4A \0\0\0\0M4A mp42isom", 20));
}

QByteArray element(const char *id, const QByteArray &content, quint64 missing = 0)
{
    constexpr quint64 eightByteSize = quint64{1} << 56U;
    return QByteArray::fromHex(id) +
           bigEndian(eightByteSize | (static_cast<quint64>(content.size()) + missing)) + content;
}

constexpr qsizetype videoPacketSize = 188;
constexpr int mapPid = 0x100;
constexpr int mpegPid = 0x101;
constexpr int h264Pid = 0x102;

/// One packet that begins something, padded with noise, or with what tables are padded with.
QByteArray packet(int pid, qint64 counter, const QByteArray &payload, bool begins, bool table)
{
    QByteArray packet(4, '\0');
    packet[0] = '\x47';
    packet[1] = static_cast<char>((begins ? 0x40 : 0) | pid >> 8);
    packet[2] = static_cast<char>(pid);
    packet[3] = static_cast<char>(0x10 | (counter & 0x0f));
    packet += payload;
    while (packet.size() < videoPacketSize) {
        packet += table ? '\xff' : static_cast<char>(QRandomGenerator::global()->generate());
    }
    return packet;
}

/// A section of a program's tables, with the checksum that ISO/IEC 13818-1 wants.
QByteArray section(const QByteArray &content)
{
    quint32 checksum = 0xffff'ffff;
    for (const char byte : content) {
        checksum ^= static_cast<quint32>(static_cast<unsigned char>(byte)) << 24;
        for (int bit = 0; bit < 8; ++bit) {
            checksum = (checksum << 1) ^ ((checksum >> 31) * 0x04c1'1db7U);
        }
    }
    return '\0' + content + bigEndian(checksum);
}

/// How the pictures of a stream begin: a sequence and its first picture, or a set of parameters and a slice.
QByteArray pictures(int pid)
{
    const QByteArray pes = QByteArray::fromHex("000001e000008080052100010001");
    return pes + QByteArray::fromHex(pid == mpegPid
                                         ? "000001b32d0120331fffe01800000100000ffff8000001 01"
                                         : "00000001674200 0ad9004326c0440000000168ce3c8000000165");
}

} // namespace

QByteArray mp4WithPicture()
{
    const QByteArray data = box("data", QByteArray("\0\0\0\15\0\0\0\0", 8), hugeSize);
    const QByteArray list = box("ilst", box("covr", data, hugeSize), hugeSize);
    const QByteArray handler = box("hdlr", QByteArray(8, '\0') + "mdirappl" + QByteArray(9, '\0'));
    const QByteArray meta = box("meta", QByteArray(4, '\0') + handler + list, hugeSize);
    return mp4Type() + box("moov", box("udta", meta, hugeSize), hugeSize);
}

QByteArray mp4WithBomb()
{
    constexpr quint32 inflated = 300'000'000;
    constexpr qsizetype pieceBytes = 2064; // that a piece inflates to
    const QByteArray deflated =
        QByteArray::fromHex("7801ab1805") +
        QByteArray::fromHex("a360148c8251300a46c1281805").repeated(inflated / pieceBytes) +
        QByteArray(9, '\0');
    const QByteArray bomb = box("dcom", "zlib") + box("cmvd", bigEndian(inflated) + deflated);
    return mp4Type() + box("moov", box("cmov", bomb));
}

QByteArray webmLongHeader()
{
    const QByteArray head = element("1a45dfa3", element("4282", "webm"));
    const QByteArray track = element("d7", "\1") + element("73c5", "\1") + element("83", "\2") +
                             element("86", "A_OPUS") + element("63a2", {}, hugeSize);
    return head + QByteArray::fromHex("1853806701ffffffffffffff") +
           element("1654ae6b", element("ae", track, hugeSize), hugeSize);
}

QByteArray webmLongBlock()
{
    return QByteArray::fromHex("1f43b67501ffffffffffffff") + element("e7", bigEndian(quint32{0})) +
           element("a3", QByteArray("\x81\0\0\x80", 4), hugeSize);
}

QByteArray tsVideoPackets(qint64 number)
{
    constexpr int packetsEach = 20;
    QByteArray packets =
        packet(0, number, section(QByteArray::fromHex("00b00d0001c300000001e100")), true, true) +
        packet(mapPid, number, section(QByteArray::fromHex("02b0170001c30000e101f00002e101f0001be102f000")),
               true, true);
    for (const int pid : {mpegPid, h264Pid}) {
        for (int i = 0; i < packetsEach; ++i) {
            packets +=
                packet(pid, number * packetsEach + i, i == 0 ? pictures(pid) : QByteArray(), i == 0, false);
        }
    }
    return packets;
}

} // namespace localradio
