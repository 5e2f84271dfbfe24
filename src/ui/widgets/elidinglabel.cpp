#include "ui/widgets/elidinglabel.h"

#include "ui/widgets/plaintooltip.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>

ElidingLabel::ElidingLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void ElidingLabel::setLines(int lines)
{
    lines_ = std::max(1, lines);
    updateGeometry();
    update();
}

QSize ElidingLabel::minimumSizeHint() const
{
    const int moreLines = (lines_ - 1) * fontMetrics().lineSpacing();
    return {fontMetrics().averageCharWidth() * 8, QLabel::minimumSizeHint().height() + moreLines};
}

bool ElidingLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && !fits(brokenLines().last())) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(text()) + toolTip(),
                           this);
        return true;
    }
    return QLabel::event(event);
}

void ElidingLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStringList lines = brokenLines();
    lines.last() = fontMetrics().elidedText(lines.last(), Qt::ElideRight, contentsRect().width());
    // The text keeps its own direction; only its alignment follows the window's.
    painter.setLayoutDirection(text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    const auto side = QStyle::visualAlignment(layoutDirection(), alignment()) | Qt::AlignAbsolute;
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(side), palette(), isEnabled(),
                          lines.join(u'\n'), foregroundRole());
}

QStringList ElidingLabel::brokenLines() const
{
    QStringList lines;
    QString rest = text();
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    while (lines.size() < lines_ - 1 && !fits(rest)) {
        QTextLayout layout(rest, font());
        layout.setTextOption(wrapping);
        layout.beginLayout();
        QTextLine line = layout.createLine();
        line.setLineWidth(contentsRect().width());
        layout.endLayout();
        lines.append(rest.left(line.textLength()).trimmed());
        rest = rest.mid(line.textLength());
    }
    return lines << rest;
}

bool ElidingLabel::fits(const QString &line) const
{
    return fontMetrics().horizontalAdvance(line) <= contentsRect().width();
}
