#pragma once

#include "playback/stream/hls/steadyclock.h"

#include <QByteArray>
#include <QByteArrayView>

/// Passes on what of a fragmented MP4 file (ISO/IEC 14496-12) is needed to play its sound, the sound's times
/// without jumps: a header once, and fragments. One that is cut short is filled up, because what follows
/// would be taken for its rest.
class MovieFragments
{
public:
    /// Whether a segment begins like this.
    static bool isKindOf(QByteArrayView head);

    /// A segment, or its header, begins.
    void begin();
    /// What is to be passed on of what has come with these bytes.
    QByteArray take(const QByteArray &bytes);

private:
    enum class Use { None, Collect, Pass, Drop };

    bool beginBox();
    void takeHeader(QByteArrayView boxes);
    void shiftFragment(QByteArray &box);
    void shiftTrack(QByteArray &box, qsizetype from, qsizetype length);

    /// What has come and is neither passed on nor dropped.
    QByteArray waiting_;
    QByteArray filling_;
    /// Of the current box, and how much of it is missing.
    Use use_ = Use::None;
    quint64 missing_ = 0;
    bool hasHeader_ = false;
    /// Of the sound.
    quint32 track_ = 0;
    quint32 rate_ = 0;
    quint32 usualDuration_ = 0;
    SteadyClock clock_;
};
