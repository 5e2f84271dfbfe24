#include "ui/widgets/popover.h"

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
    // Each open popover has one; they share the key.
    connect(escape, &QShortcut::activatedAmbiguously, this, &Popover::closeTopmost);
    window->installEventFilter(this);
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

void Popover::toggleRelativeTo(const QRect &rectangle, QWidget *view, Side preferred)
{
    if (isShown()) {
        close();
    } else {
        showRelativeTo(rectangle, view, preferred);
    }
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
    // A card that fits on neither side covers its control rather than leave the window.
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

bool Popover::isTurningElsewhere(const QWidget &widget, QEvent *event) const
{
    if (widget.window() != window()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        // Decided by position: a press that no control inside accepts arrives again on its way to the window.
        const QPoint position = static_cast<QMouseEvent *>(event)->globalPosition().toPoint();
        return !rect().contains(mapFromGlobal(position)) &&
               !(view_ && rectangle_.contains(view_->mapFromGlobal(position)));
    }
    case QEvent::FocusIn:
        // The window gives the focus back to where it was when the user comes back to it.
        return static_cast<QFocusEvent *>(event)->reason() != Qt::ActiveWindowFocusReason &&
               &widget != this && &widget != view_ && !isAncestorOf(&widget);
    default:
        return false;
    }
}

bool Popover::eventFilter(QObject *watched, QEvent *event)
{
    const auto *widget = qobject_cast<QWidget *>(watched);
    if (behaviour_ == Behaviour::SemiTransient && isShown() && widget != nullptr &&
        isTurningElsewhere(*widget, event)) {
        close();
    }
    if (watched == parentWidget() && event->type() == QEvent::Resize && isShown() && view_) {
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
