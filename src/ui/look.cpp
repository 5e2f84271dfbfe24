#include "ui/look.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QStyleFactory>

namespace {
constexpr QRgb accent = 0xff7b3f88;
constexpr QRgb darkAccent = 0xffb07cc0;
constexpr int darkBelowLightness = 128;

QPalette lightPalette()
{
    QPalette palette(QColor(0xf3f1f4), QColor(0xf3f1f4));
    palette.setColor(QPalette::Base, QColor(0xffffff));
    palette.setColor(QPalette::AlternateBase, QColor(0xf9f8fa));
    palette.setColor(QPalette::Button, QColor(0xf3f1f4));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, QColor(0x26222a));
        palette.setColor(QPalette::Disabled, role, QColor(0xa5a0aa));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(0x85808b));
    palette.setColor(QPalette::Highlight, QColor(accent));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x26242a), QColor(0x26242a));
    palette.setColor(QPalette::Base, QColor(0x1d1b20));
    palette.setColor(QPalette::AlternateBase, QColor(0x222026));
    palette.setColor(QPalette::Button, QColor(0x2f2c34));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, QColor(0xece9ef));
        palette.setColor(QPalette::Disabled, role, QColor(0x7c7782));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a95a0));
    palette.setColor(QPalette::Highlight, QColor(darkAccent));
    palette.setColor(QPalette::HighlightedText, QColor(0x1d1b20));
    return palette;
}
} // namespace

void applyLook(QApplication &application)
{
    // They lie in a static library, whose initialisers the linker drops.
    Q_INIT_RESOURCE(plumtide);
    const bool dark = QApplication::palette().color(QPalette::Window).lightness() < darkBelowLightness;
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(dark ? darkPalette() : lightPalette());
    QFile sheet(QStringLiteral(":/look.qss"));
    if (sheet.open(QIODevice::ReadOnly)) {
        application.setStyleSheet(QString::fromUtf8(sheet.readAll()));
    }
}
