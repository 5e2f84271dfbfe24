#pragma once

#include "playback/stream/hls/steadyclock.h"

#include <QByteArray>

/// Passes on the packets of an MPEG transport stream (ISO/IEC 13818-1), its sound's times without jumps.
class TransportPackets
{
public:
    static constexpr char syncByte = 0x47;

    /// A segment begins. What has come of a packet that never ended is forgotten.
    void begin();
    /// The packets that are complete with these bytes.
    QByteArray take(const QByteArray &bytes);

private:
    void shift(unsigned char *packet);
    void follow(int stream, quint64 time);

    QByteArray waiting_;
    SteadyClock clock_;
    /// The sound of this segment that the clock follows; negative before there is any.
    int sound_ = -1;
    /// Of the sound: its last time as it was, counted on beyond the largest that there is, and how long after
    /// the one before it was.
    qint64 last_ = 0;
    qint64 step_ = 0;
    bool isRunning_ = false;
    quint64 shift_ = 0;
};
