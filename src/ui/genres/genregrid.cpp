#include "ui/genres/genregrid.h"

#include "ui/widgets/foldedname.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

namespace {
/// A notch of the wheel moves three of them.
constexpr int genreScrollStep = 28;
constexpr int hintedRows = 8;
} // namespace

GenreGrid::GenreGrid(QWidget *parent)
    : QAbstractScrollArea(parent)
{
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalScrollBar()->setSingleStep(genreScrollStep);
    viewport()->setAutoFillBackground(false);
}

void GenreGrid::setArrayController(GenreList *list)
{
    list_ = list;
    connect(list, &GenreList::reset, this, &GenreGrid::reload);
    connect(list, &GenreList::selectionChanged, this, &GenreGrid::showSelection);
    reload();
}

void GenreGrid::setDelegate(GenreBox::Delegate *delegate)
{
    delegate_ = delegate;
    for (GenreBox *tile : tiles_) {
        if (tile != nullptr) {
            tile->setDelegate(delegate);
        }
    }
}

void GenreGrid::setFilterField(QLineEdit *field)
{
    filterField_ = field;
    field->installEventFilter(this);
    connect(field, &QLineEdit::textChanged, this, &GenreGrid::applyFilter);
    connect(field, &QObject::destroyed, this, [this] { filterField_ = nullptr; });
    applyFilter();
}

qsizetype GenreGrid::numberOfItems() const
{
    return static_cast<qsizetype>(tiles_.size());
}

GenreBox *GenreGrid::itemAtIndex(qsizetype index) const
{
    return index >= 0 && index < numberOfItems() ? tiles_[static_cast<std::size_t>(index)] : nullptr;
}

GenreBox *GenreGrid::madeItemAtIndex(qsizetype index)
{
    GenreBox *&tile = tiles_.at(static_cast<std::size_t>(index));
    if (tile == nullptr) {
        tile = new GenreBox(list_->dataSource().at(index), viewport());
        tile->setDelegate(delegate_);
        tile->setSelected(index == list_->selectionIndex());
        layOutTiles();
    }
    return tile;
}

qsizetype GenreGrid::indexOf(const QObject *tile) const
{
    const auto found = std::find(tiles_.begin(), tiles_.end(), tile);
    return tile == nullptr || found == tiles_.end() ? -1 : std::distance(tiles_.begin(), found);
}

QSize GenreGrid::sizeHint() const
{
    return {minimumSizeHint().width(), hintedRows * GenreBox::sizeFor(font()).height()};
}

/// Room for one column and two rows.
QSize GenreGrid::minimumSizeHint() const
{
    const QSize tile = GenreBox::sizeFor(font());
    return {tile.width() + verticalScrollBar()->sizeHint().width(), 2 * tile.height()};
}

void GenreGrid::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::LayoutDirectionChange) {
        updateGeometry();
        layOut();
    }
}

void GenreGrid::resizeEvent(QResizeEvent *)
{
    layOut();
}

void GenreGrid::scrollContentsBy(int, int)
{
    if (layingOut_) {
        return;
    }
    layOutTiles();
    // The pointer has not moved, so that Qt does not notice that another tile is under it.
    const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
    for (GenreBox *tile : tiles_) {
        if (tile != nullptr) {
            tile->setHovered(viewport()->underMouse() && tile->geometry().contains(pointer));
        }
    }
}

void GenreGrid::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    if (current_ < 0 && !shown_.isEmpty()) {
        setCurrentIndex(shown_.first());
    }
    showCurrent();
    // Qt announces the grid after this; the tile has to be announced last.
    QMetaObject::invokeMethod(this, &GenreGrid::announceCurrent, Qt::QueuedConnection);
}

void GenreGrid::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    showCurrent();
}

void GenreGrid::paintEvent(QPaintEvent *)
{
    if (shown_.isEmpty() && numberOfItems() > 0) {
        QPainter painter(viewport());
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect(), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                         tr("No genre matches."));
    }
}

void GenreGrid::reload()
{
    for (GenreBox *tile : tiles_) {
        if (tile != nullptr) {
            // Not deleted at once: this may be running inside the tile's own click handler.
            tile->hide();
            tile->deleteLater();
        }
    }
    tiles_.assign(static_cast<std::size_t>(list_->dataSource().size()), nullptr);
    current_ = -1;
    applyFilter();
}

void GenreGrid::applyFilter()
{
    if (list_ == nullptr) {
        return;
    }
    const QString wanted = filterField_ == nullptr ? QString() : foldedName(filterField_->text());
    shown_.clear();
    for (qsizetype index = 0; index < numberOfItems(); ++index) {
        if (wanted.isEmpty() || foldedName(list_->dataSource().at(index)->nameText()).contains(wanted)) {
            shown_.append(index);
        }
    }
    if (!shown_.contains(current_)) {
        current_ = shown_.contains(list_->selectionIndex()) ? list_->selectionIndex() : -1;
    }
    layOut();
    scrollToCurrent();
    QAccessibleEvent reordered(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
}

void GenreGrid::layOut()
{
    if (layingOut_) {
        return;
    }
    {
        const QScopedValueRollback busy(layingOut_, true);
        grid_ = measuredGrid();
        verticalScrollBar()->setPageStep(viewport()->height());
        verticalScrollBar()->setRange(0, std::max(0, grid_.contentHeight() - viewport()->height()));
        // The scroll bar may have been shown or hidden by that.
        grid_ = measuredGrid();
    }
    layOutTiles();
}

/// The columns share the width. Room for the scroll bar is kept whether or not it is shown, so that nothing
/// moves when it comes.
TileGrid GenreGrid::measuredGrid() const
{
    const int besideBar = maximumViewportSize().width() - verticalScrollBar()->sizeHint().width();
    TileGrid grid{.tile = GenreBox::sizeFor(font()),
                  .margins = {0, 0, std::max(0, viewport()->width() - besideBar), 0},
                  .width = viewport()->width(),
                  .count = shown_.size(),
                  .direction = layoutDirection()};
    grid.tile.setWidth(std::max(1, (grid.width - grid.margins.right()) / grid.columns()));
    return grid;
}

void GenreGrid::layOutTiles()
{
    if (layingOut_) {
        return;
    }
    const QScopedValueRollback busy(layingOut_, true);
    const int top = verticalScrollBar()->value();
    const TileRange seen = grid_.indexesWithin(top, top + viewport()->height() - 1);
    for (qsizetype place = seen.first; place < seen.end; ++place) {
        madeItemAtIndex(shown_.at(place));
    }
    qsizetype place = 0;
    for (qsizetype index = 0; index < numberOfItems(); ++index) {
        const bool shown = place < shown_.size() && shown_.at(place) == index;
        if (GenreBox *tile = itemAtIndex(index)) {
            if (shown) {
                tile->setGeometry(grid_.rectOf(place).translated(0, -top));
            }
            tile->setVisible(shown);
        }
        place += shown ? 1 : 0;
    }
    showCurrent();
}

void GenreGrid::showSelection()
{
    const qsizetype selected = list_->selectionIndex();
    for (qsizetype index = 0; index < numberOfItems(); ++index) {
        if (GenreBox *tile = itemAtIndex(index)) {
            tile->setSelected(index == selected);
        }
    }
    setCurrentIndex(selected);
    if (GenreBox *tile = itemAtIndex(selected)) {
        QAccessibleEvent chosen(tile, QAccessible::Selection);
        QAccessible::updateAccessibility(&chosen);
    }
}

void GenreGrid::setCurrentIndex(qsizetype index)
{
    if (index == current_ || !shown_.contains(index)) {
        return;
    }
    current_ = index;
    scrollToCurrent();
    showCurrent();
    announceCurrent();
}

/// Has screen readers announce the current tile rather than the grid.
void GenreGrid::announceCurrent()
{
    if (QAccessible::isActive() && hasFocus() && current_ >= 0) {
        QAccessibleEvent focused(madeItemAtIndex(current_), QAccessible::Focus);
        QAccessible::updateAccessibility(&focused);
    }
}

void GenreGrid::showCurrent()
{
    for (qsizetype index = 0; index < numberOfItems(); ++index) {
        if (GenreBox *tile = itemAtIndex(index)) {
            tile->setCurrent(index == current_ && hasFocus());
        }
    }
}

/// To the top where there is no current tile.
void GenreGrid::scrollToCurrent()
{
    const QRect tile = current_ < 0 ? QRect() : grid_.rectOf(shown_.indexOf(current_));
    const int lowest = tile.y() + tile.height() - viewport()->height();
    verticalScrollBar()->setValue(std::min(std::max(verticalScrollBar()->value(), lowest), tile.y()));
}
