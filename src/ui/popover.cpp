#include "ui/popover.h"

#include <QApplication>
#include <QHideEvent>
#include <QMouseEvent>
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
    // There is one for each popover that is open; they share the key.
    connect(escape, &QShortcut::activatedAmbiguously, this, &Popover::closeTopmost);
    window->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &Popover::focusHasMoved);
}

void Popover::showRelativeTo(const QRect &rectangle, QWidget *view, Side preferred)
{
    preferred_ = preferred;
    rectangle_ = rectangle;
    view_ = view;
    focusBefore_ = QApplication::focusWidget();
    if (!hasContent_) {
        hasContent_ = true;
        makeContent();
    }
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
    const bool fitsBelow = anchor.bottom() + height() <= room.bottom();
    const bool fitsAbove = anchor.top() - height() >= room.top();
    below_ = preferred_ == Side::Below ? fitsBelow || !fitsAbove : fitsBelow && !fitsAbove;
    QRect card(QPoint(), size());
    card.moveCenter(anchor.center());
    card.moveLeft(std::clamp(card.left(), room.left(), std::max(room.left(), room.right() - card.width())));
    // One that fits on neither side covers its control rather than leave the window.
    card.moveTop(below_ ? std::min(anchor.bottom(), room.bottom() - card.height())
                        : anchor.top() - card.height());
    card.moveTop(std::max(card.top(), room.top()));
    arrowX_ = std::clamp(anchor.center().x() - card.left(), rim + cornerRadius + arrowHalfWidth,
                         card.width() - rim - cornerRadius - arrowHalfWidth);
    move(card.topLeft());
    update();
}

void Popover::follow(QWidget *view)
{
    if (isShown() && view != nullptr) {
        view_ = view;
        place();
    }
}

void Popover::leave(QWidget *instead)
{
    view_ = nullptr;
    focusBefore_ = instead;
}

void Popover::closeTopmost()
{
    const auto popovers = parentWidget()->findChildren<Popover *>(QString(), Qt::FindDirectChildrenOnly);
    const auto topmost = std::find_if(popovers.crbegin(), popovers.crend(),
                                      [](const Popover *popover) { return popover->isShown(); });
    if (topmost != popovers.crend()) {
        (*topmost)->close();
    }
}

bool Popover::isElsewhere(const QPoint &position) const
{
    if (rect().contains(mapFromGlobal(position))) {
        return false;
    }
    return !view_ || !rectangle_.contains(view_->mapFromGlobal(position));
}

/// Another application or a dialog takes the focus away, or is no part of this window.
void Popover::focusHasMoved(QWidget *, QWidget *now)
{
    if (behaviour_ == Behaviour::SemiTransient && isShown() && now != nullptr && now != this &&
        now->window() == window() && !isAncestorOf(now) && now != view_) {
        close();
    }
}

bool Popover::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        // What counts is the place: a press that no control inside wants comes by here again on its way to
        // the window.
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (behaviour_ == Behaviour::SemiTransient && isShown() && widget != nullptr &&
            widget->window() == window() &&
            isElsewhere(static_cast<QMouseEvent *>(event)->globalPosition().toPoint())) {
            close();
        }
        return false;
    }
    if (event->type() == QEvent::Resize && isShown() && view_) {
        // The layout has moved the control by the time that this is delivered.
        QMetaObject::invokeMethod(
            this, [this] { follow(view_); }, Qt::QueuedConnection);
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

void Popover::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (behaviour_ == Behaviour::SemiTransient) {
        qApp->installEventFilter(this);
    }
}

void Popover::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    // The window has only been minimised: it comes back as it was.
    if (event->spontaneous()) {
        return;
    }
    qApp->removeEventFilter(this);
    if (focusBefore_ &&
        (QApplication::focusWidget() == nullptr || isAncestorOf(QApplication::focusWidget()))) {
        focusBefore_->setFocus();
    }
}
