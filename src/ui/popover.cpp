#include "ui/popover.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QShortcut>
#include <algorithm>

namespace {
constexpr int arrowHeight = 8;
constexpr int arrowHalfWidth = 8;
constexpr int cornerRadius = 8;
/// Room around the card for its arrow and its shadow.
constexpr int rim = 8;
/// Between the content and the card's edge.
constexpr int padding = 16;
constexpr int windowMargin = 8;
constexpr int shadowSteps = 6;
constexpr int shadowAlpha = 7;
constexpr QRgb borderColour = 0x30808080;
} // namespace

Popover::Popover(QWidget *window)
    : QWidget(window)
{
    hide();
    setContentsMargins(rim + padding, rim + padding, rim + padding, rim + padding);
    setFocusPolicy(Qt::ClickFocus);
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
    window->installEventFilter(this);
}

void Popover::showRelativeTo(const QRect &rectangle, QWidget *view)
{
    rectangle_ = rectangle;
    view_ = view;
    focusBefore_ = QApplication::focusWidget();
    ensurePolished();
    adjustSize();
    place();
    show();
    raise();
    setFocus(Qt::PopupFocusReason);
}

void Popover::place()
{
    const QRect anchor(view_->mapTo(parentWidget(), rectangle_.topLeft()), rectangle_.size());
    const QRect room =
        parentWidget()->rect().adjusted(windowMargin, windowMargin, -windowMargin, -windowMargin);
    below_ = anchor.bottom() + height() <= room.bottom() || anchor.top() - height() < room.top();
    QRect card(QPoint(), size());
    card.moveCenter(anchor.center());
    card.moveLeft(std::clamp(card.left(), room.left(), std::max(room.left(), room.right() - card.width())));
    if (below_) {
        card.moveTop(std::max(anchor.bottom(), room.top()));
    } else {
        card.moveBottom(anchor.top());
    }
    arrowX_ = std::clamp(anchor.center().x() - card.left(), rim + cornerRadius + arrowHalfWidth,
                         card.width() - rim - cornerRadius - arrowHalfWidth);
    move(card.topLeft());
    update();
}

bool Popover::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && isShown() && view_) {
        // The layout has moved the control by the time that this is delivered.
        QMetaObject::invokeMethod(this, &Popover::place, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

void Popover::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF card = QRectF(rect()).adjusted(rim, rim, -rim, -rim);
    for (int step = shadowSteps; step > 0; --step) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, shadowAlpha));
        painter.drawRoundedRect(card.adjusted(-step, -step + 2, step, step + 2), cornerRadius + step,
                                cornerRadius + step);
    }
    QPainterPath outline;
    outline.addRoundedRect(card, cornerRadius, cornerRadius);
    const qreal base = below_ ? card.top() : card.bottom();
    const qreal tip = below_ ? base - arrowHeight : base + arrowHeight;
    QPainterPath arrow(QPointF(arrowX_ - arrowHalfWidth, base));
    arrow.lineTo(arrowX_, tip);
    arrow.lineTo(arrowX_ + arrowHalfWidth, base);
    arrow.closeSubpath();
    painter.setPen(QColor::fromRgba(borderColour));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawPath(outline.united(arrow));
}

void Popover::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    if (focusBefore_ &&
        (QApplication::focusWidget() == nullptr || isAncestorOf(QApplication::focusWidget()))) {
        focusBefore_->setFocus();
    }
}
