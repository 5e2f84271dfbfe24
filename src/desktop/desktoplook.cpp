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
    dress();
}

void DesktopLook::setAppearance(Appearance appearance)
{
    appearance_ = appearance;
    dress();
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

void DesktopLook::dress()
{
    const int scheme = state_.integer(schemeKey, NoPreference);
    const bool dark = isDark(appearance_, scheme, desktopPaletteIsDark_);
    applyLook(application_, dark ? Palette::Dark : Palette::Light);
}

void DesktopLook::watchDesktop(QDBusConnection bus)
{
    if (!bus.isConnected()) {
        take(NoPreference);
        return;
    }
    // By name, because the toolkit has no other way of it; from any sender, because it loses the signals of
    // one whose name it has only just looked up.
    bus.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
    question.setArguments({appearanceGroup, colorScheme});
    auto *reply = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        const QDBusPendingReply<QDBusVariant> answer = *reply;
        // What another desktop has told before is not this one's word.
        take(answer.isError() ? NoPreference : answer.value().variant());
        reply->deleteLater();
    });
}

void DesktopLook::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group == appearanceGroup && key == colorScheme) {
        take(value.variant());
    }
}

void DesktopLook::take(const QVariant &scheme)
{
    const int told = unwrapped(scheme).toInt();
    if (told != state_.integer(schemeKey, NoPreference)) {
        state_.setValue(schemeKey, told);
        dress();
    }
}
