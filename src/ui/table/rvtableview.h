#pragma once

#include <QPixmap>
#include <QStringList>
#include <QTableView>

class QMimeData;

/// The station table's view. A double click, or Enter, is its action; which row it was made on is kept for
/// whoever handles it.
class RVTableView : public QTableView
{
    Q_OBJECT

public:
    /// Who decides what is dragged out of the table, and what may be dropped on it.
    class DataSource
    {
    public:
        /// Writes what a drag of those rows carries; false where there is to be no drag.
        virtual bool tableViewWriteRowsWithIndexes(const RVTableView *table, const QList<int> &rows,
                                                   QMimeData &pasteboard) = 0;
        /// What a drop there may do. Nothing comes of the drop itself.
        virtual Qt::DropActions tableViewValidateDrop(const RVTableView *table, const QMimeData &pasteboard,
                                                      int proposedRow) = 0;

    protected:
        ~DataSource() = default;
    };

    explicit RVTableView(QWidget *parent = nullptr);

    /// Not owned. Null: there are no drags.
    void setDataSource(DataSource *dataSource) { dataSource_ = dataSource; }
    /// The types that a drag of this program has to carry one of to be let in.
    void registerForDraggedTypes(const QStringList &types);

    /// The picture of a drag which is placed at `at`, in the table's coordinates: all of it but the width of
    /// one column is laid over itself once more. The number of the row at that point says which column, from
    /// the left. Raises RangeError where there are no more columns than that, or no row.
    QPixmap dragImage(const QPixmap &image, const QPoint &at) const;

    /// The row of the latest action; -1 where it hit none.
    int clickedRow() const { return clickedRow_; }

    /// Whether anybody has something done by a double click.
    bool hasAction() const;
    /// As a double click on that row does.
    void act(int row);
    /// As a click on the column's header does: a second time turns the order round.
    void sortBy(int column);

    /// The numbers of the selected rows, in no particular order.
    QList<int> selectedRows() const;

    /// A quiet line in the middle of a table without rows; none where empty.
    void setPlaceholderText(const QString &text);

    /// No column is marked as sorted any more; nothing is sorted by this. A column without a title cannot be
    /// sorted by, and never gets the mark.
    void clearSortIndicator();

Q_SIGNALS:
    void doubleAction();

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void initViewItemOption(QStyleOptionViewItem *option) const override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void mousePressEvent(QMouseEvent *event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QPixmap rowImage(int row) const;
    void paintFocus(QPainter &painter) const;
    void markSortedColumn(int section, Qt::SortOrder order);
    void showSortedColumn();

    DataSource *dataSource_ = nullptr;
    QStringList draggedTypes_;
    QPoint pressed_;
    int clickedRow_ = -1;
    int sortedSection_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    QString placeholderText_;
};
