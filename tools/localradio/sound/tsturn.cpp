#include "localradio/sound/kinds.h"
#include "localradio/sound/turn.h"

#include <algorithm>
#include <map>
#include <optional>

namespace localradio {

namespace {

// Of ISO/IEC 13818-1.
constexpr qsizetype tsPacketSize = 188;
constexpr qint64 clockRate = 90000;
constexpr qint64 clockModulus = qint64{1} << 33;
constexpr qint64 unitTicks = clockRate * kindUnitSamples / kindSampleRate;
constexpr qint64 turnTicks = kindUnits * unitTicks;
constexpr qsizetype pesTimesAt = 9; // of a PES packet with times

unsigned char byteAt(const QByteArray &bytes, qsizetype at)
{
    return static_cast<unsigned char>(bytes[at]);
}

int pidOf(const QByteArray &packet)
{
    return ((byteAt(packet, 1) & 0x1f) << 8) | byteAt(packet, 2);
}

bool begins(const QByteArray &packet)
{
    return (byteAt(packet, 1) & 0x40U) != 0;
}

bool hasPayload(const QByteArray &packet)
{
    return (byteAt(packet, 3) & 0x10U) != 0;
}

/// Where the payload begins.
qsizetype payloadAt(const QByteArray &packet)
{
    return (byteAt(packet, 3) & 0x20U) != 0 ? 5 + byteAt(packet, 4) : 4;
}

/// Where the times of the PES packet stand that begins in `packet`, and how many there are: 0 to 2.
std::pair<qsizetype, int> timesOf(const QByteArray &packet)
{
    const qsizetype pes = payloadAt(packet);
    if (!hasPayload(packet) || !begins(packet) || pes + pesTimesAt + 10 > packet.size() ||
        QByteArrayView(packet).sliced(pes, 3) != QByteArrayView("\0\0\1", 3)) {
        return {0, 0};
    }
    const int flags = byteAt(packet, pes + 7) >> 6;
    return {pes + pesTimesAt, flags == 3 ? 2 : flags == 2 ? 1 : 0};
}

qint64 timeAt(const QByteArray &packet, qsizetype at)
{
    const auto part = [&](qsizetype i) { return static_cast<qint64>(byteAt(packet, at + i)); };
    return ((part(0) >> 1 & 0x07) << 30) | (part(1) << 22) | (part(2) >> 1 << 15) | (part(3) << 7) |
           (part(4) >> 1);
}

void setTimeAt(QByteArray &packet, qsizetype at, qint64 time)
{
    packet[at] = static_cast<char>((byteAt(packet, at) & 0xf1) | (time >> 30 & 0x07) << 1);
    packet[at + 1] = static_cast<char>(time >> 22);
    packet[at + 2] = static_cast<char>((time >> 14 & 0xfe) | 1);
    packet[at + 3] = static_cast<char>(time >> 7);
    packet[at + 4] = static_cast<char>((time << 1 & 0xfe) | 1);
}

void delayClock(QByteArray &packet, qint64 ticks)
{
    if ((byteAt(packet, 3) & 0x20U) == 0 || byteAt(packet, 4) < 7 || (byteAt(packet, 5) & 0x10U) == 0) {
        return;
    }
    qint64 base = 0; // 33 bits, of which the last shares its byte
    for (qsizetype at = 6; at < 10; ++at) {
        base = base << 8 | byteAt(packet, at);
    }
    base = ((base << 1 | byteAt(packet, 10) >> 7) + ticks) % clockModulus;
    for (qsizetype at = 6; at < 10; ++at) {
        packet[at] = static_cast<char>(base >> (25 - 8 * (at - 6)));
    }
    packet[10] = static_cast<char>((byteAt(packet, 10) & 0x7f) | (base & 1) << 7);
}

void count(QByteArray &packet, qint64 counter)
{
    packet[3] = static_cast<char>((byteAt(packet, 3) & 0xf0) | (counter & 0x0f));
}

/// The first packet of a program's tables, and the PIDs that they name.
struct Tables
{
    QByteArray association;
    QByteArray map;
    int mapPid = -1;
    int clockPid = -1;

    void read(const QByteArray &packet)
    {
        const qsizetype table = payloadAt(packet) + 1; // after the pointer
        if (pidOf(packet) == 0 && association.isEmpty()) {
            association = packet;
            mapPid = ((byteAt(packet, table + 10) & 0x1f) << 8) | byteAt(packet, table + 11);
        } else if (pidOf(packet) == mapPid && map.isEmpty()) {
            map = packet;
            clockPid = ((byteAt(packet, table + 8) & 0x1f) << 8) | byteAt(packet, table + 9);
        }
    }
    bool contain(int pid) const { return pid <= 0x1f || pid == mapPid; }
};

} // namespace

Turn Turn::ofTransportStream(const QByteArray &file)
{
    Tables tables;
    Turn turn;
    std::map<int, int> packetCounts;
    std::optional<qint64> start;
    for (qsizetype at = 0; at + tsPacketSize <= file.size(); at += tsPacketSize) {
        const QByteArray packet = file.mid(at, tsPacketSize);
        tables.read(packet);
        const int pid = pidOf(packet);
        if (tables.contain(pid)) {
            continue;
        }
        if (const auto [times, count] = timesOf(packet); pid == tables.clockPid && count > 0) {
            const qint64 time = timeAt(packet, times);
            start = start.value_or(time);
            if (time - *start >= static_cast<qint64>(turn.units.size()) * unitTicks &&
                turn.units.size() < kindUnits) {
                turn.units.emplace_back();
            }
        }
        if (turn.units.empty()) {
            turn.units.emplace_back();
            start = start.value_or(0);
        }
        turn.units.back() += packet;
        packetCounts[pid] += hasPayload(packet) ? 1 : 0;
    }
    turn.stamp = [tables, packetCounts](const QByteArray &unit, qint64 number, qint64 turns) {
        const qint64 delay = turns * turnTicks;
        QByteArray stamped;
        for (QByteArray table : {tables.association, tables.map}) {
            count(table, number);
            stamped += table;
        }
        for (qsizetype at = 0; at < unit.size(); at += tsPacketSize) {
            QByteArray packet = unit.mid(at, tsPacketSize);
            count(packet, byteAt(packet, 3) + turns * packetCounts.at(pidOf(packet)));
            delayClock(packet, delay);
            auto [times, timeCount] = timesOf(packet);
            for (; timeCount > 0; --timeCount, times += 5) {
                setTimeAt(packet, times, (timeAt(packet, times) + delay) % clockModulus);
            }
            stamped += packet;
        }
        return stamped;
    };
    return turn;
}

} // namespace localradio
