#pragma once

#include "favourites/valuetransformers.h"
#include "mainwindow/rackactions.h"
#include "ui/genres/genreobject.h"
#include "ui/stationform/vaddrecord.h"
#include "ui/table/stationtable.h"

#include <QObject>
#include <memory>

class QAbstractButton;
class QAction;
class QLabel;
class QLineEdit;
class AddRecordPopover;
class Popover;
class RadioSession;
class RoundedBox;
class Spinner;
class StoredSettings;
class WAbout;
class WPreferences;

/// What the window's layout gives the hub to work with. The window owns them all.
struct PlayerOutlets
{
    RoundedBox *myToolbarBox;
    RVTableView *myTableView;
    Spinner *progress;
    QLineEdit *searchField;
    QLabel *playerStatusString;
    QLabel *subtitleStatusString;
    Popover *audioPopOver;
    AddRecordPopover *customRadioPopOver;
    RackOutlets rack;
};

/// The hub of the main window: connects the radio with the outlets and is the home of what crosses concerns.
/// Lives on the main thread as long as the window.
class Player : public QObject, public GenreObjectDelegate, public VAddRecordDelegate
{
    Q_OBJECT

public:
    /// Session and settings must outlive this object.
    Player(const PlayerOutlets &outlets, RadioSession &session, StoredSettings &settings,
           QObject *parent = nullptr);
    /// Lets go of everything owned. There is nothing to undo besides: no keyboard monitor is ever installed,
    /// and the hub is to hear of the application's end for as long as it lives.
    ~Player() override;

    /// The notice that the application is about to end.
    static constexpr QLatin1StringView willTerminate{"ApplicationWillTerminate"};

    /// The start of everything: reads the rack, prepares the window and asks for the directory's top
    /// stations.
    void awakeFromNib();
    /// Saves the rack on the notice willTerminate, and says in the log whether that worked; does nothing on
    /// any other.
    void radioDataChanges(QLatin1StringView notification);
    /// The action of the menu items, told apart by their "tag": 300 shows the About window, 301 the
    /// preferences, 302 saves the rack, without a word.
    void menuActions(const QAction *sender);

    // The directory.
    /// Searches for the search field's text; nothing for an empty one.
    void searchForRadio();
    /// Asks for the stations of a genre from the picker; "Trending 500" and "Random Stations", written just
    /// so, are the directory's own lists. Nothing for a null name; an empty one is searched.
    void genreObjectReceiveName(const QString &name) override;

    // Stations of the user's own.
    /// Opens the form beside `sender`, which may be null, or closes it.
    void customRadioAction(QWidget *sender);
    /// Puts a blank station at the front of the rack.
    void addCustomRadioData();
    /// Takes the station from the form into the rack, at the end, and closes the form.
    void vaaddrecordDidFinish(VAddRecord *sender, const StationRecord &data) override;

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

    RackActions &rackActions() { return rackActions_; }
    StationTable &stationTable() { return stationTable_; }

private:
    void prepareTable();
    void prepareRack();
    void connectConcerns();
    void setTitle(const QString &text);
    void setStatus(const QString &text);

    PlayerOutlets outlets_;
    RadioSession &session_;
    StoredSettings &settings_;
    std::unique_ptr<WPreferences> preferences_;
    std::unique_ptr<WAbout> about_;
    StationTable stationTable_;
    ValueTransformers transformers_;
    RackActions rackActions_;
};
