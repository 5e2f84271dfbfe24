#include "mainwindow/soundbinding.h"

#include "playback/backend.h"
#include "ui/panels/audiopopover.h"

#include <QAction>
#include <QWheelEvent>
#include <array>
#include <utility>

namespace {
constexpr int volumeStep = 5;

constexpr std::array<std::pair<QLatin1StringView, int SoundSettings::*>, 4> storedNumbers{
    {{QLatin1StringView("sound/volume"), &SoundSettings::volume},
     {QLatin1StringView("sound/bass"), &SoundSettings::bass},
     {QLatin1StringView("sound/middle"), &SoundSettings::middle},
     {QLatin1StringView("sound/treble"), &SoundSettings::treble}}};
constexpr QLatin1StringView storedMute("sound/muted");
} // namespace

SoundBinding::SoundBinding(AudioPopover &popover, Backend &backend, StateFile &state)
    : popover_(popover)
    , state_(state)
{
    popover_.setSettings(stored());
    backend.setSound(popover_.settings());
    connect(&popover_, &AudioPopover::settingsChanged, this, &SoundBinding::store);
    connect(&popover_, &AudioPopover::settingsChanged, this,
            [&backend](const SoundSettings &settings) { backend.setSound(settings); });
}

void SoundBinding::bindCommands(QAction *louder, QAction *softer, QAction *mute)
{
    connect(louder, &QAction::triggered, this, [this] { changeVolume(1); });
    connect(softer, &QAction::triggered, this, [this] { changeVolume(-1); });
    mute->setChecked(popover_.settings().muted);
    connect(mute, &QAction::toggled, this, [this](bool muted) {
        SoundSettings settings = popover_.settings();
        settings.muted = muted;
        popover_.setSettings(settings);
    });
    connect(&popover_, &AudioPopover::settingsChanged, mute,
            [mute](const SoundSettings &settings) { mute->setChecked(settings.muted); });
}

void SoundBinding::bindWheel(QWidget *widget)
{
    widget->installEventFilter(this);
}

bool SoundBinding::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Wheel) {
        return QObject::eventFilter(watched, event);
    }
    wheelRest_ += static_cast<QWheelEvent *>(event)->angleDelta().y();
    changeVolume(wheelRest_ / QWheelEvent::DefaultDeltasPerStep);
    wheelRest_ %= QWheelEvent::DefaultDeltasPerStep;
    return true;
}

SoundSettings SoundBinding::stored() const
{
    SoundSettings settings;
    for (const auto &[key, number] : storedNumbers) {
        settings.*number = state_.integer(key, settings.*number);
    }
    settings.muted = state_.integer(storedMute, 0) != 0;
    return settings.bounded();
}

void SoundBinding::store(const SoundSettings &settings)
{
    for (const auto &[key, number] : storedNumbers) {
        state_.setValue(key, settings.*number);
    }
    state_.setValue(storedMute, settings.muted ? 1 : 0);
}

void SoundBinding::changeVolume(int steps)
{
    if (steps != 0) {
        SoundSettings settings = popover_.settings();
        settings.volume += steps * volumeStep;
        settings.muted = false;
        popover_.setSettings(settings.bounded());
    }
}
