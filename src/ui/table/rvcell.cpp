#include "ui/table/rvcell.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

namespace {
constexpr int pictureSize = 20;
} // namespace

void RVCell::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QStyle &style = *QApplication::style();
    style.drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);

    if (!cell.icon.isNull()) {
        QRect picture(0, 0, pictureSize, pictureSize);
        picture.moveCenter(cell.rect.center());
        cell.icon.paint(painter, picture);
        return;
    }
    const QRect room = cell.rect.adjusted(sideMargin, 0, -sideMargin, 0);
    const auto alignment = QStyle::visualAlignment(cell.direction, cell.displayAlignment);
    const auto ink = cell.state.testFlag(QStyle::State_Selected) ? QPalette::HighlightedText : QPalette::Text;
    style.drawItemText(painter, room, static_cast<int>(alignment), cell.palette, true,
                       cell.fontMetrics.elidedText(cell.text, Qt::ElideRight, room.width()), ink);
}
