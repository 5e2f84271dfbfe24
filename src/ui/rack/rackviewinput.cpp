#include "ui/rack/rackview.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTimerEvent>
#include <algorithm>
#include <numeric>
#include <utility>

namespace {
constexpr qreal tileDragOpacity = 0.6;
constexpr int autoScrollEdge = 32;
constexpr int autoScrollMilliseconds = 16;
/// One turn scrolls this part of the pointer's distance into the edge.
constexpr int autoScrollDivisor = 3;

/// Translucent, so that the insertion mark below stays visible.
QPixmap translucent(const QPixmap &picture)
{
    QPixmap faint(picture.size());
    faint.setDevicePixelRatio(picture.devicePixelRatio());
    faint.fill(Qt::transparent);
    QPainter painter(&faint);
    painter.setOpacity(tileDragOpacity);
    painter.drawPixmap(0, 0, picture);
    return faint;
}

/// How far one turn of automatic scrolling goes with the pointer at `y`; 0 away from the edges.
int autoScrollStep(int y, int height)
{
    const int above = autoScrollEdge - y;
    const int below = y - (height - autoScrollEdge);
    const int reach = above > 0 ? -above : std::max(0, below);
    return std::clamp(reach, -autoScrollEdge, autoScrollEdge) / autoScrollDivisor;
}
} // namespace

void RackView::mousePressEvent(QMouseEvent *event)
{
    press_ = {};
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const QPoint position = event->position().toPoint();
    const qsizetype index = indexUnder(position);
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool adds = (modifiers & (Qt::ControlModifier | Qt::ShiftModifier)) != Qt::NoModifier;
    if (index < 0) {
        if (!adds && !selection_.isEmpty()) {
            rack_->setSelectionIndexes({});
        }
        return;
    }
    const bool deferred = selection_.contains(index) && !modifiers.testFlag(Qt::ShiftModifier);
    press_ = {.position = position, .index = index, .deferred = deferred};
    setCurrent(index);
    if (!deferred) {
        select(index, modifiers);
    }
}

void RackView::mouseMoveEvent(QMouseEvent *event)
{
    const int distance = (event->position().toPoint() - press_.position).manhattanLength();
    if (press_.index >= 0 && event->buttons().testFlag(Qt::LeftButton) &&
        distance >= QApplication::startDragDistance()) {
        startDrag(std::exchange(press_, {}));
    }
}

void RackView::mouseReleaseEvent(QMouseEvent *event)
{
    const Press press = std::exchange(press_, {});
    if (press.deferred && event->button() == Qt::LeftButton) {
        select(press.index, event->modifiers());
    }
}

/// With Shift, everything from the anchor to `index`; with Control, that station added or taken away.
void RackView::select(qsizetype index, Qt::KeyboardModifiers modifiers)
{
    layOutIfDue();
    if (index < 0 || index >= grid_.count) {
        return;
    }
    const bool control = modifiers.testFlag(Qt::ControlModifier);
    const bool range = modifiers.testFlag(Qt::ShiftModifier) && anchor_.index >= 0;
    const Place anchor = range ? anchor_ : placeOf(index);
    QList<qsizetype> selected = control ? selection_ : QList<qsizetype>();
    if (range) {
        const auto [first, last] = std::minmax(anchor.index, index);
        QList<qsizetype> between(last - first + 1);
        std::iota(between.begin(), between.end(), first);
        selected += between;
    } else if (!control || selected.removeAll(index) == 0) {
        selected.append(index);
    }
    rack_->setSelectionIndexes(selected);
    // Set after the selection: a change of the selection resets the anchor.
    anchor_ = anchor;
    setCurrent(index);
}

void RackView::contextMenuEvent(QContextMenuEvent *event)
{
    layOutIfDue();
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const qsizetype index = byKey ? current_.index : indexUnder(event->pos());
    if (index < 0) {
        event->ignore();
        return;
    }
    if (byKey) {
        scrollToIndex(index);
    }
    if (selection_.contains(index)) {
        setCurrent(index);
    } else {
        select(index, Qt::NoModifier);
    }
    const QPoint middle = placeOfTile(index).center();
    Q_EMIT contextMenuRequested(byKey ? viewport()->mapToGlobal(middle) : event->globalPos());
}

void RackView::keyPressEvent(QKeyEvent *event)
{
    layOutIfDue();
    const auto step = tileStepOf(event->key());
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool moves = (modifiers & ~(Qt::ControlModifier | Qt::ShiftModifier)) == Qt::NoModifier;
    event->setAccepted(grid_.count > 0);
    if (grid_.count == 0) {
        return;
    }
    if (step && moves) {
        stepTo(*step, modifiers);
    } else if (event->matches(QKeySequence::SelectAll)) {
        anchor_ = placeOf(0);
        select(grid_.count - 1, Qt::ShiftModifier);
    } else if (event->key() == Qt::Key_Space && modifiers == Qt::ControlModifier) {
        select(current_.index, modifiers);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        pressEnter();
    } else {
        event->ignore();
    }
}

/// With Control the current tile moves and the selection stays.
void RackView::stepTo(TileStep step, Qt::KeyboardModifiers modifiers)
{
    const bool begins = current_.index < 0 && step != TileStep::last;
    const qsizetype from = std::max<qsizetype>(current_.index, 0);
    const qsizetype to = begins ? 0 : grid_.neighbour(from, step, viewport()->height());
    if (modifiers == Qt::ControlModifier) {
        setCurrent(to);
    } else {
        select(to, modifiers);
    }
    scrollToIndex(to);
}

/// With the focus on a button of the current tile, it presses that button.
void RackView::pressEnter()
{
    if (auto *button = qobject_cast<QAbstractButton *>(QApplication::focusWidget())) {
        button->click();
    } else if (current_.index >= 0) {
        Q_EMIT activated(current_.index);
    }
}

void RackView::setCurrent(qsizetype index)
{
    layOutIfDue();
    if (index < 0 || index >= grid_.count || index == current_.index) {
        return;
    }
    viewport()->update(focusRing());
    current_ = placeOf(index);
    viewport()->update(focusRing());
    showCurrent();
    announceCurrent();
}

/// Has screen readers announce the current tile rather than the rack.
void RackView::announceCurrent()
{
    if (QAccessible::isActive() && hasFocus() && current_.index >= 0) {
        QAccessibleEvent focused(this, QAccessible::Focus);
        focused.setChild(static_cast<int>(current_.index));
        QAccessible::updateAccessibility(&focused);
    }
}

void RackView::showCurrent()
{
    for (std::size_t place = 0; place < tiles_.size(); ++place) {
        RackItem *tile = tiles_[place];
        if (tile == nullptr) {
            continue;
        }
        const bool current = firstShown_ + static_cast<qsizetype>(place) == current_.index;
        const bool becomesCurrent = current && !tile->isCurrent();
        tile->setCurrent(current);
        if (becomesCurrent) {
            // Only now are the buttons in the tab order.
            setTabOrder(this, tile->detailsButton());
            setTabOrder(tile->detailsButton(), tile->playButton());
        }
    }
}

void RackView::startDrag(const Press &press)
{
    layOutIfDue();
    const QList<qsizetype> indexes =
        selection_.contains(press.index) ? selection_ : QList<qsizetype>{press.index};
    auto pasteboard = std::make_unique<QMimeData>();
    if (delegate_ == nullptr || !delegate_->collectionViewWriteItemsAtIndexes(this, indexes, *pasteboard)) {
        return;
    }
    // Qt deletes it when it is over.
    auto *drag = new QDrag(this);
    drag->setMimeData(pasteboard.release());
    if (RackItem *tile = tileAt(press.index)) {
        drag->setPixmap(translucent(tile->grab()));
        drag->setHotSpot(press.position - tile->pos());
    }
    drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
}

const QObject *RackView::originOf(const QDropEvent &event) const
{
    return event.source();
}

bool RackView::accepts(const QDropEvent &event) const
{
    const auto carries = [&event](const QString &type) { return event.mimeData()->hasFormat(type); };
    return delegate_ != nullptr && originOf(event) != nullptr &&
           std::any_of(draggedTypes_.begin(), draggedTypes_.end(), carries);
}

/// Sets the event's action to what a drop there would do. Returns the gap, or -1 where it would do nothing.
qsizetype RackView::proposedGap(QDropEvent &event)
{
    layOutIfDue();
    event.ignore();
    if (!accepts(event)) {
        return -1;
    }
    const qsizetype gap = grid_.gapAt(event.position().toPoint() + QPoint(0, scrollOffset()));
    const Qt::DropAction action = delegate_->collectionViewValidateDrop(this, *event.mimeData(), gap);
    if (action == Qt::IgnoreAction) {
        return -1;
    }
    event.setDropAction(action);
    return gap;
}

void RackView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
}

void RackView::dragMoveEvent(QDragMoveEvent *event)
{
    if (proposedGap(*event) < 0) {
        hideMark();
        return;
    }
    event->accept();
    const QPoint pointer = event->position().toPoint();
    moveMark(pointer);
    if (autoScrollStep(pointer.y(), viewport()->height()) == 0) {
        autoScroll_.stop();
    } else if (!autoScroll_.isActive()) {
        autoScroll_.start(autoScrollMilliseconds, this);
    }
}

void RackView::dragLeaveEvent(QDragLeaveEvent *)
{
    hideMark();
}

void RackView::dropEvent(QDropEvent *event)
{
    hideMark();
    const qsizetype gap = proposedGap(*event);
    if (gap >= 0) {
        event->setAccepted(delegate_->collectionViewAcceptDrop(this, *event->mimeData(), gap));
    }
}

void RackView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != autoScroll_.timerId()) {
        QAbstractScrollArea::timerEvent(event);
    } else if (pointer_) {
        const int step = autoScrollStep(pointer_->y(), viewport()->height());
        verticalScrollBar()->setValue(scrollOffset() + step);
    }
}

void RackView::moveMark(const QPoint &pointer)
{
    pointer_ = pointer;
    const QPoint inContent = pointer + QPoint(0, scrollOffset());
    const QRect mark = grid_.markOf(grid_.gapAt(inContent), inContent).translated(0, -scrollOffset());
    if (mark != mark_) {
        viewport()->update(mark_);
        viewport()->update(mark);
        mark_ = mark;
    }
}

void RackView::hideMark()
{
    autoScroll_.stop();
    pointer_.reset();
    viewport()->update(mark_);
    mark_ = QRect();
}

qsizetype RackView::indexUnder(const QPoint &position)
{
    layOutIfDue();
    return grid_.indexAt(position + QPoint(0, scrollOffset()));
}
