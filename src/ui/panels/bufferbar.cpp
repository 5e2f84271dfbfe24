#include "ui/panels/bufferbar.h"

#include <QPainter>
#include <QPainterPath>

namespace {
constexpr qreal thickness = 4;
constexpr float trackOpacity = 0.16F;
} // namespace

BufferBar::BufferBar(QWidget *parent)
    : QProgressBar(parent)
{
    setTextVisible(false);
}

void BufferBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF track(0, (height() - thickness) / 2, width(), thickness);
    QPainterPath rounded;
    rounded.addRoundedRect(track, thickness / 2, thickness / 2);

    QColor ink = palette().color(foregroundRole());
    const qreal filled = width() * static_cast<qreal>(value() - minimum()) / (maximum() - minimum());
    QRectF part = track;
    part.setWidth(filled);
    if (layoutDirection() == Qt::RightToLeft) {
        part.moveRight(track.right());
    }
    painter.setClipRect(part);
    painter.fillPath(rounded, ink);
    ink.setAlphaF(trackOpacity);
    painter.setClipRect(track);
    painter.fillPath(rounded, ink);
}
