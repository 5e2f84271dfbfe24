#pragma once

#include <QByteArray>
#include <QVariantMap>
#include <cstdint>

class QWidget;

/// The right of a window to come to the front, given by whatever the user has just clicked. Desktops withhold
/// the front from programs that cannot show it.
struct Activation
{
    /// The identifier of the start on X11; empty where there is none.
    QByteArray startupId;
    /// The token of the start on Wayland; empty where there is none.
    QByteArray token;

    /// What this process has been started with.
    static Activation fromEnvironment();
    /// What another process has been started with, as it came over the session bus. Values of other types,
    /// overlong ones and such with control characters count as none.
    static Activation fromPlatformData(const QVariantMap &data);
    QVariantMap platformData() const;

    /// When the user asked for the start, in milliseconds of the X server's clock; 0 where that is not known.
    std::uint32_t startupTime() const;
};

/// Shows the window, also when it is hidden or minimised, puts it before all others and gives it the
/// keyboard.
void bringToFront(QWidget &window, const Activation &activation);
