#pragma once

#include <QStyledItemDelegate>

/// Draws the cells of a list: one line of text that is elided where it does not fit, with room at both sides,
/// or a small picture in the middle. The row shows selection and focus, not the cell.
class CellDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// The room at either side of a cell's text, in logical pixels; that of the header's too.
    static constexpr int sideMargin = 8;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
