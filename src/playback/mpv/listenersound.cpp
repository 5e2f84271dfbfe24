#include "playback/mpv/listenersound.h"

void ListenerSound::setSettings(const SoundSettings &settings)
{
    if (settings_ != settings.bounded()) {
        settings_ = settings.bounded();
        Q_EMIT changed();
    }
}
