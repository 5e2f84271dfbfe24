#include "ui/rvtableview.h"

#include "ui/celldelegate.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>

namespace {
constexpr int fixedRowHeight = 28;
} // namespace

RVTableView::RVTableView(QWidget *parent)
    : QTableView(parent)
{
    setItemDelegate(new CellDelegate(this));
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setFrameShape(NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, &RVTableView::markSortedColumn);
    // Fixed heights keep a reload as quick with 50,000 rows as with 50.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fixedRowHeight);
    verticalHeader()->hide();
}

void RVTableView::setPlaceholderText(const QString &text)
{
    if (placeholderText_ != text) {
        placeholderText_ = text;
        viewport()->update();
    }
}

void RVTableView::clearSortIndicator()
{
    sortedSection_ = -1;
    sortOrder_ = Qt::AscendingOrder;
    showSortedColumn();
}

void RVTableView::markSortedColumn(int section, Qt::SortOrder order)
{
    const bool untitled =
        model() != nullptr && model()->headerData(section, Qt::Horizontal).toString().isEmpty();
    if (section >= 0 && untitled) {
        showSortedColumn();
    } else {
        sortedSection_ = section;
        sortOrder_ = order;
    }
}

void RVTableView::showSortedColumn()
{
    const QSignalBlocker quiet(horizontalHeader());
    horizontalHeader()->setSortIndicator(sortedSection_, sortOrder_);
    horizontalHeader()->viewport()->update();
}

void RVTableView::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) {
        act(rowAt(event->position().toPoint().y()));
    }
}

void RVTableView::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && currentIndex().isValid()) {
        act(currentIndex().row());
        return;
    }
    QTableView::keyPressEvent(event);
}

void RVTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (placeholderText_.isEmpty() || model() == nullptr || model()->rowCount() > 0) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter, placeholderText_);
}

void RVTableView::act(int row)
{
    clickedRow_ = row;
    Q_EMIT doubleAction();
}
