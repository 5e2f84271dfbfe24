#pragma once

#include <QObject>

class QMenu;
class RVTableView;
class RackView;
class RadioSession;
class StationEntry;
class StationTable;

namespace Ui {
class MainWindow;
}

/// What the layout adds to the station table for menu and keyboard: adding the selected station to the
/// favourites, copying its name or address, and sorting by a column.
class TableCommands : public QObject
{
    Q_OBJECT

public:
    /// Everything must outlive this object.
    TableCommands(const Ui::MainWindow &ui, StationTable &stations, RadioSession &session);

private:
    void fillSortMenu(QMenu &menu);
    void addToRack();
    /// The station that a drag would carry; null where no row is selected. Valid until the table changes.
    const StationEntry *selectedStation() const;

    RVTableView &table_;
    RackView &rackView_;
    StationTable &stations_;
    RadioSession &session_;
};
