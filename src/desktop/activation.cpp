#include "desktop/activation.h"

#include "desktop/xdesktop.h"

#include <QGuiApplication>
#include <QWidget>
#include <algorithm>

namespace {
const QString startupIdKey = QStringLiteral("desktop-startup-id");
const QString tokenKey = QStringLiteral("activation-token");
constexpr const char *startupIdVariable = "DESKTOP_STARTUP_ID";
constexpr const char *tokenVariable = "XDG_ACTIVATION_TOKEN";

/// Empty where `value` cannot be a startup identifier or token.
QByteArray identifier(const QVariant &value)
{
    constexpr qsizetype longest = 512;
    const QByteArray text = value.toString().toUtf8();
    const auto isControl = [](char character) { return static_cast<unsigned char>(character) < ' '; };
    return text.size() > longest || std::any_of(text.begin(), text.end(), isControl) ? QByteArray() : text;
}
} // namespace

Activation Activation::fromEnvironment()
{
    return {identifier(qEnvironmentVariable(startupIdVariable)),
            identifier(qEnvironmentVariable(tokenVariable))};
}

Activation Activation::fromPlatformData(const QVariantMap &data)
{
    return {identifier(data.value(startupIdKey)), identifier(data.value(tokenKey))};
}

QVariantMap Activation::platformData() const
{
    QVariantMap data;
    if (!startupId.isEmpty()) {
        data.insert(startupIdKey, QString::fromUtf8(startupId));
    }
    if (!token.isEmpty()) {
        data.insert(tokenKey, QString::fromUtf8(token));
    }
    return data;
}

std::uint32_t Activation::startupTime() const
{
    const QByteArrayView mark("_TIME");
    const qsizetype at = startupId.lastIndexOf(mark);
    return at < 0 ? 0 : startupId.mid(at + mark.size()).toUInt();
}

void bringToFront(QWidget &window, const Activation &activation)
{
    if (!window.isVisible()) {
        // Set once more, or the window manager would choose a new position for it.
        window.move(window.pos());
    }
    XDesktop *x = XDesktop::instance();
    if (x != nullptr) {
        x->announce(window.winId(), activation);
    } else if (!activation.token.isEmpty() &&
               QGuiApplication::platformName().startsWith(QLatin1StringView("wayland"))) {
        // Qt reads it from there, and removes it again.
        qputenv(tokenVariable, activation.token);
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    if (x != nullptr) {
        x->activate(window.winId(), activation);
    }
}
