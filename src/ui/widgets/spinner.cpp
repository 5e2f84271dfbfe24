#include "ui/widgets/spinner.h"

#include <QPainter>

namespace {
constexpr int stepsPerTurn = 30;
constexpr int stepMilliseconds = 33;
constexpr qreal ringWidth = 2.5;
/// Angles are in sixteenths of a degree, as QPainter counts them.
constexpr int wholeTurn = 360 * 16;
} // namespace

Spinner::Spinner(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(sizeHint());
}

void Spinner::setAnimating(bool animating)
{
    if (animating == isAnimating()) {
        return;
    }
    if (animating) {
        timer_.start(stepMilliseconds, this);
    } else {
        timer_.stop();
    }
    update();
}

void Spinner::paintEvent(QPaintEvent *)
{
    if (!isAnimating()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth);
    QColor track = palette().color(QPalette::WindowText);
    track.setAlphaF(0.12F);
    painter.setPen(QPen(track, ringWidth));
    painter.drawEllipse(ring);
    painter.setPen(QPen(palette().color(QPalette::Highlight), ringWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -step_ * wholeTurn / stepsPerTurn, wholeTurn / 4);
}

void Spinner::timerEvent(QTimerEvent *)
{
    step_ = (step_ + 1) % stepsPerTurn;
    update();
}
