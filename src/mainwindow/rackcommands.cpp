#include "mainwindow/rackcommands.h"

#include "base/displaytext.h"
#include "mainwindow/rackactions.h"
#include "session/radiosession.h"
#include "ui/rack/rackitem.h"
#include "ui/rack/rackview.h"
#include "ui/widgets/copytext.h"
#include "ui_mainwindow.h"

#include <QMenu>

RackCommands::RackCommands(const Ui::MainWindow &ui, RadioSession &session, RackActions &actions)
    : session_(session)
    , favourites_(session.favourites())
    , rack_(favourites_.rack())
    , actions_(actions)
    , view_(*ui.myCollectionView)
{
    bindMenu(ui);
    connect(&view_, &RackView::activated, this, &RackCommands::play);
    const auto enable = [this, &ui] { enableActions(ui); };
    connect(&rack_, &FavouritesRack::selectionChanged, this, enable);
    connect(&rack_, &FavouritesRack::rearranged, this, enable);
    connect(&rack_, &FavouritesRack::edited, this, enable);
    connect(&rack_, &FavouritesRack::inserted, this, enable);
    connect(&rack_, &FavouritesRack::removed, this, enable);
    connect(&rack_, &FavouritesRack::reset, this, enable);
    connect(&favourites_, &Favourites::canUndoRemovalChanged, this, enable);
    enable();
}

void RackCommands::bindMenu(const Ui::MainWindow &ui)
{
    connect(ui.playFavouriteAction, &QAction::triggered, this, [this] { play(selectedIndex()); });
    connect(ui.favouriteDetailsAction, &QAction::triggered, this, &RackCommands::showDetails);
    const auto moveVisually = [this](int places) {
        move(view_.layoutDirection() == Qt::RightToLeft ? -places : places);
    };
    connect(ui.moveLeftAction, &QAction::triggered, this, [moveVisually] { moveVisually(-1); });
    connect(ui.moveRightAction, &QAction::triggered, this, [moveVisually] { moveVisually(1); });
    connect(ui.copyFavouriteNameAction, &QAction::triggered, this,
            [this] { copyText(selectedText(RadioField::name)); });
    connect(ui.copyFavouriteAddressAction, &QAction::triggered, this,
            [this] { copyText(withoutUserInfo(selectedText(RadioField::url))); });
    connect(ui.removeFavouriteAction, &QAction::triggered, this,
            [this] { favourites_.remove(rack_.selectionIndexes()); });
    connect(ui.undoRemovalAction, &QAction::triggered, this, &RackCommands::undoRemoval);

    // Keys that mean something else elsewhere.
    for (QAction *action :
         {ui.favouriteDetailsAction, ui.moveLeftAction, ui.moveRightAction, ui.copyFavouriteNameAction,
          ui.copyFavouriteAddressAction, ui.removeFavouriteAction}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        view_.addAction(action);
    }
    auto *contextMenu = new QMenu(&view_);
    contextMenu->addActions({ui.playFavouriteAction, ui.favouriteDetailsAction});
    contextMenu->addSeparator();
    contextMenu->addActions({ui.copyFavouriteNameAction, ui.copyFavouriteAddressAction});
    contextMenu->addSeparator();
    contextMenu->addActions({ui.moveLeftAction, ui.moveRightAction, ui.removeFavouriteAction});
    connect(&view_, &RackView::contextMenuRequested, contextMenu,
            [contextMenu](const QPoint &position) { contextMenu->popup(position); });
}

void RackCommands::enableActions(const Ui::MainWindow &ui)
{
    const bool any = selectedIndex() >= 0;
    for (QAction *action :
         {ui.playFavouriteAction, ui.favouriteDetailsAction, ui.moveLeftAction, ui.moveRightAction,
          ui.copyFavouriteNameAction, ui.copyFavouriteAddressAction, ui.removeFavouriteAction}) {
        action->setEnabled(any);
    }
    for (QAction *action : {ui.nextFavouriteAction, ui.previousFavouriteAction}) {
        action->setEnabled(!rack_.radioItemCollectionArray().isEmpty());
    }
    ui.undoRemovalAction->setEnabled(favourites_.canUndoRemoval());
}

qsizetype RackCommands::selectedIndex() const
{
    const QList<qsizetype> selection = rack_.selectionIndexes();
    const qsizetype current = view_.currentIndex();
    return selection.contains(current) ? current : selection.value(0, -1);
}

const RackItem *RackCommands::itemInView(qsizetype index)
{
    view_.scrollToIndex(index);
    return view_.itemAtIndex(index);
}

void RackCommands::play(qsizetype index)
{
    const StationRecord station = rack_.radioItemCollectionArray().value(index);
    if (station) {
        view_.scrollToIndex(index);
        actions_.select(station);
        session_.playRecord(station);
    }
}

void RackCommands::showDetails()
{
    if (const RackItem *item = itemInView(selectedIndex())) {
        actions_.itemButtonAction(item->detailsButton());
    }
}

void RackCommands::move(int places)
{
    const qsizetype from = selectedIndex();
    const qsizetype to = from + places;
    if (from >= 0 && to >= 0 && to < rack_.radioItemCollectionArray().size()) {
        favourites_.move(from, to);
        view_.scrollToIndex(to);
    }
}

QString RackCommands::selectedText(RadioField field) const
{
    const qsizetype index = selectedIndex();
    return index >= 0 ? rack_.radioItemCollectionArray().at(index)->text(field) : QString();
}

void RackCommands::undoRemoval()
{
    if (const qsizetype index = favourites_.undoRemoval(); index >= 0) {
        view_.scrollToIndex(index);
    }
}
