#include "mainwindow/player.h"

#include "base/displaytext.h"
#include "base/exception.h"
#include "session/radiosession.h"
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

/// Of the tool-bar box and of the rack's tiles.
constexpr qreal cornerRadius = 8.0;
constexpr QColor itemBorderGrey(128, 128, 128);
constexpr qreal itemBorderWidth = 5.0;

/// Opens the popover beside `sender`, which may be null, or closes it.
void toggle(Popover &popover, QWidget *sender)
{
    QWidget *view = sender != nullptr ? sender : popover.parentWidget();
    popover.toggleRelativeTo(sender != nullptr ? sender->rect() : QRect(), view, Popover::Side::Above);
}
} // namespace

Player::Player(const PlayerOutlets &outlets, RadioSession &session, StoredSettings &settings, QObject *parent)
    : QObject(parent)
    , outlets_(outlets)
    , session_(session)
    , settings_(settings)
    , stationTable_(outlets.myTableView)
    , rackActions_(session, outlets.rack)
{
}

Player::~Player() = default;

void Player::awakeFromNib()
{
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { radioDataChanges(willTerminate); });
    transformers_.setValueTransformer(std::make_unique<PathTransformer>(), QStringLiteral("PathTransformer"));
    session_.favourites().read();
    connectConcerns();
    prepareTable();
    prepareRack();
    outlets_.myToolbarBox->setCornerRadius(cornerRadius);
    outlets_.myToolbarBox->setBackgroundColor(Qt::white);
    outlets_.rack.myCollectionView->setLevelIndicatorHighlighted(true);
    outlets_.rack.myCollectionView->setItemFrame(cornerRadius, itemBorderGrey, itemBorderWidth);
    setTitle(QStringLiteral("idle"));
    // After the reading: a first start finds nothing, and leaves a folder for the rack to be written into.
    session_.favourites().claim();
    outlets_.customRadioPopOver->setDelegate(this);
    outlets_.customRadioPopOver->setBehaviour(Popover::Behaviour::SemiTransient);
    preferences_ = std::make_unique<WPreferences>(settings_);
    about_ = std::make_unique<WAbout>();
    session_.directory().requestTopStations();
}

void Player::radioDataChanges(QLatin1StringView notification)
{
    if (notification == willTerminate) {
        // Not among what is logged: that is not even computed where the category is silent.
        const bool saved = session_.favourites().save();
        qCInfo(lcPlayer, "com.ostrel.plumtide.save_data_success %i", saved ? 1 : 0);
        // What is left of the end may take its time, and the program be started again meanwhile.
        session_.favourites().release();
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
        session_.favourites().save();
        break;
    default:
        break;
    }
}

void Player::connectConcerns()
{
    const DirectorySource &directory = session_.directory();
    connect(&directory, &DirectorySource::busyChanged, outlets_.progress, &Spinner::setAnimating);
    connect(&directory, &DirectorySource::statusChanged, this, &Player::setStatus);
    connect(&directory, &DirectorySource::answered, this, [this, &directory] {
        // A new answer comes in the directory's own order, with nothing selected.
        stationTable_.reload(directory.answer().stations);
        outlets_.myTableView->clearSortIndicator();
    });
    const StreamPlayback &playback = session_.playback();
    connect(&playback, &StreamPlayback::titleChanged, this, &Player::setTitle);
    connect(&playback, &StreamPlayback::statusChanged, this, &Player::setStatus);
    connect(&playback, &StreamPlayback::tornDown, outlets_.audioPopOver, &Popover::close);
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
    view->setRack(&session_.favourites().rack(), transformers_);
    outlets_.rack.favoritPopOver->setTransformers(&transformers_);
    outlets_.rack.customRadioEditorPopOver->setTransformers(&transformers_);
    view->setDelegate(&rackActions_);
    view->registerForDraggedTypes({DragPayload::stationType, DragPayload::tilesType});
}

void Player::searchForRadio()
{
    const QString text = outlets_.searchField->text();
    if (!text.isEmpty()) {
        session_.directory().requestSearch(text);
    }
}

void Player::genreObjectReceiveName(const QString &name)
{
    if (name.isNull()) {
        return;
    }
    if (name == trendingGenre) {
        session_.directory().requestTopStations();
    } else if (name == randomGenre) {
        session_.directory().requestRandomStations();
    } else {
        session_.directory().requestGenre(name);
    }
}

void Player::customRadioAction(QWidget *sender)
{
    toggle(*outlets_.customRadioPopOver, sender);
}

void Player::addCustomRadioData()
{
    session_.favourites().addBlank();
}

void Player::vaaddrecordDidFinish(VAddRecord *, const StationRecord &data)
{
    if (data) {
        session_.favourites().add(data);
    }
    outlets_.customRadioPopOver->close();
}

void Player::playRadioFromTableItem()
{
    try {
        if (stationTable_.numberOfRowsInTableView(outlets_.myTableView) == 0) {
            setTitle(QStringLiteral("Error playing station"));
            setStatus(QStringLiteral("radio data is broken, please try again"));
            return;
        }
        // A copy: what a start sets off may change the list.
        const StationEntry station = stationTable_.stationAt(outlets_.myTableView->clickedRow());
        session_.playEntry(station);
    } catch (const Exception &) {
        // Typically a double click below the last row.
        qCWarning(lcPlayer) << "UI getting error notified, ignored!";
    }
}

void Player::audioRackButtonAction(QAbstractButton *sender)
{
    switch (sender->property("tag").toInt()) {
    case playPauseTag:
        switch (session_.playback().togglePause()) {
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
        session_.playback().destroyPlayer();
        break;
    default:
        break;
    }
}

void Player::spaceKeyAction()
{
    session_.playback().togglePause();
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
