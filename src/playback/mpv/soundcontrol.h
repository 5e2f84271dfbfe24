#pragma once

#include "playback/soundsettings.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>
#include <array>

class ListenerSound;
class MpvHandle;

/// Brings the level and the tone of one core to what the listener has set: changes go in ramps that are too
/// fine to click. Main thread.
class SoundControl : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive this object. To be made before anything is loaded.
    SoundControl(MpvHandle &handle, const ListenerSound &sound);

    /// The core has opened the output of that name, and begins to play through it: the level is set at once.
    void outputOpened(const QByteArray &name);
    /// Whether there has been an output, which has the right level then.
    bool isOutputOpen() const { return open_; }
    /// The core has changed its filters or its output's format: both begin again as they were made.
    void restore();

private:
    /// One of libmpv's filters, which is put in when it is first needed: at rest it would cost processor
    /// time.
    struct Band
    {
        const char *label;
        /// The filter's description but for its gain.
        const char *filter;
        int SoundSettings::*setting;
        int gain = 0;
        bool present = false;
    };

    void change();
    void stepLevel();
    void stepTone();
    void setLevel(double amplitude);
    void setGain(Band &band, int gain);
    void sendGain(const Band &band);

    MpvHandle &handle_;
    const ListenerSound &sound_;
    bool open_ = false;
    /// Whether the sound server sets the level, which it does without a delay. Other outputs have the samples
    /// multiplied before they are queued.
    bool atServer_ = false;
    double amplitude_ = 1;
    double amplitudeStep_ = 0;
    std::array<Band, 3> bands_;
    QTimer levelTimer_;
    QTimer toneTimer_;
};
