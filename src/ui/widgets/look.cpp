#include "ui/widgets/look.h"

#include "ui/widgets/svgicon.h"

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QProxyStyle>

namespace {
constexpr int darkBelowLightness = 128;

struct Colours
{
    QRgb window;
    QRgb base;
    QRgb alternateBase;
    QRgb button;
    QRgb ink;
    QRgb disabledInk;
    QRgb secondaryInk;
    /// The one accent: what is selected, and what plays.
    QRgb accent;
    QRgb accentInk;
};

constexpr Colours light{0xfff3f1f4, 0xffffffff, 0xfff9f8fa, 0xfff3f1f4, 0xff26222a,
                        0xffa5a0aa, 0xff85808b, 0xff7b3f88, 0xffffffff};
constexpr Colours dark{0xff26242a, 0xff1d1b20, 0xff222026, 0xff2f2c34, 0xffece9ef,
                       0xff7c7782, 0xff9a95a0, 0xffb07cc0, 0xff1d1b20};

QPalette paletteOf(const Colours &colours)
{
    QPalette palette(QColor(colours.window), QColor(colours.window));
    palette.setColor(QPalette::Base, QColor(colours.base));
    palette.setColor(QPalette::AlternateBase, QColor(colours.alternateBase));
    palette.setColor(QPalette::Button, QColor(colours.button));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, QColor(colours.ink));
        palette.setColor(QPalette::Disabled, role, QColor(colours.disabledInk));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(colours.secondaryInk));
    palette.setColor(QPalette::Highlight, QColor(colours.accent));
    palette.setColor(QPalette::HighlightedText, QColor(colours.accentInk));
    return palette;
}

/// Every menu bar asks its style for the icon of the menus that do not fit. For Fusion's own picture Qt loads
/// the plugins of all image formats: a tenth of the time to the first frame.
class LookStyle : public QProxyStyle
{
public:
    LookStyle()
        : QProxyStyle(QStringLiteral("Fusion"))
    {
    }

    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption *option,
                       const QWidget *widget) const override
    {
        return pixmap == SP_ToolBarHorizontalExtensionButton
                   ? svgIcon(QStringLiteral("more"), QColor(light.secondaryInk))
                   : QProxyStyle::standardIcon(pixmap, option, widget);
    }
};
} // namespace

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < darkBelowLightness;
}

void applyLook(QApplication &application, Palette palette)
{
    // The resources are in a static library, whose initialisers the linker drops.
    Q_INIT_RESOURCE(plumtide);
    QApplication::setStyle(new LookStyle);
    QApplication::setPalette(paletteOf(palette == Palette::Dark ? dark : light));
    QFile sheet(QStringLiteral(":/look.qss"));
    if (sheet.open(QIODevice::ReadOnly)) {
        application.setStyleSheet(QString::fromUtf8(sheet.readAll()));
    }
}
