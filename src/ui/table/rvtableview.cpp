#include "ui/table/rvtableview.h"

#include "base/exception.h"
#include "ui/table/rvcell.h"

#include <QDrag>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <algorithm>
#include <memory>

namespace {
constexpr int fixedRowHeight = 28;
/// Wide enough to know the station by, and no wider: the picture hides where it is dropped.
constexpr int widestDragImage = 440;
constexpr qreal rowDragOpacity = 0.75;
constexpr qreal rowCornerRadius = 6;
constexpr qreal tableFocusRingWidth = 2;
constexpr float unfocusedTint = 0.11F;
constexpr Qt::DropActions everyAction = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
} // namespace

RVTableView::RVTableView(QWidget *parent)
    : QTableView(parent)
{
    setItemDelegate(new RVCell(this));
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
    setDragEnabled(true);
    setDropIndicatorShown(false);
}

void RVTableView::registerForDraggedTypes(const QStringList &types)
{
    draggedTypes_ = types;
    setAcceptDrops(!types.isEmpty());
}

QList<int> RVTableView::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedRows()) {
        rows.append(index.row());
    }
    return rows;
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

void RVTableView::sortBy(int column)
{
    const bool again = sortedSection_ == column && sortOrder_ == Qt::AscendingOrder;
    horizontalHeader()->setSortIndicator(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
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

/// Where the keys are is where the strong colour is: the selection is paler while they are elsewhere.
void RVTableView::initViewItemOption(QStyleOptionViewItem *option) const
{
    QTableView::initViewItemOption(option);
    if (!hasFocus()) {
        QColor tint = palette().color(QPalette::Highlight);
        tint.setAlphaF(unfocusedTint);
        option->palette.setColor(QPalette::Highlight, tint);
        option->palette.setColor(QPalette::HighlightedText, palette().color(QPalette::Text));
    }
}

/// Around the row that the keys are at, unless it is selected, which shows it as well, or the user has not
/// touched them yet.
void RVTableView::paintFocus(QPainter &painter) const
{
    const QModelIndex current = currentIndex();
    if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange) || !current.isValid() ||
        selectionModel()->isSelected(current)) {
        return;
    }
    constexpr qreal inset = tableFocusRingWidth / 2;
    const QRectF row(-horizontalOffset(), rowViewportPosition(current.row()), horizontalHeader()->length(),
                     rowHeight(current.row()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), tableFocusRingWidth));
    painter.drawRoundedRect(row.adjusted(inset, inset, -inset, -inset), rowCornerRadius, rowCornerRadius);
}

/// Qt repaints the two cells; the focus ring goes round their rows.
void RVTableView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    viewport()->update();
}

void RVTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    QPainter painter(viewport());
    paintFocus(painter);
    if (placeholderText_.isEmpty() || model() == nullptr || model()->rowCount() > 0) {
        return;
    }
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter, placeholderText_);
}

void RVTableView::mousePressEvent(QMouseEvent *event)
{
    pressed_ = event->position().toPoint();
    QTableView::mousePressEvent(event);
}

void RVTableView::startDrag(Qt::DropActions)
{
    const QList<int> rows = selectedRows();
    auto pasteboard = std::make_unique<QMimeData>();
    if (dataSource_ == nullptr || !dataSource_->tableViewWriteRowsWithIndexes(this, rows, *pasteboard)) {
        return;
    }
    const int row = *std::max_element(rows.cbegin(), rows.cend());
    const QPoint at = visualRect(model()->index(row, horizontalHeader()->logicalIndex(0))).topLeft();
    QPixmap image = rowImage(row);
    const QSize size = image.deviceIndependentSize().toSize();
    try {
        image = dragImage(image, at);
    } catch (const RangeError &) {
        // Most rows have no column of their number; they are dragged with the picture as it is.
    }
    // Deletes itself when the drag has ended.
    auto *drag = new QDrag(this);
    drag->setMimeData(pasteboard.release());
    drag->setPixmap(image);
    const QPoint held = pressed_ - at;
    drag->setHotSpot({std::clamp(held.x(), 0, size.width()), std::clamp(held.y(), 0, size.height())});
    drag->exec(everyAction, Qt::CopyAction);
}

QPixmap RVTableView::dragImage(const QPixmap &image, const QPoint &at) const
{
    QList<int> columnWidths;
    for (int column = 0; column < horizontalHeader()->count(); ++column) {
        columnWidths.append(columnWidth(horizontalHeader()->logicalIndex(column)));
    }
    const int width = elementAt(columnWidths, rowAt(at.y()));
    QPixmap altered = image;
    const QSizeF size = image.deviceIndependentSize();
    const QRectF source(QPointF(), QSizeF(size.width() - width, size.height()) * image.devicePixelRatio());
    if (source.isValid()) {
        QPainter(&altered).drawPixmap(QRectF(QPointF(), source.size() / image.devicePixelRatio()), image,
                                      source);
    }
    return altered;
}

/// A row as it stands in the table, on a card of its own that what lies below shines through.
QPixmap RVTableView::rowImage(int row) const
{
    const QSize size(std::min(viewport()->width(), widestDragImage), rowHeight(row));
    QPixmap image(size * devicePixelRatioF());
    image.setDevicePixelRatio(devicePixelRatioF());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(rowDragOpacity);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRect(QPoint(), size), rowCornerRadius, rowCornerRadius);
    QStyleOptionViewItem cell;
    initViewItemOption(&cell);
    cell.state |= QStyle::State_Enabled | QStyle::State_Active;
    cell.palette.setColor(QPalette::Text, palette().color(QPalette::HighlightedText));
    for (int column = 0; column < model()->columnCount(); ++column) {
        cell.rect = QRect(columnViewportPosition(column), 0, columnWidth(column), size.height());
        itemDelegateForIndex(model()->index(row, column))->paint(&painter, cell, model()->index(row, column));
    }
    return image;
}

void RVTableView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
}

void RVTableView::dragMoveEvent(QDragMoveEvent *event)
{
    const QStringList formats = event->mimeData()->formats();
    const bool ours = event->source() != nullptr &&
                      std::any_of(draggedTypes_.cbegin(), draggedTypes_.cend(),
                                  [&formats](const QString &type) { return formats.contains(type); });
    const Qt::DropActions allowed =
        ours && dataSource_ != nullptr ? dataSource_->tableViewValidateDrop(
                                             this, *event->mimeData(), rowAt(event->position().toPoint().y()))
                                       : Qt::DropActions();
    event->setAccepted(allowed.testFlag(event->proposedAction()));
}

void RVTableView::dragLeaveEvent(QDragLeaveEvent *) {}

void RVTableView::dropEvent(QDropEvent *event)
{
    event->ignore();
}

bool RVTableView::hasAction() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&RVTableView::doubleAction));
}

void RVTableView::act(int row)
{
    clickedRow_ = row;
    Q_EMIT doubleAction();
}
