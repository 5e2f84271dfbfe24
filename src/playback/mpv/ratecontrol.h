#pragma once

#include <QObject>
#include <QTimer>

class MpvHandle;
class SoundControl;

/// Lets one core run and pause as its player asks for, and gives it the buffer that goes with either. The
/// core rests in any case until its output is open and has the right level. Main thread.
///
/// The signal is the last thing that a function or the timer behind it does, so that a slot may delete this
/// object.
class RateControl : public QObject
{
    Q_OBJECT

public:
    enum class Rate {
        Running,
        Pausing, ///< a pause has been asked for, and waits for loading to go on
        Paused,
    };

    /// Begins with a core that is to run. `pausedBufferBytes` is what a pause may load. Both objects must
    /// outlive this one.
    RateControl(MpvHandle &handle, const SoundControl &sound, qint64 pausedBufferBytes);

    Rate rate() const { return rate_; }

    /// Loading that rests goes on, up to the new limit, only once something has been taken out of the buffer:
    /// a pause waits for that where `loadingRests`, for half a second at most.
    void setRunning(bool running, bool loadingRests);
    /// Loading no longer rests.
    void loadingGoesOn();
    /// The core has opened an output, whose level is set.
    void outputOpened();

Q_SIGNALS:
    void changed();

private:
    void apply(Rate rate);

    MpvHandle &handle_;
    const SoundControl &sound_;
    const qint64 pausedBufferBytes_;
    Rate rate_ = Rate::Running;
    QTimer pauseDelay_;
};
