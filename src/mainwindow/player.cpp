#include "mainwindow/player.h"

#include "base/displaytext.h"
#include "base/exception.h"
#include "base/rvobject.h"
#include "directory/keyed/tuneinaddress.h"
#include "ui/drag/dragpayload.h"
#include "ui/panels/wabout.h"
#include "ui/panels/wpreferences.h"
#include "ui/rack/stationpopover.h"
#include "ui/stationform/addrecordpopover.h"
#include "ui/table/rvtableview.h"
#include "ui/widgets/roundedbox.h"
#include "ui/widgets/spinner.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcPlayer, "plumtide.player")
/// Every text of the two status lines as it comes; for people who watch the program without its window.
Q_LOGGING_CATEGORY(lcStatus, "plumtide.status", QtWarningMsg)

constexpr int playPauseTag = 200;
constexpr int stopTag = 202;
constexpr int aboutTag = 300;
constexpr int preferencesTag = 301;
constexpr int saveTag = 302;

/// The genres that are no search.
constexpr QLatin1StringView trendingGenre{"Trending 500"};
constexpr QLatin1StringView randomGenre{"Random Stations"};

/// Where the rack is kept, in the user's music folder.
const QString favouritesFolder = QStringLiteral("com.plumtide.folders");
const QString favouritesFile = QStringLiteral("plumtide.data");

/// Of the tool-bar box and of the rack's tiles.
constexpr qreal cornerRadius = 8.0;
constexpr QColor itemBorderGrey(128, 128, 128, 80);
constexpr qreal itemBorderWidth = 5.0;

/// Opens the popover beside `sender`, which may be null, or closes it.
void toggle(Popover &popover, QWidget *sender)
{
    QWidget *view = sender != nullptr ? sender : popover.parentWidget();
    popover.toggleRelativeTo(sender != nullptr ? sender->rect() : QRect(), view, Popover::Side::Above);
}
} // namespace

Player::Player(const PlayerOutlets &outlets, const DirectoryEndpoints &endpoints, Backend &backend,
               QObject *parent)
    : QObject(parent)
    , outlets_(outlets)
    , tuneInBaseAddress_(endpoints.tuneInBaseAddress)
    , directory_(endpoints.service, [this] { return settings_.queryLimit(); })
    , stationTable_(outlets.myTableView)
    , playback_(
          backend, [this] { return settings_.timeout(); }, [this] { return settings_.userAgent(); })
    , rackActions_(rack_, outlets.rack, [this](const StationEntry &station) {
        return droppedStationAddress(tuneInBaseAddress_, directory_.radiocallbackData500(), station);
    })
{
}

Player::~Player() = default;

void Player::awakeFromNib()
{
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { radioDataChanges(willTerminate); });
    transformers_.setValueTransformer(std::make_unique<PathTransformer>(), QStringLiteral("PathTransformer"));
    readRack();
    connectConcerns();
    prepareTable();
    prepareRack();
    outlets_.myToolbarBox->setCornerRadius(cornerRadius);
    outlets_.myToolbarBox->setBackgroundColor(Qt::white);
    outlets_.rack.myCollectionView->setLevelIndicatorHighlighted(true);
    outlets_.rack.myCollectionView->setItemFrame(cornerRadius, itemBorderGrey, itemBorderWidth);
    setTitle(QStringLiteral("idle"));
    // After the reading: a first start finds nothing, and leaves a folder for the rack to be written into.
    if (!FavouritesStore::isFolderExistAtMusicFolder(favouritesFolder)) {
        FavouritesStore::createDirectoryOnMusicDirectory(favouritesFolder);
    }
    favourites_.claim(favouritesFolder, favouritesFile);
    outlets_.customRadioPopOver->setDelegate(this);
    outlets_.customRadioPopOver->setBehaviour(Popover::Behaviour::SemiTransient);
    preferences_ = std::make_unique<WPreferences>(settings_);
    about_ = std::make_unique<WAbout>();
    directory_.getTop500();
}

void Player::readRack()
{
    const auto stored = favourites_.reaDataFromStorageFolder(favouritesFolder, favouritesFile);
    rack_.setRadioItemCollectionArray(stored.value_or(StationRecords()));
}

bool Player::saveRack()
{
    return favourites_.saveDataToStorageFolder(favouritesFolder, favouritesFile,
                                               rack_.radioItemCollectionArray());
}

void Player::radioDataChanges(QLatin1StringView notification)
{
    if (notification == willTerminate) {
        // Not among what is logged: that is not even computed where the category is silent.
        const bool saved = saveRack();
        qCInfo(lcPlayer, "com.ostrel.plumtide.save_data_success %i", saved ? 1 : 0);
        // What is left of the end may take its time, and the program be started again meanwhile.
        favourites_.release();
    }
}

void Player::menuActions(const QAction *sender)
{
    switch (sender->property("tag").toInt()) {
    case aboutTag:
        about_->showWindow();
        break;
    case preferencesTag:
        preferences_->showWindow();
        break;
    case saveTag:
        saveRack();
        break;
    default:
        break;
    }
}

void Player::connectConcerns()
{
    connect(&directory_, &StationDirectory::busyChanged, outlets_.progress, &Spinner::setAnimating);
    connect(&directory_, &StationDirectory::statusChanged, this, &Player::setStatus);
    connect(&directory_, &StationDirectory::stationsReloaded, this, [this] {
        // A new answer comes in the directory's own order, with nothing selected.
        stationTable_.reload(directory_.radioData());
        outlets_.myTableView->clearSortIndicator();
    });
    connect(&stationTable_, &StationTable::sortRequested, this,
            [this](const StationDirectory::RowComparison &before) {
                directory_.sortRadioData(before);
                stationTable_.reload(directory_.radioData());
            });
    connect(&rackActions_, &RackActions::playRequested, &playback_, &StreamPlayback::playRadioFromURL);
    connect(&rackActions_, &RackActions::playCustomRequested, &playback_,
            &StreamPlayback::playRadioCustomWithObject);
    connect(&playback_, &StreamPlayback::titleChanged, this, &Player::setTitle);
    connect(&playback_, &StreamPlayback::statusChanged, this, &Player::setStatus);
    connect(&playback_, &StreamPlayback::tornDown, outlets_.audioPopOver, &Popover::close);
}

void Player::prepareTable()
{
    RVTableView *table = outlets_.myTableView;
    table->setModel(&stationTable_);
    table->setDataSource(&stationTable_);
    connect(table, &RVTableView::doubleAction, this, &Player::playRadioFromTableItem);
    table->registerForDraggedTypes({DragPayload::stationType});
}

void Player::prepareRack()
{
    RackView *view = outlets_.rack.myCollectionView;
    view->setRack(&rack_, transformers_);
    outlets_.rack.favoritPopOver->setTransformers(&transformers_);
    outlets_.rack.customRadioEditorPopOver->setTransformers(&transformers_);
    view->setDelegate(&rackActions_);
    view->registerForDraggedTypes({DragPayload::stationType, DragPayload::tilesType});
}

void Player::searchForRadio()
{
    const QString text = outlets_.searchField->text();
    if (!text.isEmpty()) {
        directory_.getRadioByQuery(RVObject::airAPIFormatStyle(text));
    }
}

void Player::genreObjectReceiveName(const QString &name)
{
    if (name.isNull()) {
        return;
    }
    if (name == trendingGenre) {
        directory_.getTop500();
    } else if (name == randomGenre) {
        directory_.getRandomStation();
    } else {
        directory_.getRadioByQuery(RVObject::airAPIFormatStyle(name));
    }
}

void Player::customRadioAction(QWidget *sender)
{
    toggle(*outlets_.customRadioPopOver, sender);
}

void Player::addCustomRadioData()
{
    auto station = std::make_shared<RadioModel>();
    station->setCustom(true);
    station->setImageFilePath(QString(RadioModel::customArtwork));
    rack_.insertObjectAtArrangedObjectIndex(station, 0);
    rack_.rearrangeObjects();
}

void Player::vaaddrecordDidFinish(VAddRecord *, const StationRecord &data)
{
    if (data) {
        rack_.addObject(data);
        rack_.rearrangeObjects();
    }
    outlets_.customRadioPopOver->close();
}

QString Player::tableItemAddress(int row) const
{
    const StationList &stations = directory_.radioData();
    return row >= 0 && row < stations.size()
               ? tuneInAddress(tuneInBaseAddress_, directory_.radiocallbackData500(), stations.at(row))
               : QString();
}

void Player::playRadioFromTableItem()
{
    try {
        const StationList &stations = directory_.radioData();
        if (stations.isEmpty()) {
            setTitle(QStringLiteral("Error playing station"));
            setStatus(QStringLiteral("radio data is broken, please try again"));
            return;
        }
        const StationEntry station = elementAt(stations, outlets_.myTableView->clickedRow());
        const QString address = tuneInAddress(tuneInBaseAddress_, directory_.radiocallbackData500(), station);
        if (!address.isNull()) {
            const QString name = station.text(QLatin1StringView("name"));
            setTitle(name);
            playback_.executeSynchAVPlayer(address, name);
        }
    } catch (const Exception &) {
        // Typically a double click below the last row.
        qCWarning(lcPlayer) << "UI getting error notified, ignored!";
    }
}

void Player::audioRackButtonAction(QAbstractButton *sender)
{
    switch (sender->property("tag").toInt()) {
    case playPauseTag:
        switch (playback_.togglePause()) {
        case StreamPlayback::Toggle::NoPlayer:
            break;
        case StreamPlayback::Toggle::Paused:
            sender->setText(QStringLiteral("Play"));
            break;
        case StreamPlayback::Toggle::Resumed:
            sender->setText(QStringLiteral("Pause"));
            break;
        }
        break;
    case stopTag:
        playback_.destroyPlayer();
        break;
    default:
        break;
    }
}

void Player::spaceKeyAction()
{
    playback_.togglePause();
}

void Player::audioButtonAction(QWidget *sender)
{
    toggle(*outlets_.audioPopOver, sender);
}

void Player::setTitle(const QString &text)
{
    outlets_.playerStatusString->setText(displayText(text));
    qCDebug(lcStatus).noquote() << "title:" << displayText(text);
}

void Player::setStatus(const QString &text)
{
    outlets_.subtitleStatusString->setText(displayText(text));
    qCDebug(lcStatus).noquote() << "status:" << displayText(text);
}
