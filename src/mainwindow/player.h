#pragma once

#include "directory/stationdirectory.h"
#include "mainwindow/stationtable.h"
#include "playback/streamplayback.h"
#include "settings/storedsettings.h"

#include <QObject>

class QAbstractButton;
class QLabel;
class QLineEdit;
class Popover;
class RVTableView;
class Spinner;

/// What the window's layout gives the hub to work with. The window owns them all.
struct PlayerOutlets
{
    RVTableView *myTableView;
    Spinner *progress;
    QLineEdit *searchField;
    QLabel *playerStatusString;
    QLabel *subtitleStatusString;
    Popover *audioPopOver;
};

/// Where the directory is found.
struct DirectoryEndpoints
{
    DirectoryService service;
    /// Scheme and host of the tune-in endpoint, without a trailing "/".
    QString tuneInBaseAddress = QStringLiteral("http://yp.shoutcast.com");
};

/// The hub of the main window: owns the concerns, connects them with each other and with the outlets, and is
/// the home of what crosses concerns. Lives on the main thread as long as the window.
class Player : public QObject
{
    Q_OBJECT

public:
    Player(const PlayerOutlets &outlets, const DirectoryEndpoints &endpoints, Backend &backend,
           QObject *parent = nullptr);

    /// The start of everything: prepares the window and asks for the directory's top stations.
    void awakeFromNib();

    // The directory.
    /// Searches for the search field's text; nothing for an empty one.
    void searchForRadio();

    // Playing.
    /// Plays the station in the table's clicked row.
    void playRadioFromTableItem();
    /// The action of the transport buttons, told apart by their "tag": 200 plays or pauses, 202 stops.
    void audioRackButtonAction(QAbstractButton *sender);
    /// The space bar's command: plays or pauses, and leaves every button's text alone.
    void spaceKeyAction();
    /// Opens the audio popover beside `sender`, which may be null, or closes it.
    void audioButtonAction(QWidget *sender);
    /// Installs nothing: the space bar reaches spaceKeyAction() as a menu command's shortcut.
    void monitorSpaceKeyboard() {}
    /// Nothing is recorded, and no control asks for it.
    void recordPlayer() {}
    /// Private stations are played from the rack, so that this command has nothing of its own to do.
    void playRadioPrivate() {}

    StationDirectory &stationDirectory() { return directory_; }
    StreamPlayback &streamPlayback() { return playback_; }

private:
    void connectDirectory();
    void connectPlayback();
    void setTitle(const QString &text);
    void setStatus(const QString &text);

    PlayerOutlets outlets_;
    QString tuneInBaseAddress_;
    StoredSettings settings_;
    StationDirectory directory_;
    StationTable stationTable_;
    StreamPlayback playback_;
};
