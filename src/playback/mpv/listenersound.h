#pragma once

#include "model/soundsettings.h"

#include <QObject>

/// What the listener has set, shared by all cores. Main thread.
class ListenerSound : public QObject
{
    Q_OBJECT

public:
    const SoundSettings &settings() const { return settings_; }
    void setSettings(const SoundSettings &settings);

Q_SIGNALS:
    void changed();

private:
    SoundSettings settings_;
};
