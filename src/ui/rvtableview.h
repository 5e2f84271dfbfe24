#pragma once

#include <QTableView>

/// The station table's view. A double click, or Enter, is its action; which row it was made on is kept for
/// whoever handles it.
class RVTableView : public QTableView
{
    Q_OBJECT

public:
    explicit RVTableView(QWidget *parent = nullptr);

    /// The row of the latest action; -1 where it hit none.
    int clickedRow() const { return clickedRow_; }

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

private:
    void act(int row);
    void markSortedColumn(int section, Qt::SortOrder order);
    void showSortedColumn();

    int clickedRow_ = -1;
    int sortedSection_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    QString placeholderText_;
};
