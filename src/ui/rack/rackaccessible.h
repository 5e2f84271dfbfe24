#pragma once

#include "ui/rack/rackview.h"

#include <QAccessibleWidget>
#include <array>
#include <map>
#include <set>
#include <vector>

/// A non-owning reference to a station.
using WeakStation = std::weak_ptr<RadioModel>;

/// A rack as a list. Its children stand for stations, not for places: one that moves keeps its child.
class RackAccessible final : public QAccessibleWidget
{
public:
    explicit RackAccessible(RackView *rackView)
        : QAccessibleWidget(rackView, QAccessible::List)
    {
    }

    /// Null while the view is being destroyed.
    RackView *view() const { return qobject_cast<RackView *>(object()); }
    /// Null where the view has none, or not any more.
    FavouritesRack *rack() const { return view() != nullptr ? view()->rack() : nullptr; }
    /// The station's index among the children; -1 where it is none of them.
    qsizetype placeOf(const WeakStation &station) const;
    /// Null for a station that is not in the rack.
    QAccessibleInterface *childOf(const WeakStation &station) const;

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
    QAccessible::State state() const override;

protected:
    ~RackAccessible() override;

private:
    using Selection = std::set<WeakStation, std::owner_less<>>;

    void connectRack() const;
    void rackChanged() const;
    void follow() const;
    void followOrder(const StationRecords &order) const;
    void followSelection() const;
    void dropChildren() const;
    void announce(QAccessible::Event type, const WeakStation &station) const;

    /// Ends the connections with this object.
    mutable QObject context_;
    mutable bool connected_ = false;
    // The rack as it has been announced; brought up to date on demand, or one turn of the event loop after a
    // change.
    mutable bool due_ = true;
    mutable std::vector<WeakStation> stations_;
    mutable Selection selected_;
    /// Made on demand.
    mutable std::map<WeakStation, QAccessible::Id, std::owner_less<>> children_;
};

/// One station of the rack. Its list owns it.
class RackStationAccessible final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    RackStationAccessible(const RackAccessible &list, WeakStation station)
        : list_(list)
        , station_(std::move(station))
    {
    }

    const WeakStation &station() const { return station_; }

    bool isValid() const override { return list_.isValid() && list_.placeOf(station_) >= 0; }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return list_.window(); }
    QAccessibleInterface *parent() const override { return const_cast<RackAccessible *>(&list_); }
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    QString localizedActionName(const QString &name) const override;
    void doAction(const QString &name) override;
    QStringList keyBindingsForAction(const QString &name) const override;

private:
    /// The station's current index in the rack; -1 where it is not in it.
    qsizetype index() const;
    static QString description(const RadioModel &station);
    /// Null where the station has none: tiles exist only for visible rows and the rows next to them.
    RackItem *tile() const;
    std::array<QToolButton *, 2> buttons() const;

    const RackAccessible &list_;
    WeakStation station_;
};
