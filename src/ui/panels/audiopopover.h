#pragma once

#include "playback/soundsettings.h"
#include "ui/widgets/popover.h"

#include <memory>

class LevelSlider;
class QLabel;

namespace Ui {
class AudioPopover;
}

/// The listener's volume and tone. Its controls are made when it is first shown.
class AudioPopover : public Popover
{
    Q_OBJECT

public:
    explicit AudioPopover(QWidget *window);
    ~AudioPopover() override;

    const SoundSettings &settings() const { return settings_; }
    /// Shows `settings`, which must be in range, and signals them where they differ.
    void setSettings(const SoundSettings &settings);

Q_SIGNALS:
    void settingsChanged(const SoundSettings &settings);

protected:
    void makeContent() override;

private:
    void bindBand(LevelSlider *slider, int SoundSettings::*setting);
    void showSettings();

    std::unique_ptr<Ui::AudioPopover> ui_;
    SoundSettings settings_;
};
