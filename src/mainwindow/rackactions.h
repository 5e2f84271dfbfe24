#pragma once

#include "favourites/radiomodel.h"
#include "ui/rack/rackview.h"

#include <QObject>
#include <array>

class RadioSession;
class StationPopover;

/// What the window's layout gives the rack's actions to work with. The window owns them all.
struct RackOutlets
{
    RackView *myCollectionView;
    /// The details of a station from the directory.
    StationPopover *favoritPopOver;
    /// The details of a station that the user has entered.
    StationPopover *customRadioEditorPopOver;
};

/// What drops on the rack, the buttons of its tiles and a double click on their artwork do.
class RackActions : public QObject, public RackView::Delegate
{
    Q_OBJECT

public:
    /// The session must outlive this object.
    RackActions(RadioSession &session, const RackOutlets &outlets, QObject *parent = nullptr);

    /// The station whose tile was clicked last; null where there is none, or it has left the rack.
    StationRecord selectedRadioModel() const { return selectedRadioModel_.lock(); }
    void setSelectedRadioModel(const StationRecord &station) { selectedRadioModel_ = station; }
    /// Makes that favourite the only selected one, and selectedRadioModel().
    void select(const StationRecord &station);

    /// The action of a tile's buttons, told apart by their "tag": 100 opens or closes the details, 101 plays
    /// the station's url. Any of them selects the tile that the sender lies in.
    void itemButtonAction(QAbstractButton *sender) override;
    /// Plays the station whose artwork was double-clicked: one of the user's own from its address fields.
    void doubleClickRVImage(RVImageView *sender) override;

    /// Writes which tiles are dragged. False for another view, and without tiles.
    bool collectionViewWriteItemsAtIndexes(RackView *view, const QList<qsizetype> &indexes,
                                           QMimeData &pasteboard) override;
    /// Every drop copies, whatever it is and wherever.
    Qt::DropAction collectionViewValidateDrop(RackView *view, const QMimeData &pasteboard,
                                              qsizetype proposedIndex) override;
    /// Takes a station from the table into the rack, or moves a tile. Whether the drop was taken.
    bool collectionViewAcceptDrop(RackView *view, const QMimeData &pasteboard, qsizetype index) override;

private:
    std::array<StationPopover *, 2> popovers() const;
    StationRecord selectStationOf(const QWidget *sender);
    void stationRemoved(const StationRecord &station);
    void followTiles();

    RadioSession &session_;
    FavouritesRack &rack_;
    RackOutlets outlets_;
    std::weak_ptr<RadioModel> selectedRadioModel_;
};
