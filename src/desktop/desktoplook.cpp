#include "desktop/desktoplook.h"

#include "mainwindow/mainwindow.h"
#include "settings/statefile.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace {
constexpr QLatin1StringView schemeKey("window/desktopColourScheme");

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

/// The portal's Read() wraps a value twice.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}
} // namespace

DesktopLook::DesktopLook(QApplication &application, StateFile &state, QObject *parent)
    : QObject(parent)
    , application_(application)
    , state_(state)
    , appearance_(MainWindow::appearance(state))
    , desktopPaletteIsDark_(::isDark(QApplication::palette()))
{
    apply();
}

void DesktopLook::setAppearance(Appearance appearance)
{
    appearance_ = appearance;
    apply();
}

bool DesktopLook::isDark(Appearance appearance, int scheme, bool desktopPaletteIsDark)
{
    switch (appearance) {
    case Appearance::Light:
        return false;
    case Appearance::Dark:
        return true;
    case Appearance::Desktop:
        break;
    }
    return scheme == PreferDark || (scheme != PreferLight && desktopPaletteIsDark);
}

void DesktopLook::apply()
{
    const int scheme = state_.integer(schemeKey, NoPreference);
    const bool dark = isDark(appearance_, scheme, desktopPaletteIsDark_);
    applyLook(application_, dark ? Palette::Dark : Palette::Light);
}

void DesktopLook::watchDesktop(QDBusConnection bus)
{
    if (!bus.isConnected()) {
        setScheme(NoPreference);
        return;
    }
    // By name, because QtDBus has no other way; from any sender, because QtDBus drops the signals of a sender
    // whose name it has only just looked up.
    bus.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
    question.setArguments({appearanceGroup, colorScheme});
    auto *reply = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        const QDBusPendingReply<QDBusVariant> answer = *reply;
        // An error resets what another desktop has answered before.
        setScheme(answer.isError() ? NoPreference : answer.value().variant());
        reply->deleteLater();
    });
}

void DesktopLook::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group == appearanceGroup && key == colorScheme) {
        setScheme(value.variant());
    }
}

void DesktopLook::setScheme(const QVariant &scheme)
{
    const int told = unwrapped(scheme).toInt();
    if (told != state_.integer(schemeKey, NoPreference)) {
        state_.setValue(schemeKey, told);
        apply();
    }
}
