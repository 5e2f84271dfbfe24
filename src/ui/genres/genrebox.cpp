#include "ui/genres/genrebox.h"

#include "base/displaytext.h"
#include "ui/widgets/plaintooltip.h"
#include "ui/widgets/starlevel.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

namespace {
constexpr int leastHeight = 28;
constexpr int leastWidth = 152;
constexpr int innerMargin = 8;
constexpr int starPitch = 10;
constexpr qreal boxCorner = 6;
constexpr qreal boxRingWidth = 2;
constexpr float hoverOpacity = 0.06F;
constexpr float selectedOpacity = 0.14F;
constexpr float starOpacity = 0.45F;
constexpr float selectedStarOpacity = 0.75F;
constexpr float restOpacity = 0.10F;

QColor faded(QColor colour, float opacity)
{
    colour.setAlphaF(opacity);
    return colour;
}
} // namespace

GenreBox::GenreBox(const GenreRecord &genre, QWidget *parent)
    : QWidget(parent)
    , name_(displayText(genre->nameText()))
    , description_(displayText(genre->label().toString()))
    , stars_(StarLevel::starsOf(genre->stars()))
{
    setObjectName(QStringLiteral("GenreBox"));
    if (name_.isEmpty()) {
        name_ = tr("Unnamed genre");
    }
    if (stars_ > 0) {
        const QString rating = tr("%1 of %2 stars").arg(stars_).arg(StarLevel::mostStars);
        description_ = description_.isEmpty() ? rating : tr("%1, %2").arg(description_, rating);
    }
    setAccessibleName(name_);
    setAccessibleDescription(description_);
}

QSize GenreBox::sizeFor(const QFont &font)
{
    return {leastWidth, std::max(leastHeight, QFontMetrics(font).lineSpacing() + innerMargin)};
}

void GenreBox::setHovered(bool hovered)
{
    if (hovered_ != hovered) {
        hovered_ = hovered;
        update();
    }
}

void GenreBox::setSelected(bool selected)
{
    if (selected_ != selected) {
        selected_ = selected;
        update();
    }
}

void GenreBox::setCurrent(bool current)
{
    if (current_ != current) {
        current_ = current;
        update();
    }
}

void GenreBox::press()
{
    if (delegate_ != nullptr) {
        delegate_->boxClicked(this);
    }
}

void GenreBox::mouseDown(QMouseEvent *event)
{
    const int place = clicks_.count(*event);
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted() && place == 1) {
        press();
    }
}

bool GenreBox::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const bool elided = fontMetrics().horizontalAdvance(name_) > namePlace().width();
        const QString text = elided ? tr("%1: %2").arg(name_, description_) : description_;
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(text), this);
        return true;
    }
    return QWidget::event(event);
}

void GenreBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink = palette().color(QPalette::WindowText);
    const QColor accent = palette().color(QPalette::Highlight);
    painter.setPen(Qt::NoPen);
    if (selected_ || hovered_) {
        painter.setBrush(selected_ ? faded(accent, selectedOpacity) : faded(ink, hoverOpacity));
        painter.drawRoundedRect(rect(), boxCorner, boxCorner);
    }
    if (current_) {
        constexpr qreal inset = boxRingWidth / 2;
        painter.setPen(QPen(accent, boxRingWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), boxCorner - inset,
                                boxCorner - inset);
    }
    painter.setPen(ink);
    const QRect place = namePlace();
    // The text keeps its own direction; only its alignment follows the window's.
    painter.setLayoutDirection(name_.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    const auto side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawText(place, static_cast<int>(side | Qt::AlignAbsolute) | Qt::TextSingleLine,
                     fontMetrics().elidedText(name_, Qt::ElideRight, place.width()));
    if (stars_ > 0) {
        const QColor set = selected_ ? faded(accent, selectedStarOpacity) : faded(ink, starOpacity);
        StarLevel::paint(painter, starsPlace(), stars_, {.set = set, .unset = faded(ink, restOpacity)},
                         layoutDirection());
    }
}

QRect GenreBox::starsPlace() const
{
    constexpr int length = StarLevel::mostStars * starPitch;
    return QStyle::visualRect(layoutDirection(), rect(),
                              QRect(width() - innerMargin - length, 0, length, height()));
}

QRect GenreBox::namePlace() const
{
    const int stars = stars_ > 0 ? starsPlace().width() + innerMargin : 0;
    return QStyle::visualRect(layoutDirection(), rect(),
                              QRect(innerMargin, 0, width() - 2 * innerMargin - stars, height()));
}
