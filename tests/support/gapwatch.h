#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimerEvent>
#include <algorithm>
#include <utility>

/// How long the event loop of the thread that it lives in was ever held: the longest time that a 1 ms timer
/// has been kept waiting.
class GapWatch : public QObject
{
public:
    GapWatch()
    {
        since_.start();
        startTimer(1, Qt::PreciseTimer);
    }

    /// In milliseconds, since this was called last.
    double longest() { return static_cast<double>(std::exchange(longest_, 0)) / 1e6; }

protected:
    void timerEvent(QTimerEvent *) override
    {
        longest_ = std::max(longest_, since_.nsecsElapsed());
        since_.restart();
    }

private:
    QElapsedTimer since_;
    qint64 longest_ = 0;
};
