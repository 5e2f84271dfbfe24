#pragma once

#include <QByteArray>
#include <QVariantMap>
#include <cstdint>

class QWidget;

/// The permission of a window to come to the front, which follows from what the user has just clicked.
/// Desktops do not raise the windows of programs that cannot show it.
struct Activation
{
    /// The startup identifier on X11; empty where there is none.
    QByteArray startupId;
    /// The activation token on Wayland; empty where there is none.
    QByteArray token;

    /// What this process has been started with.
    static Activation fromEnvironment();
    /// What another process has been started with, as received over the session bus. Values of other types,
    /// overlong ones and ones with control characters are ignored.
    static Activation fromPlatformData(const QVariantMap &data);
    QVariantMap platformData() const;

    /// When the user asked for the start, in milliseconds of the X server's clock; 0 where that is not known.
    std::uint32_t startupTime() const;
};

/// Shows the window, also when it is hidden or minimised, raises it and gives it the keyboard focus.
void bringToFront(QWidget &window, const Activation &activation);
