#include "ui/rack/rackaccessible.h"

#include <algorithm>
#include <utility>

namespace {
/// More changes of the selection than this are announced as one.
constexpr std::size_t mostSelectionEvents = 8;

bool isSame(const WeakStation &one, const WeakStation &other)
{
    return !one.owner_before(other) && !other.owner_before(one);
}
} // namespace

RackAccessible::~RackAccessible()
{
    for (const auto &[station, id] : std::exchange(children_, {})) {
        QAccessible::deleteAccessibleInterface(id);
    }
}

void RackAccessible::connectRack() const
{
    const auto changed = [this] { rackChanged(); };
    QObject::connect(rack(), &FavouritesRack::reset, &context_, changed);
    QObject::connect(rack(), &FavouritesRack::inserted, &context_, changed);
    QObject::connect(rack(), &FavouritesRack::removed, &context_, changed);
    QObject::connect(rack(), &FavouritesRack::selectionChanged, &context_, changed);
    QObject::connect(rack(), &QObject::destroyed, &context_, changed);
    QObject::connect(rack(), &FavouritesRack::edited, &context_, [this](qsizetype index) {
        const StationRecord station = rack()->radioItemCollectionArray().at(index);
        announce(QAccessible::NameChanged, station);
        announce(QAccessible::DescriptionChanged, station);
    });
}

/// Several changes in one turn of the event loop, such as a move, are announced by their result.
void RackAccessible::rackChanged() const
{
    if (!due_) {
        due_ = true;
        QMetaObject::invokeMethod(
            &context_, [this] { follow(); }, Qt::QueuedConnection);
    }
}

void RackAccessible::follow() const
{
    if (!connected_ && rack() == nullptr) {
        return;
    }
    if (!std::exchange(connected_, true)) {
        connectRack();
    }
    if (std::exchange(due_, false)) {
        followOrder(rack() != nullptr ? rack()->radioItemCollectionArray() : StationRecords());
        followSelection();
        dropChildren();
    }
}

/// One station at a time, so that each announcement finds the list as it stands at that moment. What moves
/// leaves and comes back.
void RackAccessible::followOrder(const StationRecords &order) const
{
    const auto [oldMiddle, newMiddle] =
        std::mismatch(stations_.begin(), stations_.end(), order.begin(), order.end(), isSame);
    const auto [oldBack, newBack] =
        std::mismatch(stations_.rbegin(), std::make_reverse_iterator(oldMiddle), order.rbegin(),
                      std::make_reverse_iterator(newMiddle), isSame);
    const auto front = oldMiddle - stations_.begin();
    const auto added = order.mid(front, newBack.base() - newMiddle);
    for (auto end = oldBack.base() - stations_.begin(); end > front; --end) {
        announce(QAccessible::ObjectDestroyed, stations_[static_cast<std::size_t>(end - 1)]);
        stations_.erase(stations_.begin() + end - 1);
    }
    for (qsizetype index = 0; index < added.size(); ++index) {
        stations_.insert(stations_.begin() + front + index, added.at(index));
        announce(QAccessible::ObjectCreated, added.at(index));
    }
}

void RackAccessible::followSelection() const
{
    const Selection before = std::exchange(selected_, {});
    if (rack() == nullptr) {
        return;
    }
    for (const qsizetype index : rack()->selectionIndexes()) {
        selected_.insert(rack()->radioItemCollectionArray().at(index));
    }
    std::vector<WeakStation> changed;
    std::set_symmetric_difference(before.begin(), before.end(), selected_.begin(), selected_.end(),
                                  std::back_inserter(changed), std::owner_less<>());
    if (changed.size() > mostSelectionEvents) {
        QAccessibleEvent many(object(), QAccessible::SelectionWithin);
        QAccessible::updateAccessibility(&many);
        return;
    }
    for (const WeakStation &station : changed) {
        announce(!selected_.contains(station) ? QAccessible::SelectionRemove
                 : selected_.size() == 1      ? QAccessible::Selection
                                              : QAccessible::SelectionAdd,
                 station);
    }
}

/// Drops the children whose stations are no longer in the rack.
void RackAccessible::dropChildren() const
{
    std::erase_if(children_, [this](const auto &child) {
        const bool isGone = placeOf(child.first) < 0;
        if (isGone) {
            QAccessible::deleteAccessibleInterface(child.second);
        }
        return isGone;
    });
}

void RackAccessible::announce(QAccessible::Event type, const WeakStation &station) const
{
    if (!QAccessible::isActive()) {
        return;
    }
    if (QAccessibleInterface *child = childOf(station)) {
        QAccessibleEvent event(child, type);
        QAccessible::updateAccessibility(&event);
    }
}

qsizetype RackAccessible::placeOf(const WeakStation &station) const
{
    const auto found = std::find_if(stations_.begin(), stations_.end(),
                                    [&station](const WeakStation &one) { return isSame(one, station); });
    return found == stations_.end() ? -1 : found - stations_.begin();
}

QAccessibleInterface *RackAccessible::childOf(const WeakStation &station) const
{
    follow();
    if (const auto made = children_.find(station); made != children_.end()) {
        return QAccessible::accessibleInterface(made->second);
    }
    if (placeOf(station) < 0) {
        return nullptr;
    }
    auto *child = new RackStationAccessible(*this, station);
    children_.emplace(station, QAccessible::registerAccessibleInterface(child));
    return child;
}

int RackAccessible::childCount() const
{
    follow();
    return static_cast<int>(stations_.size());
}

QAccessibleInterface *RackAccessible::child(int index) const
{
    return index >= 0 && index < childCount() ? childOf(stations_[static_cast<std::size_t>(index)]) : nullptr;
}

int RackAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    follow();
    const auto *item = dynamic_cast<const RackStationAccessible *>(child);
    return item != nullptr ? static_cast<int>(placeOf(item->station())) : -1;
}

QAccessibleInterface *RackAccessible::childAt(int x, int y) const
{
    const QPoint inViewport = view()->viewport()->mapFromGlobal(QPoint(x, y));
    return view()->viewport()->rect().contains(inViewport)
               ? child(static_cast<int>(view()->indexUnder(inViewport)))
               : nullptr;
}

QAccessibleInterface *RackAccessible::focusChild() const
{
    if (view()->hasFocus()) {
        return child(static_cast<int>(view()->currentIndex()));
    }
    QWidget *focus = view()->focusWidget();
    return focus != nullptr && focus->hasFocus() ? QAccessible::queryAccessibleInterface(focus) : nullptr;
}

QAccessible::State RackAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.multiSelectable = true;
    state.extSelectable = true;
    return state;
}
