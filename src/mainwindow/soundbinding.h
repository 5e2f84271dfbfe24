#pragma once

#include "settings/statefile.h"

#include <QObject>

class AudioPopover;
class Backend;
class QAction;
class QWidget;
struct SoundSettings;

/// Binds what the listener has set in the audio popover to the backend, which plays by it, and to the state
/// file, which keeps it. A station's record has no part in it.
class SoundBinding : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this object. Sets what the file has kept.
    SoundBinding(AudioPopover &popover, Backend &backend, StateFile &state);

    /// The commands of the menu; `mute` is checkable.
    void bindCommands(QAction *louder, QAction *softer, QAction *mute);
    /// Turning the wheel over `widget` changes the volume.
    void bindWheel(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    SoundSettings stored() const;
    void store(const SoundSettings &settings);
    void changeVolume(int steps);

    AudioPopover &popover_;
    StateFile &state_;
    /// What of the wheel's turning does not make a step yet, in eighths of a degree.
    int wheelRest_ = 0;
};
