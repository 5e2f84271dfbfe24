#pragma once

#include "favourites/favouritesrack.h"

#include <QObject>

class Favourites;
class QAction;
class RackActions;
class RackItem;
class RackView;
class RadioSession;

namespace Ui {
class MainWindow;
}

/// What the layout adds to the rack for menu and keyboard: playing, details, moving by one place, copying,
/// removing and taking a removal back. Each calls the same operation as its counterpart with the pointer.
class RackCommands : public QObject
{
    Q_OBJECT

public:
    /// Everything must outlive this object.
    RackCommands(const Ui::MainWindow &ui, RadioSession &session, RackActions &actions);

private:
    void bindMenu(const Ui::MainWindow &ui);
    void enableActions(const Ui::MainWindow &ui);
    /// The selected tile that the keys are at, or the first one; -1 where none is selected.
    qsizetype selectedIndex() const;
    /// The tile, brought into view; null where there is no such index.
    const RackItem *itemInView(qsizetype index);
    void play(qsizetype index);
    void showDetails();
    void move(int places);
    /// Empty where no tile is selected.
    QString selectedText(RadioField field) const;
    void undoRemoval();

    RadioSession &session_;
    Favourites &favourites_;
    FavouritesRack &rack_;
    RackActions &actions_;
    RackView &view_;
};
