#include "ui/widgets/svgicon.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace {
constexpr float disabledOpacity = 0.4F;

/// Draws one SVG picture at whatever size it is asked for.
class SvgIconEngine : public QIconEngine
{
public:
    explicit SvgIconEngine(const QByteArray &svg)
        : svg_(svg)
        , renderer_(svg)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        painter->setOpacity(mode == QIcon::Disabled ? disabledOpacity : 1.0F);
        renderer_.render(painter, rect);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new SvgIconEngine(svg_); }

private:
    QByteArray svg_;
    QSvgRenderer renderer_;
};

QByteArray pictureSource(const QString &name)
{
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

QIcon svgIcon(const QString &name)
{
    return QIcon(new SvgIconEngine(pictureSource(name)));
}

QIcon svgIcon(const QString &name, const QColor &ink)
{
    return QIcon(new SvgIconEngine(pictureSource(name).replace("currentColor", ink.name().toLatin1())));
}
