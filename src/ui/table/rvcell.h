#pragma once

#include <QStyledItemDelegate>

/// The cell of every list, the station table's first of all: one line of text that is elided where it does
/// not fit, with room at both sides, or a small picture in the middle. It has no behaviour of its own: the
/// row shows selection and focus, and takes every click.
class RVCell : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// The room at either side of a cell's text, in logical pixels; that of the header's too.
    static constexpr int sideMargin = 8;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
