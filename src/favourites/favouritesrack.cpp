#include "favourites/favouritesrack.h"

#include "base/exception.h"

#include <algorithm>
#include <unordered_set>

void FavouritesRack::setRadioItemCollectionArray(const StationRecords &stations)
{
    radioItemCollectionArray_ = stations;
    selected_.clear();
    Q_EMIT reset();
}

void FavouritesRack::insertObjectAtArrangedObjectIndex(const StationRecord &station, qsizetype index)
{
    const qsizetype count = radioItemCollectionArray_.size();
    if (index < 0 || index > count) {
        throw RangeError(QStringLiteral("index %1 beyond bounds [0 .. %2]").arg(index).arg(count));
    }
    radioItemCollectionArray_.insert(index, station);
    Q_EMIT inserted(index);
}

void FavouritesRack::removeObjectAtArrangedObjectIndex(qsizetype index)
{
    elementAt(radioItemCollectionArray_, index);
    radioItemCollectionArray_.removeAt(index);
    Q_EMIT removed(index);
}

void FavouritesRack::addObject(const StationRecord &station)
{
    insertObjectAtArrangedObjectIndex(station, radioItemCollectionArray_.size());
}

void FavouritesRack::rearrangeObjects()
{
    Q_EMIT rearranged();
}

void FavouritesRack::setValue(const StationRecord &station, RadioField field, const QVariant &value)
{
    station->setValue(field, value);
    const qsizetype index = indexOf(station.get());
    if (index >= 0) {
        Q_EMIT edited(index);
    }
}

qsizetype FavouritesRack::indexOf(const RadioModel *station) const
{
    const auto found = std::find_if(radioItemCollectionArray_.begin(), radioItemCollectionArray_.end(),
                                    [station](const StationRecord &one) { return one.get() == station; });
    return found == radioItemCollectionArray_.end() ? -1
                                                    : std::distance(radioItemCollectionArray_.begin(), found);
}

QList<qsizetype> FavouritesRack::selectionIndexes() const
{
    std::unordered_set<const RadioModel *> selected;
    for (const auto &station : selected_) {
        selected.insert(station.lock().get());
    }
    QList<qsizetype> indexes;
    for (qsizetype index = 0; index < radioItemCollectionArray_.size() && !selected.empty(); ++index) {
        if (selected.contains(radioItemCollectionArray_.at(index).get())) {
            indexes.append(index);
        }
    }
    return indexes;
}

void FavouritesRack::setSelectionIndexes(const QList<qsizetype> &indexes)
{
    selected_.clear();
    for (const qsizetype index : indexes) {
        if (index >= 0 && index < radioItemCollectionArray_.size()) {
            selected_.emplace_back(radioItemCollectionArray_.at(index));
        }
    }
    Q_EMIT selectionChanged();
}
