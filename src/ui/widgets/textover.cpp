#include "ui/widgets/textover.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <utility>

namespace {
constexpr float ringOpacity = 0.30F;
constexpr qreal ringCorner = 4;
} // namespace

TextOver::TextOver(QWidget *parent)
    : ElidingLabel(parent)
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

bool TextOver::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), toolTip(), this);
        return true;
    }
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space) {
        event->accept();
        return true;
    }
    return ElidingLabel::event(event);
}

void TextOver::mousePressEvent(QMouseEvent *event)
{
    pressed_ = event->button() == Qt::LeftButton;
    event->setAccepted(pressed_);
}

void TextOver::mouseReleaseEvent(QMouseEvent *event)
{
    if (std::exchange(pressed_, false) && rect().contains(event->position().toPoint())) {
        Q_EMIT clicked();
    }
}

void TextOver::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        Q_EMIT clicked();
        break;
    default:
        ElidingLabel::keyPressEvent(event);
    }
}

void TextOver::paintEvent(QPaintEvent *event)
{
    if (hasFocus()) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        QColor ring = palette().color(QPalette::Highlight);
        ring.setAlphaF(ringOpacity);
        painter.setBrush(ring);
        painter.drawRoundedRect(rect(), ringCorner, ringCorner);
    }
    ElidingLabel::paintEvent(event);
}
