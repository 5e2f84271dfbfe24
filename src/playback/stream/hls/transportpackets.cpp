#include "playback/stream/hls/transportpackets.h"

#include <QByteArrayView>
#include <utility>

namespace {
constexpr qsizetype packetBytes = 188;
constexpr int packetHeadBytes = 4;
/// A time has 33 bits and counts 90 kHz (2.4.3.7).
constexpr qint64 ticksPerSecond = 90'000;
constexpr unsigned timeBits = 33;
constexpr quint64 timeMask = (1ULL << timeBits) - 1;
/// The length of a packetized stream's head up to what its flags announce, and of a time in it.
constexpr int streamHeadBytes = 9;
constexpr int timeBytes = 5;
/// No longer between two times of sound.
constexpr qint64 longestStep = 15 * ticksPerSecond;

quint64 readTime(const unsigned char *bytes)
{
    return (quint64{bytes[0]} >> 1U & 0x07U) << 30U | quint64{bytes[1]} << 22U |
           (quint64{bytes[2]} >> 1U) << 15U | quint64{bytes[3]} << 7U | quint64{bytes[4]} >> 1U;
}

/// The bits between those of the time stay.
void writeTime(unsigned char *bytes, quint64 time)
{
    bytes[0] = static_cast<unsigned char>((bytes[0] & 0xF1U) | (time >> 29U & 0x0EU));
    bytes[1] = static_cast<unsigned char>(time >> 22U);
    bytes[2] = static_cast<unsigned char>((time >> 14U & 0xFEU) | (bytes[2] & 0x01U));
    bytes[3] = static_cast<unsigned char>(time >> 7U);
    bytes[4] = static_cast<unsigned char>((time << 1U & 0xFEU) | (bytes[4] & 0x01U));
}
} // namespace

void TransportPackets::begin()
{
    waiting_.clear();
    sound_ = -1;
}

QByteArray TransportPackets::take(const QByteArray &bytes)
{
    waiting_ += bytes;
    QByteArray packets = std::exchange(waiting_, {});
    const qsizetype complete = packets.size() - packets.size() % packetBytes;
    waiting_ = packets.sliced(complete);
    packets.truncate(complete);
    auto *data = reinterpret_cast<unsigned char *>(packets.data());
    for (qsizetype at = 0; at < complete; at += packetBytes) {
        shift(data + at);
    }
    return packets;
}

/// Times stand in the first packet of what a packetized stream sends as one.
void TransportPackets::shift(unsigned char *packet)
{
    const bool isFirst = (packet[1] & 0x40U) != 0;
    const bool hasPayload = (packet[3] & 0x10U) != 0;
    const bool isScrambled = (packet[3] & 0xC0U) != 0;
    const bool hasAdaptation = (packet[3] & 0x20U) != 0;
    const int start = packetHeadBytes + (hasAdaptation ? 1 + packet[packetHeadBytes] : 0);
    if (packet[0] != static_cast<unsigned char>(syncByte) || !isFirst || !hasPayload || isScrambled ||
        start + streamHeadBytes + 2 * timeBytes > packetBytes) {
        return;
    }
    unsigned char *head = packet + start;
    const bool isStream = head[0] == 0 && head[1] == 0 && head[2] == 1;
    const bool hasTime = (head[7] & 0x80U) != 0;
    if (!isStream || (head[6] & 0xC0U) != 0x80U || !hasTime) {
        return;
    }
    // Sound of MPEG itself; other sound looks like any private stream, and so do tags.
    const bool isMpegSound = (head[3] & 0xE0U) == 0xC0U;
    const int body = start + streamHeadBytes + head[8];
    const bool isTag =
        body + 3 <= packetBytes && packet[body] == 'I' && packet[body + 1] == 'D' && packet[body + 2] == '3';
    unsigned char *time = head + streamHeadBytes;
    if (isMpegSound || (head[3] == 0xBDU && !isTag)) {
        follow(static_cast<int>((packet[1] & 0x1FU) << 8U | packet[2]), readTime(time));
    }
    writeTime(time, (readTime(time) + shift_) & timeMask);
    if ((head[7] & 0x40U) != 0) {
        // The time to decode it at.
        writeTime(time + timeBytes, (readTime(time + timeBytes) + shift_) & timeMask);
    }
}

void TransportPackets::follow(int stream, quint64 time)
{
    if (sound_ < 0) {
        sound_ = stream;
    }
    if (sound_ != stream) {
        return;
    }
    // By the nearest way round.
    constexpr unsigned unused = 64 - timeBits;
    const qint64 step = isRunning_
                            ? static_cast<qint64>((time - static_cast<quint64>(last_)) << unused) >> unused
                            : static_cast<qint64>(time);
    last_ += step;
    const qint64 shift = clock_.shiftFor(last_, ticksPerSecond, step_);
    const bool isJump = static_cast<quint64>(shift) != std::exchange(shift_, static_cast<quint64>(shift));
    if (isRunning_ && !isJump && step > 0 && step < longestStep) {
        step_ = step;
    }
    isRunning_ = true;
    clock_.pass(last_ + shift);
}
