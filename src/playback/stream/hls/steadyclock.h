#pragma once

#include <QtGlobal>
#include <optional>

/// Finds by how much the times of a stream's sound have to be shifted where they jump, so that they go on: a
/// player takes sound that comes from the past for sound that it has had, and waits with sound from the
/// future. Times are in ticks.
class SteadyClock
{
public:
    /// By how much what belongs at `time` is to be shifted, where a second has `rate` ticks. After a jump it
    /// stands `step` behind what was passed last.
    qint64 shiftFor(qint64 time, qint64 rate, qint64 step);
    /// Up to where the sound goes that has been passed, as shifted.
    void pass(qint64 time);

private:
    qint64 shift_ = 0;
    std::optional<qint64> passed_;
};
