#pragma once

#include "playback/mpv/cachestate.h"
#include "playback/mpv/mpvconditions.h"

#include <QObject>
#include <QTimer>
#include <optional>

/// Watches the buffer of one core for what an item reports of it. Main thread.
///
/// Each signal is the last thing that the function or the timer behind it does, so that a slot may delete
/// this object.
class BufferWatch : public QObject
{
    Q_OBJECT

public:
    /// What happens to the sound in the buffer.
    enum class Use {
        None,    ///< the stream has not been heard yet
        Played,  ///< it is taken out as it is heard
        Pausing, ///< a pause has been asked for, and the core still takes from it
        Kept,    ///< the core rests
    };

    explicit BufferWatch(const MpvConditions &conditions);

    void setUse(Use use);
    void update(const CacheState &state);
    /// As the latest state says.
    bool loadingRests() const { return state_.loadingRests; }

Q_SIGNALS:
    /// The ranges are others than those that were told last; only while the buffer is played. Those that come
    /// during a pause wait for its end, so that what the user was told about the pause stays readable.
    void rangesChanged(const QVariantList &ranges);
    /// The buffer holds what a pause may load.
    void filledUp();
    /// Everything that was loaded has been heard, and too little more has come.
    void ranDry();

private:
    void watchUnderrun();
    void queuedSoundPlayed();
    void offerRanges();

    const qint64 fullBytes_;
    const bool isPaced_;
    Use use_ = Use::None;
    CacheState state_;
    /// Where the ranges ended when there were some last.
    double end_ = 0;
    /// The end of the ranges that were told last; none before the first time.
    std::optional<double> toldEnd_;
    /// The time that the sound in the output's queue lasts from an underrun on; and where the ranges ended
    /// then.
    QTimer queuedSoundTimer_;
    double underrunEnd_ = 0;
};
