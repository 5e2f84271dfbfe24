#pragma once

#include "favourites/archive/favouritesstore.h"
#include "favourites/favouritesrack.h"

#include <QObject>
#include <vector>

class DirectorySource;
class StationEntry;

/// The user's favourites: the list, the file that keeps it, and what is done with them by record. Main
/// thread.
class Favourites : public QObject
{
    Q_OBJECT

public:
    /// The directory must outlive this object.
    explicit Favourites(const DirectorySource &directory);

    /// Takes the list from the file, empty where there is none that can be read.
    void read();
    /// Makes the file's folder where it is missing, and claims the file for this program.
    void claim();
    /// Writes the list into the file. Whether that worked.
    bool save();
    /// Leaves the file to the next program that wants it.
    void release();

    FavouritesRack &rack() { return rack_; }

    /// Makes a favourite of a station of the directory and puts it before the one at `index`; at the front
    /// where there is no such place.
    void add(const StationEntry &station, qsizetype index);
    /// Puts a station at the end.
    void add(const StationRecord &station);
    /// Puts a station that the user has yet to fill in at the front.
    void addBlank();
    /// Takes the station at `from` out and puts it in at `to`, which counts from before it was taken out: one
    /// that moves towards the end lands behind the station that followed the gap. Does nothing where there is
    /// no such place; a line in the log says so for a `from` that there is not.
    void move(qsizetype from, qsizetype to);
    /// Takes the stations at `indexes`, which ascend, out, and selects the one that has moved up. Raises
    /// RangeError for an index that there is not.
    void remove(const QList<qsizetype> &indexes);
    /// Puts back, and selects, what was removed last. Gives the first one's place; -1 where there is nothing
    /// to put back, because the list has been changed since.
    qsizetype undoRemoval();
    bool canUndoRemoval() const { return !removed_.empty(); }

Q_SIGNALS:
    /// The station has left the list for good, unless the removal is undone.
    void stationRemoved(const StationRecord &station);
    void canUndoRemovalChanged();

private:
    struct Removed
    {
        StationRecord station;
        qsizetype index;
    };

    void setRemoved(std::vector<Removed> removed);

    const DirectorySource &directory_;
    FavouritesStore store_;
    FavouritesRack rack_;
    /// In ascending order; empty once the list has changed since.
    std::vector<Removed> removed_;
};
