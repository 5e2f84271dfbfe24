#include "mainwindow/rackactions.h"

#include "base/exception.h"
#include "session/radiosession.h"
#include "ui/drag/dragpayload.h"
#include "ui/rack/rackitem.h"
#include "ui/rack/stationpopover.h"

#include <QAbstractButton>
#include <QMimeData>
#include <algorithm>

RackActions::RackActions(RadioSession &session, const RackOutlets &outlets, QObject *parent)
    : QObject(parent)
    , session_(session)
    , rack_(session.favourites().rack())
    , outlets_(outlets)
{
    for (StationPopover *popover : popovers()) {
        connect(popover, &StationPopover::edited, &rack_, &FavouritesRack::setValue);
    }
    connect(outlets_.myCollectionView, &RackView::scrolled, this, &RackActions::followTiles);
    connect(&session_.favourites(), &Favourites::stationRemoved, this, &RackActions::stationRemoved);
}

std::array<StationPopover *, 2> RackActions::popovers() const
{
    return {outlets_.favoritPopOver, outlets_.customRadioEditorPopOver};
}

/// The details stay beside their station's tile, whichever widget that is by now.
void RackActions::followTiles()
{
    for (StationPopover *popover : popovers()) {
        const qsizetype index = popover->isShown() ? rack_.indexOf(popover->station().get()) : -1;
        if (index < 0) {
            continue;
        }
        const RackItem *item = outlets_.myCollectionView->itemAtIndex(index);
        if (item != nullptr && !item->detailsButton()->visibleRegion().isEmpty()) {
            popover->follow(item->detailsButton());
        } else {
            popover->leave(outlets_.myCollectionView);
        }
    }
}

/// It is no longer the selected one, and its details close.
void RackActions::stationRemoved(const StationRecord &station)
{
    for (StationPopover *popover : popovers()) {
        if (popover->station() == station) {
            popover->close();
        }
    }
    if (selectedRadioModel() == station) {
        selectedRadioModel_.reset();
    }
}

void RackActions::itemButtonAction(QAbstractButton *sender)
{
    selectStationOf(sender);
    const StationRecord station = selectedRadioModel();
    switch (sender->property("tag").toInt()) {
    case RackItem::detailsTag: {
        StationPopover *popover = station && station->flag(RadioField::custom)
                                      ? outlets_.customRadioEditorPopOver
                                      : outlets_.favoritPopOver;
        if (popover->isShown()) {
            popover->close();
            selectedRadioModel_.reset();
        } else {
            popover->setStation(station);
            popover->showRelativeTo(sender->rect(), sender, Popover::Side::Above);
        }
        break;
    }
    case RackItem::playTag:
        if (station) {
            outlets_.favoritPopOver->close();
            session_.playRecordUrl(station);
        }
        break;
    default:
        break;
    }
}

void RackActions::doubleClickRVImage(RVImageView *sender)
{
    if (const StationRecord station = selectStationOf(sender)) {
        session_.playRecord(station);
    }
}

/// Selects the station whose tile `sender` lies in and gives it; null, and nothing changes, where it lies in
/// none.
StationRecord RackActions::selectStationOf(const QWidget *sender)
{
    const StationRecords &stations = rack_.radioItemCollectionArray();
    StationRecord found;
    for (qsizetype index = 0; index < outlets_.myCollectionView->numberOfItems(); ++index) {
        const RackItem *item = outlets_.myCollectionView->itemAtIndex(index);
        if (item != nullptr && (item == sender || item->isAncestorOf(sender))) {
            found = elementAt(stations, index);
        }
    }
    if (found) {
        select(found);
    }
    return found;
}

void RackActions::select(const StationRecord &station)
{
    rack_.setSelectionIndexes({rack_.indexOf(station.get())});
    selectedRadioModel_ = station;
}

bool RackActions::collectionViewWriteItemsAtIndexes(RackView *view, const QList<qsizetype> &indexes,
                                                    QMimeData &pasteboard)
{
    if (view != outlets_.myCollectionView || indexes.isEmpty()) {
        return false;
    }
    pasteboard.setData(DragPayload::tilesType, DragPayload::ofTiles(indexes));
    return true;
}

Qt::DropAction RackActions::collectionViewValidateDrop(RackView *, const QMimeData &, qsizetype)
{
    return Qt::CopyAction;
}

bool RackActions::collectionViewAcceptDrop(RackView *, const QMimeData &pasteboard, qsizetype index)
{
    if (pasteboard.hasFormat(DragPayload::stationType)) {
        const auto entry = DragPayload::station(pasteboard.data(DragPayload::stationType));
        if (entry) {
            session_.favourites().add(*entry, index);
        }
        return entry.has_value();
    }
    if (pasteboard.hasFormat(DragPayload::tilesType)) {
        const auto indexes = DragPayload::tiles(pasteboard.data(DragPayload::tilesType));
        if (indexes) {
            // Only the first of the tiles moves, however many were dragged.
            session_.favourites().move(*std::min_element(indexes->cbegin(), indexes->cend()), index);
        }
        return indexes.has_value();
    }
    return false;
}
