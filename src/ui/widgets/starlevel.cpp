#include "ui/widgets/starlevel.h"

#include <QHideEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVariant>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {
constexpr int smallPitch = 12;
constexpr int largePitch = 24;
constexpr qreal starShare = 0.46;
constexpr qreal innerShare = 0.45;
constexpr float unsetOpacity = 0.16F;
constexpr float starFocusOpacity = 0.30F;
constexpr QRgb gold = 0xffdf9b2c;

QPainterPath starAt(const QPointF &centre, qreal radius)
{
    constexpr int corners = 10;
    constexpr qreal step = 2 * std::numbers::pi / corners;
    QPainterPath star;
    for (int corner = 0; corner < corners; ++corner) {
        const qreal angle = corner * step - std::numbers::pi / 2;
        const qreal reach = corner % 2 == 0 ? radius : radius * innerShare;
        const QPointF point = centre + reach * QPointF(std::cos(angle), std::sin(angle));
        corner == 0 ? star.moveTo(point) : star.lineTo(point);
    }
    star.closeSubpath();
    return star;
}
} // namespace

int StarLevel::starsOf(const QVariant &value)
{
    const double stars = value.toDouble();
    return stars > 0 ? static_cast<int>(std::min<double>(stars, mostStars)) : 0;
}

void StarLevel::paint(QPainter &painter, const QRectF &place, int stars, const Inks &inks,
                      Qt::LayoutDirection direction)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal pitch = place.width() / mostStars;
    for (int star = 0; star < mostStars; ++star) {
        const int column = direction == Qt::RightToLeft ? mostStars - 1 - star : star;
        const QPointF centre(place.left() + (column + 0.5) * pitch, place.center().y());
        painter.setBrush(star < stars ? inks.set : inks.unset);
        painter.drawPath(starAt(centre, pitch * starShare));
    }
}

StarLevel::StarLevel(QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setRange(0, mostStars);
    setPageStep(1);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setEditable(false);
}

void StarLevel::setEditable(bool editable)
{
    setAttribute(Qt::WA_TransparentForMouseEvents, !editable);
    setFocusPolicy(editable ? Qt::StrongFocus : Qt::NoFocus);
    updateGeometry();
}

void StarLevel::setHighlighted(bool highlighted)
{
    highlighted_ = highlighted;
    update();
}

QSize StarLevel::sizeHint() const
{
    const int pitch = focusPolicy() == Qt::NoFocus ? smallPitch : largePitch;
    return {mostStars * pitch, pitch};
}

void StarLevel::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        const int stars = starsAt(*event);
        setSliderDown(true);
        setValue(stars == 1 && value() == 1 ? 0 : stars);
    }
}

void StarLevel::mouseMoveEvent(QMouseEvent *event)
{
    // A press may move a little; only reaching another star makes it a drag.
    if (isSliderDown() && starsAt(*event) != std::max(1, value())) {
        setValue(starsAt(*event));
    }
}

void StarLevel::mouseReleaseEvent(QMouseEvent *)
{
    setSliderDown(false);
}

/// Scrolling over the stars must not change the rating.
void StarLevel::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

void StarLevel::hideEvent(QHideEvent *event)
{
    setSliderDown(false);
    QSlider::hideEvent(event);
}

void StarLevel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (hasFocus()) {
        QColor ring = palette().color(QPalette::Highlight);
        ring.setAlphaF(starFocusOpacity);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ring);
        painter.drawRoundedRect(rect(), height() / 4.0, height() / 4.0);
    }
    QColor unset = palette().color(QPalette::WindowText);
    unset.setAlphaF(unsetOpacity);
    const QColor set = highlighted_ ? QColor::fromRgba(gold) : palette().color(QPalette::WindowText);
    paint(painter, rect(), value(), {.set = set, .unset = unset}, layoutDirection());
}

int StarLevel::starsAt(const QMouseEvent &event) const
{
    const qreal x = event.position().x();
    const qreal along = layoutDirection() == Qt::RightToLeft ? width() - x : x;
    return std::clamp(static_cast<int>(along * mostStars / width()) + 1, 0, mostStars);
}
