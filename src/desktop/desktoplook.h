#pragma once

#include "ui/widgets/look.h"

#include <QObject>

class QApplication;
class QDBusConnection;
class QDBusVariant;
class StateFile;

/// Dresses the program light or dark: as the user has chosen, or else as his desktop is, also when that
/// changes while the program runs. What the desktop has told is kept for the next start, so that the window
/// does not change its colours after it has come.
class DesktopLook : public QObject
{
    Q_OBJECT

public:
    /// What a desktop answers when it is asked whether the user wants light or dark; numbered as in the
    /// XDG desktop portal's "org.freedesktop.appearance" "color-scheme".
    enum ColorScheme { NoPreference = 0, PreferDark = 1, PreferLight = 2 };

    /// Dresses the program at once. Both must outlive this object.
    DesktopLook(QApplication &application, StateFile &state, QObject *parent = nullptr);

    /// Takes the user's choice and dresses the program anew.
    void setAppearance(Appearance appearance);
    /// Asks the desktop on its session bus, without waiting for it, and listens for changes. Where the bus is
    /// not connected or has no portal, the desktop's palette goes on to decide.
    void watchDesktop(QDBusConnection bus);

    /// Whether the window is to be dark. `scheme` that is none of ColorScheme counts as no preference.
    static bool isDark(Appearance appearance, int scheme, bool desktopPaletteIsDark);

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void dress();
    void take(const QVariant &scheme);

    QApplication &application_;
    StateFile &state_;
    Appearance appearance_;
    bool desktopPaletteIsDark_;
};
