#include "ui/rack/rackview.h"

#include "ui/widgets/starlevel.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {
constexpr int gridMargin = 8;
constexpr int gridSpacing = 8;
constexpr int hintedColumns = 4;
/// Of a row: what one notch of the wheel moves is three of them.
constexpr int scrollStepsInRow = 5;
/// The focus ring stands off from its tile, so that it is seen on a selected one too.
constexpr qreal focusRingDistance = 3;
constexpr qreal focusRingWidth = 2;
} // namespace

RackView::RackView(QWidget *parent)
    : QAbstractScrollArea(parent)
{
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    viewport()->setAcceptDrops(true);
}

void RackView::setRack(FavouritesRack *rack, const ValueTransformers &transformers)
{
    rack_ = rack;
    transformers_ = &transformers;
    connect(rack, &FavouritesRack::reset, this, &RackView::scheduleLayout);
    connect(rack, &FavouritesRack::inserted, this, &RackView::scheduleLayout);
    connect(rack, &FavouritesRack::removed, this, &RackView::scheduleLayout);
    connect(rack, &FavouritesRack::rearranged, this, &RackView::layOutIfDue);
    connect(rack, &FavouritesRack::edited, this, &RackView::refreshStation);
    connect(rack, &FavouritesRack::selectionChanged, this, &RackView::showSelection);
    scheduleLayout();
}

void RackView::setDelegate(Delegate *delegate)
{
    delegate_ = delegate;
    for (RackItem *tile : madeTiles()) {
        tile->artwork()->setDelegate(delegate);
    }
}

void RackView::setItemFrame(qreal cornerRadius, const QColor &border, qreal width)
{
    frame_ = {.cornerRadius = cornerRadius, .border = border, .width = width};
    for (RackItem *tile : madeTiles()) {
        tile->setFrame(frame_);
    }
}

void RackView::setLevelIndicatorHighlighted(bool highlighted)
{
    levelIndicatorHighlighted_ = highlighted;
    for (RackItem *tile : madeTiles()) {
        tile->stars()->setHighlighted(highlighted);
    }
}

void RackView::setPlaceholderText(const QString &text)
{
    placeholderText_ = text;
    viewport()->update();
}

qsizetype RackView::numberOfItems() const
{
    return rack_ == nullptr ? 0 : rack_->radioItemCollectionArray().size();
}

RackItem *RackView::itemAtIndex(qsizetype index)
{
    layOutIfDue();
    return tileAt(index);
}

QRect RackView::placeOfTile(qsizetype index)
{
    layOutIfDue();
    return grid_.rectOf(index).translated(0, -scrollOffset());
}

qsizetype RackView::currentIndex()
{
    layOutIfDue();
    return current_.index;
}

void RackView::scrollToIndex(qsizetype index)
{
    layOutIfDue();
    if (index < 0 || index >= grid_.count) {
        return;
    }
    const QRect tile = grid_.rectOf(index);
    const int highest = tile.top() - gridMargin;
    const int lowest = tile.bottom() + 1 + gridMargin - viewport()->height();
    const int seen = std::min(std::max(scrollOffset(), lowest), highest);
    verticalScrollBar()->setValue(seen);
}

QSize RackView::sizeHint() const
{
    const int moreColumns = (hintedColumns - 1) * (RackItem::sizeFor(font()).width() + gridSpacing);
    return minimumSizeHint() + QSize(moreColumns, 0);
}

QSize RackView::minimumSizeHint() const
{
    const int around = 2 * gridMargin + 2 * frameWidth();
    return RackItem::sizeFor(font()) + QSize(around + verticalScrollBar()->sizeHint().width(), around);
}

void RackView::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::LayoutDirectionChange) {
        updateGeometry();
        scheduleLayout();
    }
}

void RackView::resizeEvent(QResizeEvent *)
{
    layOut();
}

void RackView::scrollContentsBy(int, int)
{
    if (layoutDue_) {
        layOut();
    } else if (!layingOut_) {
        layOutTiles();
    }
}

void RackView::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    layOutIfDue();
    if (current_.index < 0) {
        setCurrent(0);
    }
    viewport()->update(focusRing());
    // Qt next announces that the rack has the focus; the tile has to be announced after that.
    QMetaObject::invokeMethod(this, &RackView::announceCurrent, Qt::QueuedConnection);
}

void RackView::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update(focusRing());
}

void RackView::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    if (numberOfItems() == 0) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(gridMargin, gridMargin, -gridMargin, -gridMargin),
                         Qt::AlignCenter | Qt::TextWordWrap, placeholderText_);
    }
    const QColor accent = palette().color(QPalette::Highlight);
    if (hasFocus() && current_.index >= 0) {
        const QRectF tile = placeOfTile(current_.index);
        const qreal radius = frame_.cornerRadius + focusRingDistance;
        painter.setPen(QPen(accent, focusRingWidth));
        painter.drawRoundedRect(
            tile.adjusted(-focusRingDistance, -focusRingDistance, focusRingDistance, focusRingDistance),
            radius, radius);
    }
    if (!mark_.isNull()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent);
        painter.drawRoundedRect(mark_, mark_.width() / 2.0, mark_.width() / 2.0);
    }
}

/// Several changes in one turn of the event loop cause one layout.
void RackView::scheduleLayout()
{
    // The pressed tile may have moved.
    press_ = {};
    if (!layoutDue_) {
        layoutDue_ = true;
        QMetaObject::invokeMethod(this, &RackView::layOutIfDue, Qt::QueuedConnection);
    }
}

void RackView::layOutIfDue()
{
    if (layoutDue_) {
        layOut();
    }
}

void RackView::layOut()
{
    if (layingOut_) {
        return;
    }
    const QScopedValueRollback busy(layingOut_, true);
    layoutDue_ = false;
    grid_ = measuredGrid();
    verticalScrollBar()->setSingleStep((grid_.tile.height() + gridSpacing) / scrollStepsInRow);
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(0, grid_.contentHeight() - viewport()->height()));
    // The scroll bar may have been shown or hidden by that.
    grid_ = measuredGrid();
    const StationRecord left = current_.station.lock();
    followStation(current_);
    followStation(anchor_);
    selection_ = rack_ == nullptr ? QList<qsizetype>() : rack_->selectionIndexes();
    layOutTiles();
    if (current_.station.lock() != left) {
        announceCurrent();
    }
}

/// Room for the scroll bar is kept whether or not it is shown, so that the columns stay when it comes.
TileGrid RackView::measuredGrid() const
{
    const int besideBar = maximumViewportSize().width() - verticalScrollBar()->sizeHint().width();
    const int room = std::max(0, viewport()->width() - besideBar);
    return {.tile = RackItem::sizeFor(font()),
            .spacing = gridSpacing,
            .margins = {gridMargin, gridMargin, gridMargin + room, gridMargin},
            .width = viewport()->width(),
            .count = numberOfItems(),
            .direction = layoutDirection()};
}

void RackView::layOutTiles()
{
    const int top = scrollOffset();
    const int moreRows = grid_.tile.height() + gridSpacing;
    const TileRange range = grid_.indexesWithin(top - moreRows, top + viewport()->height() - 1 + moreRows);
    bool moved = assignTiles(range);
    for (qsizetype index = range.first; index < range.end; ++index) {
        RackItem *tile = tileAt(index);
        const QRect place = grid_.rectOf(index).translated(0, -top);
        moved = moved || tile->geometry() != place;
        tile->setGeometry(place);
        tile->setSelected(std::binary_search(selection_.begin(), selection_.end(), index));
        tile->show();
    }
    showCurrent();
    if (pointer_) {
        moveMark(*pointer_);
    }
    viewport()->update();
    if (moved) {
        Q_EMIT scrolled();
    }
}

/// Assigns tiles to the stations of the range. Returns whether any tile has another station now.
bool RackView::assignTiles(const TileRange &range)
{
    std::unordered_map<const RadioModel *, RackItem *> tileOf;
    for (RackItem *tile : std::exchange(tiles_, {})) {
        const StationRecord station = tile->station();
        if (!station || !tileOf.emplace(station.get(), tile).second) {
            pool_.push_back(tile);
        }
    }
    firstShown_ = range.first;
    tiles_.resize(static_cast<std::size_t>(range.end - range.first));
    const StationRecords stations =
        rack_ == nullptr ? StationRecords()
                         : rack_->radioItemCollectionArray().mid(range.first, range.end - range.first);
    for (std::size_t place = 0; place < tiles_.size(); ++place) {
        if (auto kept = tileOf.extract(stations.at(static_cast<qsizetype>(place)).get())) {
            tiles_[place] = kept.mapped();
        }
    }
    for (const auto &[station, tile] : tileOf) {
        pool_.push_back(tile);
    }
    bool changed = false;
    for (std::size_t place = 0; place < tiles_.size(); ++place) {
        if (tiles_[place] == nullptr) {
            tiles_[place] = spareTile();
            tiles_[place]->setStation(stations.at(static_cast<qsizetype>(place)), *transformers_);
            changed = true;
        }
    }
    for (RackItem *tile : pool_) {
        if (!tile->isHidden()) {
            leaveTile(tile);
            tile->hide();
            tile->clear();
            changed = true;
        }
    }
    return changed;
}

RackItem *RackView::spareTile()
{
    if (!pool_.empty()) {
        RackItem *tile = pool_.back();
        pool_.pop_back();
        leaveTile(tile);
        return tile;
    }
    auto *tile = new RackItem(viewport());
    tile->setFrame(frame_);
    tile->stars()->setHighlighted(levelIndicatorHighlighted_);
    tile->artwork()->setDelegate(delegate_);
    for (QToolButton *button : {tile->detailsButton(), tile->playButton()}) {
        connect(button, &QToolButton::pressed, this, [this, tile] { pressedStation_ = tile->station(); });
        connect(button, &QToolButton::clicked, this, [this, tile, button] {
            // While the button was held down, the tile may have been given another station.
            if (delegate_ != nullptr && tile->station() == pressedStation_.lock()) {
                delegate_->itemButtonAction(button);
            }
        });
    }
    return tile;
}

/// Takes the focus off a tile that is given to another station.
void RackView::leaveTile(RackItem *tile)
{
    if (tile->isAncestorOf(QApplication::focusWidget())) {
        setFocus();
    }
    tile->setCurrent(false);
}

RackItem *RackView::tileAt(qsizetype index) const
{
    const bool made = index >= firstShown_ && index - firstShown_ < static_cast<qsizetype>(tiles_.size());
    return made ? tiles_[static_cast<std::size_t>(index - firstShown_)] : nullptr;
}

QList<RackItem *> RackView::madeTiles() const
{
    return viewport()->findChildren<RackItem *>(QString(), Qt::FindDirectChildrenOnly);
}

void RackView::refreshStation(qsizetype index)
{
    const StationRecord station = rack_->radioItemCollectionArray().value(index);
    for (RackItem *tile : tiles_) {
        if (tile->station() == station) {
            tile->setStation(station, *transformers_);
        }
    }
}

void RackView::showSelection()
{
    layOutIfDue();
    selection_ = rack_->selectionIndexes();
    if (selection_.size() == 1) {
        anchor_ = placeOf(selection_.first());
        setCurrent(selection_.first());
    }
    for (std::size_t place = 0; place < tiles_.size(); ++place) {
        const qsizetype index = firstShown_ + static_cast<qsizetype>(place);
        tiles_[place]->setSelected(std::binary_search(selection_.begin(), selection_.end(), index));
    }
}

RackView::Place RackView::placeOf(qsizetype index) const
{
    return {.station = rack_->radioItemCollectionArray().at(index), .index = index};
}

/// Updates the index to where the station is now; keeps it where the station has been removed.
void RackView::followStation(Place &place) const
{
    if (place.index < 0) {
        return;
    }
    const StationRecord station = place.station.lock();
    const qsizetype found = station ? rack_->indexOf(station.get()) : -1;
    const qsizetype index = found >= 0 ? found : std::min(place.index, numberOfItems() - 1);
    place = index >= 0 ? placeOf(index) : Place();
}

int RackView::scrollOffset() const
{
    return verticalScrollBar()->value();
}

/// The part of the viewport that the current tile and its ring take.
QRect RackView::focusRing() const
{
    return current_.index < 0 ? QRect()
                              : grid_.rectOf(current_.index)
                                    .translated(0, -scrollOffset())
                                    .adjusted(-gridSpacing, -gridSpacing, gridSpacing, gridSpacing);
}
