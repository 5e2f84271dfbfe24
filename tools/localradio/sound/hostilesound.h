#pragma once

#include "localradio/sound/audiosource.h"

#include <QByteArray>
#include <QLatin1StringView>

#include <array>
#include <functional>
#include <memory>

namespace localradio {

/// Sound made to hurt whoever takes it apart.
struct HostileSound
{
    using Play = std::function<std::unique_ptr<AudioSource>()>;

    QLatin1StringView name;
    QByteArray mediaType;
    double expansion; ///< how much longer it is than the sound that it carries

    /// It, without end. `play` makes the sound that it stands in for, and `amid` says whether that has been
    /// heard before.
    std::unique_ptr<AudioSource> (*make)(const Play &play, bool amid);

    /// All of them.
    static const std::array<HostileSound, 6> &all();
};

} // namespace localradio
