#pragma once

#include "favourites/radiomodel.h"

#include <QObject>
#include <memory>
#include <vector>

/// The favourites rack: the user's stations in the user's order, never sorted and never filtered, and which
/// of them are selected. Every change goes through it, and what shows the rack follows its signals. Main
/// thread.
class FavouritesRack : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The list that is saved.
    const StationRecords &radioItemCollectionArray() const { return radioItemCollectionArray_; }
    /// Replaces the whole list; nothing is selected then.
    void setRadioItemCollectionArray(const StationRecords &stations);

    /// Raises RangeError for an index beyond the end; the end itself is one to insert at.
    void insertObjectAtArrangedObjectIndex(const StationRecord &station, qsizetype index);
    /// Raises RangeError where there is no such index.
    void removeObjectAtArrangedObjectIndex(qsizetype index);
    /// At the end.
    void addObject(const StationRecord &station);
    /// Applies the rack's order, which is the user's own, and so ends a change: nothing moves, and the views
    /// that show the rack may draw it now.
    void rearrangeObjects();

    /// Writes one field of a station, which need not be in the rack.
    void setValue(const StationRecord &station, RadioField field, const QVariant &value);

    /// The index of that very record (not of an equal one); -1 where it is not in the rack.
    qsizetype indexOf(const RadioModel *station) const;

    /// In ascending order. A selected station stays selected where it moves.
    QList<qsizetype> selectionIndexes() const;
    /// Indexes beyond the list are ignored.
    void setSelectionIndexes(const QList<qsizetype> &indexes);

Q_SIGNALS:
    /// The list has been replaced.
    void reset();
    void inserted(qsizetype index);
    void removed(qsizetype index);
    void rearranged();
    /// A field of the station at `index` has been written.
    void edited(qsizetype index);
    void selectionChanged();

private:
    StationRecords radioItemCollectionArray_;
    /// By record, not by index: a move takes a station out and puts it back.
    std::vector<std::weak_ptr<RadioModel>> selected_;
};
