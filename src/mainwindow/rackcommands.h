#pragma once

#include "favourites/favouritesrack.h"

#include <QObject>
#include <vector>

class QAction;
class RackActions;
class RackItem;
class RackView;

namespace Ui {
class MainWindow;
}

/// What the layout adds to the rack for menu and keyboard: playing, details, moving by one place, copying,
/// removing and taking a removal back. Each goes the same way as its counterpart with the pointer.
class RackCommands : public QObject
{
    Q_OBJECT

public:
    /// Everything must outlive this object.
    RackCommands(const Ui::MainWindow &ui, FavouritesRack &rack, RackActions &actions);

private:
    struct Removed
    {
        StationRecord station;
        qsizetype index;
    };

    void bindMenu(const Ui::MainWindow &ui);
    void enableActions(const Ui::MainWindow &ui);
    /// The selected tile that the keys are at, or the first one; -1 where none is selected.
    qsizetype selectedIndex() const;
    /// The tile, brought into view; null where there is no such index.
    const RackItem *itemInView(qsizetype index);
    void play(qsizetype index);
    void showDetails();
    void move(int places);
    void copy(RadioField field);
    void removeSelected();
    void undoRemoval();

    FavouritesRack &rack_;
    RackActions &actions_;
    RackView &view_;
    /// In ascending order; empty once the rack has changed since.
    std::vector<Removed> removed_;
};
