#pragma once

#include "ui/widgets/look.h"

#include <QObject>

class QApplication;
class QDBusConnection;
class QDBusVariant;
class StateFile;

/// Makes the program light or dark: as the user has chosen, or else as the desktop is, also when that changes
/// while the program runs. The desktop's answer is stored for the next start, so that the window does not
/// change its colours after it has been shown.
class DesktopLook : public QObject
{
    Q_OBJECT

public:
    /// The user's preference for light or dark, numbered as the XDG desktop portal's setting "color-scheme"
    /// of "org.freedesktop.appearance".
    enum ColorScheme { NoPreference = 0, PreferDark = 1, PreferLight = 2 };

    /// Sets the look at once. Both must outlive this object.
    DesktopLook(QApplication &application, StateFile &state, QObject *parent = nullptr);

    /// Takes the user's choice and sets the look anew.
    void setAppearance(Appearance appearance);
    /// Asks the desktop on its session bus, without waiting for it, and listens for changes. Where the bus is
    /// not connected or has no portal, the desktop's palette decides.
    void watchDesktop(QDBusConnection bus);

    /// Whether the window is to be dark. `scheme` that is none of ColorScheme counts as no preference.
    static bool isDark(Appearance appearance, int scheme, bool desktopPaletteIsDark);

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void apply();
    void setScheme(const QVariant &scheme);

    QApplication &application_;
    StateFile &state_;
    Appearance appearance_;
    bool desktopPaletteIsDark_;
};
