#include "mainwindow/rackcommands.h"

#include "mainwindow/rackactions.h"
#include "ui/rack/rackitem.h"
#include "ui/rack/rackview.h"
#include "ui/widgets/copytext.h"
#include "ui_mainwindow.h"

#include <QMenu>
#include <QMimeData>
#include <algorithm>
#include <utility>

RackCommands::RackCommands(const Ui::MainWindow &ui, FavouritesRack &rack, RackActions &actions)
    : rack_(rack)
    , actions_(actions)
    , view_(*ui.myCollectionView)
{
    bindMenu(ui);
    connect(&view_, &RackView::activated, this, &RackCommands::play);
    const auto changed = [this] { removed_.clear(); };
    connect(&rack_, &FavouritesRack::reset, this, changed);
    connect(&rack_, &FavouritesRack::inserted, this, changed);
    connect(&rack_, &FavouritesRack::removed, this, changed);
    connect(&rack_, &FavouritesRack::edited, this, changed);

    const auto enable = [this, &ui] { enableActions(ui); };
    connect(&rack_, &FavouritesRack::selectionChanged, this, enable);
    connect(&rack_, &FavouritesRack::rearranged, this, enable);
    connect(&rack_, &FavouritesRack::edited, this, enable);
    connect(&rack_, &FavouritesRack::inserted, this, enable);
    connect(&rack_, &FavouritesRack::removed, this, enable);
    connect(&rack_, &FavouritesRack::reset, this, enable);
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
    connect(ui.copyFavouriteNameAction, &QAction::triggered, this, [this] { copy(RadioField::name); });
    connect(ui.copyFavouriteAddressAction, &QAction::triggered, this, [this] { copy(RadioField::url); });
    connect(ui.removeFavouriteAction, &QAction::triggered, this, &RackCommands::removeSelected);
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
    ui.undoRemovalAction->setEnabled(!removed_.empty());
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
    if (const RackItem *item = itemInView(index)) {
        actions_.doubleClickRVImage(item->artwork());
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
    if (from < 0 || to < 0 || to >= rack_.radioItemCollectionArray().size()) {
        return;
    }
    QMimeData pasteboard;
    if (actions_.collectionViewWriteItemsAtIndexes(&view_, {from}, pasteboard)) {
        actions_.collectionViewAcceptDrop(&view_, pasteboard, to);
        view_.scrollToIndex(to);
    }
}

void RackCommands::copy(RadioField field)
{
    const qsizetype index = selectedIndex();
    if (index >= 0) {
        copyText(rack_.radioItemCollectionArray().at(index)->text(field));
    }
}

void RackCommands::removeSelected()
{
    const QList<qsizetype> indexes = rack_.selectionIndexes();
    std::vector<Removed> removed;
    for (auto index = indexes.crbegin(); index != indexes.crend(); ++index) {
        removed.push_back({rack_.radioItemCollectionArray().at(*index), *index});
        rack_.removeObjectAtArrangedObjectIndex(*index);
        actions_.forget(removed.back().station);
    }
    if (removed.empty()) {
        return;
    }
    std::reverse(removed.begin(), removed.end());
    removed_ = std::move(removed);
    // The tile that has moved up is the next one to be worked on.
    const qsizetype last = rack_.radioItemCollectionArray().size() - 1;
    rack_.setSelectionIndexes({std::min(removed_.front().index, last)});
    rack_.rearrangeObjects();
}

void RackCommands::undoRemoval()
{
    QList<qsizetype> indexes;
    for (const Removed &one : std::exchange(removed_, {})) {
        rack_.insertObjectAtArrangedObjectIndex(one.station, one.index);
        indexes.append(one.index);
    }
    if (!indexes.isEmpty()) {
        rack_.setSelectionIndexes(indexes);
        rack_.rearrangeObjects();
        view_.scrollToIndex(indexes.constFirst());
    }
}
