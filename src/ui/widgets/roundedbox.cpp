#include "ui/widgets/roundedbox.h"

#include <QPainter>

namespace {
/// Visible on a light window; on a dark one the background alone frames the box.
constexpr QColor boxLine(0, 0, 0, 24);
} // namespace

RoundedBox::RoundedBox(QWidget *parent)
    : QWidget(parent)
{
}

void RoundedBox::setCornerRadius(qreal radius)
{
    cornerRadius_ = radius;
    update();
}

void RoundedBox::setBackgroundColor(const QColor &colour)
{
    backgroundColor_ = colour;
    update();
}

void RoundedBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(boxLine);
    painter.setBrush(backgroundColor_);
    // Half a pixel inwards, so that the line covers whole pixels.
    constexpr qreal half = 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), cornerRadius_, cornerRadius_);
}
