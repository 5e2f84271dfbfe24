#include "ui/panels/audiopopover.h"

#include "ui/widgets/levelslider.h"
#include "ui_audiopopover.h"

#include <cstdlib>

namespace {
constexpr QChar minus(0x2212);

/// A plain label keeps its width while the number in it changes.
void reserve(QLabel *label, const QString &widest)
{
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(widest));
}
} // namespace

AudioPopover::AudioPopover(QWidget *window)
    : Popover(window)
{
    setObjectName(QStringLiteral("audioPopOver"));
}

AudioPopover::~AudioPopover() = default;

void AudioPopover::makeContent()
{
    ui_ = std::make_unique<Ui::AudioPopover>();
    ui_->setupUi(this);
    setFocusProxy(ui_->volumeSlider);
    connect(ui_->volumeSlider, &LevelSlider::valueChanged, this, [this](int volume) {
        SoundSettings settings = settings_;
        settings.volume = volume;
        // Moving the volume unmutes.
        settings.muted = false;
        setSettings(settings);
    });
    connect(ui_->muteButton, &QPushButton::toggled, this, [this](bool muted) {
        SoundSettings settings = settings_;
        settings.muted = muted;
        setSettings(settings);
    });
    bindBand(ui_->bassSlider, &SoundSettings::bass);
    bindBand(ui_->middleSlider, &SoundSettings::middle);
    bindBand(ui_->trebleSlider, &SoundSettings::treble);
    connect(ui_->flatButton, &QPushButton::clicked, this,
            [this] { setSettings({.volume = settings_.volume, .muted = settings_.muted}); });
    showSettings();
}

void AudioPopover::setSettings(const SoundSettings &settings)
{
    if (settings_ != settings) {
        settings_ = settings;
        showSettings();
        Q_EMIT settingsChanged(settings_);
    }
}

void AudioPopover::bindBand(LevelSlider *slider, int SoundSettings::*setting)
{
    connect(slider, &LevelSlider::valueChanged, this, [this, setting](int gain) {
        SoundSettings settings = settings_;
        settings.*setting = gain;
        setSettings(settings);
    });
}

void AudioPopover::showSettings()
{
    if (!ui_) {
        return;
    }
    const QSignalBlocker quietVolume(ui_->volumeSlider);
    ui_->muteButton->setChecked(settings_.muted);
    ui_->volumeSlider->setValue(settings_.volume);
    ui_->volumeValue->setText(tr("%1 %").arg(settings_.volume));
    reserve(ui_->volumeValue, tr("%1 %").arg(SoundSettings::loudest));

    const auto showBand = [](LevelSlider *slider, QLabel *label, int gain) {
        slider->setValue(gain);
        const auto text = [](int decibels) {
            const QString sign = decibels > 0   ? QStringLiteral("+")
                                 : decibels < 0 ? QString(minus)
                                                : QString();
            return sign + tr("%1 dB").arg(std::abs(decibels));
        };
        label->setText(text(gain));
        reserve(label, text(SoundSettings::furthestTone));
    };
    showBand(ui_->bassSlider, ui_->bassValue, settings_.bass);
    showBand(ui_->middleSlider, ui_->middleValue, settings_.middle);
    showBand(ui_->trebleSlider, ui_->trebleValue, settings_.treble);
    ui_->flatButton->setEnabled(settings_.bass != 0 || settings_.middle != 0 || settings_.treble != 0);
}
