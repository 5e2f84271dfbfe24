#include "mainwindow/rackactions.h"

#include "base/exception.h"
#include "ui/drag/dragpayload.h"
#include "ui/rack/rackitem.h"
#include "ui/rack/stationpopover.h"

#include <QAbstractButton>
#include <QLoggingCategory>
#include <QMimeData>
#include <algorithm>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcRack, "plumtide.rack")

/// What a station from the table carries; bass and middle differ from those of any other new record.
constexpr double droppedVolume = 6.0;
constexpr double droppedBass = 5.0;
constexpr double droppedMidrange = 5.0;
constexpr double droppedTreble = 6.0;
} // namespace

RackActions::RackActions(FavouritesRack &rack, const RackOutlets &outlets,
                         DroppedStationAddress droppedStationAddress, QObject *parent)
    : QObject(parent)
    , rack_(rack)
    , outlets_(outlets)
    , droppedStationAddress_(std::move(droppedStationAddress))
{
    for (StationPopover *popover : popovers()) {
        connect(popover, &StationPopover::edited, &rack_, &FavouritesRack::setValue);
    }
    connect(outlets_.myCollectionView, &RackView::scrolled, this, &RackActions::followTiles);
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

void RackActions::forget(const StationRecord &station)
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
            Q_EMIT playRequested(station->text(RadioField::url), station->text(RadioField::name));
        }
        break;
    default:
        break;
    }
}

void RackActions::doubleClickRVImage(RVImageView *sender)
{
    const StationRecord station = selectStationOf(sender);
    if (!station) {
        return;
    }
    if (station->flag(RadioField::custom)) {
        Q_EMIT playCustomRequested(station);
    } else {
        Q_EMIT playRequested(station->text(RadioField::url), station->text(RadioField::name));
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
        rack_.setSelectionIndexes({rack_.indexOf(found.get())});
        selectedRadioModel_ = found;
    }
    return found;
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
            insertStation(newRadioModel(*entry), index);
        }
        return entry.has_value();
    }
    if (pasteboard.hasFormat(DragPayload::tilesType)) {
        const auto indexes = DragPayload::tiles(pasteboard.data(DragPayload::tilesType));
        if (indexes) {
            moveTile(*indexes, index);
        }
        return indexes.has_value();
    }
    return false;
}

StationRecord RackActions::newRadioModel(const StationEntry &entry) const
{
    auto station = std::make_shared<RadioModel>();
    station->setName(entry.value(QLatin1StringView("name")));
    station->setGenre(entry.value(QLatin1StringView("genre")));
    station->setMid(entry.value(QLatin1StringView("id")));
    station->setMountType(entry.value(QLatin1StringView("mt")));
    station->setBitrate(entry.value(QLatin1StringView("bitrate")));
    station->setVolume(droppedVolume);
    station->setBass(droppedBass);
    station->setMidrange(droppedMidrange);
    station->setTreble(droppedTreble);
    station->setCustom({});
    const QString address = droppedStationAddress_(entry);
    if (!address.isNull()) {
        station->setUrl(address);
    }
    return station;
}

/// At the front where there is no such index.
void RackActions::insertStation(const StationRecord &station, qsizetype index)
{
    try {
        rack_.insertObjectAtArrangedObjectIndex(station, index);
    } catch (const Exception &) {
        rack_.insertObjectAtArrangedObjectIndex(station, 0);
    }
    rack_.rearrangeObjects();
    qCInfo(lcRack) << "repositioning complete";
}

/// Only the first of the tiles moves, however many were dragged. The index counts from before the tile was
/// taken out: one that moves towards the end lands behind the tile that followed the gap.
void RackActions::moveTile(const QList<qsizetype> &indexes, qsizetype index)
{
    try {
        const qsizetype from = *std::min_element(indexes.cbegin(), indexes.cend());
        const StationRecord item = elementAt(rack_.radioItemCollectionArray(), from);
        const qsizetype count = rack_.radioItemCollectionArray().size();
        if (index > count) {
            return;
        }
        rack_.removeObjectAtArrangedObjectIndex(from);
        rack_.insertObjectAtArrangedObjectIndex(item, index == count ? rack_.radioItemCollectionArray().size()
                                                                     : index);
        rack_.rearrangeObjects();
    } catch (const Exception &exception) {
        qCWarning(lcRack).noquote() << "e" << exception.reason();
    }
}
