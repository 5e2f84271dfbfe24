#include "mainwindow/player.h"

#include "directory/displaytext.h"
#include "directory/exception.h"
#include "model/rvobject.h"
#include "playback/tuneinaddress.h"
#include "ui/popover.h"
#include "ui/rvtableview.h"
#include "ui/spinner.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcPlayer, "plumtide.player")
/// Every text of the two status lines as it comes; for people who watch the program without its window.
Q_LOGGING_CATEGORY(lcStatus, "plumtide.status", QtWarningMsg)

constexpr int playPauseTag = 200;
constexpr int stopTag = 202;
} // namespace

Player::Player(const PlayerOutlets &outlets, const DirectoryEndpoints &endpoints, Backend &backend,
               QObject *parent)
    : QObject(parent)
    , outlets_(outlets)
    , tuneInBaseAddress_(endpoints.tuneInBaseAddress)
    , directory_(endpoints.service, [this] { return settings_.queryLimit(); })
    , playback_(backend, [this] { return settings_.timeout(); })
{
}

void Player::awakeFromNib()
{
    connectDirectory();
    connectPlayback();
    outlets_.myTableView->setModel(&stationTable_);
    connect(outlets_.myTableView, &RVTableView::doubleAction, this, &Player::playRadioFromTableItem);
    setTitle(QStringLiteral("idle"));
    directory_.getTop500();
}

void Player::connectDirectory()
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
}

void Player::connectPlayback()
{
    connect(&playback_, &StreamPlayback::titleChanged, this, &Player::setTitle);
    connect(&playback_, &StreamPlayback::statusChanged, this, &Player::setStatus);
    connect(&playback_, &StreamPlayback::tornDown, outlets_.audioPopOver, &Popover::close);
}

void Player::searchForRadio()
{
    const QString text = outlets_.searchField->text();
    if (!text.isEmpty()) {
        directory_.getRadioByQuery(RVObject::airAPIFormatStyle(text));
    }
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
    Popover *popover = outlets_.audioPopOver;
    if (popover->isShown()) {
        popover->close();
    } else {
        QWidget *view = sender != nullptr ? sender : popover->parentWidget();
        popover->showRelativeTo(sender != nullptr ? sender->rect() : QRect(), view);
    }
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
