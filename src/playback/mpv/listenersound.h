#pragma once

#include "playback/soundsettings.h"

#include <QObject>

/// What the listener has set, shared by all cores. Main thread.
class ListenerSound : public QObject
{
    Q_OBJECT

public:
    const SoundSettings &settings() const { return settings_; }
    /// Values out of range are brought into it; signals a real change only.
    void setSettings(const SoundSettings &settings);

Q_SIGNALS:
    void changed();

private:
    SoundSettings settings_;
};
