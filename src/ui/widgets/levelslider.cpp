#include "ui/widgets/levelslider.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace {
constexpr int handleRadius = 8;
constexpr qreal grooveHeight = 4;
constexpr qreal focusRing = 4;
constexpr float grooveOpacity = 0.18F;
constexpr float focusOpacity = 0.45F;
} // namespace

LevelSlider::LevelSlider(QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

void LevelSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        setSliderDown(true);
        follow(*event);
    }
}

void LevelSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown()) {
        follow(*event);
    }
}

void LevelSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        setSliderDown(false);
    }
}

void LevelSlider::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && minimum() < 0) {
        setValue(0);
    } else {
        mousePressEvent(event);
    }
}

void LevelSlider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal middle = height() / 2.0;
    const auto bar = [middle](qreal from, qreal to) {
        return QRectF(std::min(from, to), middle - grooveHeight / 2, std::abs(to - from), grooveHeight);
    };
    QColor groove = palette().color(QPalette::WindowText);
    groove.setAlphaF(grooveOpacity);
    painter.setBrush(groove);
    painter.drawRoundedRect(bar(positionOf(minimum()), positionOf(maximum())), grooveHeight / 2,
                            grooveHeight / 2);

    const qreal zero = positionOf(std::clamp(0, minimum(), maximum()));
    const qreal handle = positionOf(sliderPosition());
    const QColor accent =
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Highlight);
    painter.setBrush(accent);
    painter.drawRoundedRect(bar(zero, handle), grooveHeight / 2, grooveHeight / 2);
    if (minimum() < 0) {
        painter.drawRoundedRect(QRectF(zero - 1, middle - handleRadius / 2.0, 2, handleRadius), 1, 1);
    }
    if (hasFocus()) {
        QColor ring = accent;
        ring.setAlphaF(focusOpacity);
        painter.setBrush(ring);
        painter.drawEllipse(QPointF(handle, middle), handleRadius + focusRing, handleRadius + focusRing);
        painter.setBrush(accent);
    }
    painter.drawEllipse(QPointF(handle, middle), handleRadius, handleRadius);
}

bool LevelSlider::isMirrored() const
{
    return (layoutDirection() == Qt::RightToLeft) != invertedAppearance();
}

void LevelSlider::follow(const QMouseEvent &event)
{
    const int room = width() - 2 * (handleRadius + static_cast<int>(focusRing));
    const int position = static_cast<int>(event.position().x()) - handleRadius - static_cast<int>(focusRing);
    setSliderPosition(QStyle::sliderValueFromPosition(minimum(), maximum(), position, room, isMirrored()));
}

qreal LevelSlider::positionOf(int value) const
{
    const qreal room = width() - 2 * (handleRadius + focusRing);
    const qreal share = static_cast<qreal>(value - minimum()) / std::max(1, maximum() - minimum());
    return handleRadius + focusRing + room * (isMirrored() ? 1 - share : share);
}
