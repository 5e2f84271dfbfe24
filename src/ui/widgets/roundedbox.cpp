#include "ui/widgets/roundedbox.h"

#include <QPainter>

namespace {
/// Seen on a light window, and lost on a dark one, where the ground is frame enough.
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
    // Half a pixel in, so that the line covers whole ones.
    constexpr qreal half = 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), cornerRadius_, cornerRadius_);
}
