#pragma once

#include <QObject>
#include <functional>

class QMenu;
class RVTableView;
class RackActions;
class RackView;
class StationTable;

namespace Ui {
class MainWindow;
}

/// What the layout adds to the station table for menu and keyboard: adding the selected station to the rack,
/// by the same way as a drag and drop, copying its name or address, and sorting by a column.
class TableCommands : public QObject
{
    Q_OBJECT

public:
    /// Something about the station in a row; null where there is none.
    using RowText = std::function<QString(int row)>;

    /// Everything must outlive this object. `rowAddress` gives the address that a station is played from.
    TableCommands(const Ui::MainWindow &ui, StationTable &stations, RackActions &actions, RowText rowAddress);

private:
    void fillSortMenu(QMenu &menu);
    void addToRack();
    void copyName();
    void copyAddress();
    /// Of the row that a drag would carry.
    void copy(const RowText &textOf);

    RVTableView &table_;
    RackView &rackView_;
    StationTable &stations_;
    RackActions &actions_;
    RowText rowAddress_;
};
