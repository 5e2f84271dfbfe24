#include "mainwindow/mainwindow.h"

#include "base/exception.h"
#include "mainwindow/infobinding.h"
#include "mainwindow/rackcommands.h"
#include "mainwindow/soundbinding.h"
#include "mainwindow/tablecommands.h"
#include "mainwindow/windowkeys.h"
#include "mainwindow/windowmemory.h"
#include "session/radiosession.h"
#include "settings/statefile.h"
#include "ui/genres/genreobject.h"
#include "ui/panels/audiopopover.h"
#include "ui/panels/historypopover.h"
#include "ui/rack/stationpopover.h"
#include "ui/stationform/addrecordpopover.h"
#include "ui/table/tablecolumns.h"
#include "ui/widgets/clearaction.h"
#include "ui/widgets/look.h"
#include "ui/widgets/svgicon.h"
#include "ui_mainwindow.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcWindow, "plumtide.window")

// On the white tool-bar box the ink is dark in every palette.
constexpr QRgb boxInk = 0xff4b4550;
constexpr QRgb playInk = 0xffffffff;

/// In the order of Appearance.
constexpr QLatin1StringView appearanceKey("window/appearance");
/// Of the two beside each other at first; what the window grows by goes to the table.
constexpr int genresWidth = 208;
constexpr int tableWidth = 924;

constexpr qreal titleScale = 1.35;
constexpr qreal secondaryScale = 0.95;

void scaleFont(QWidget *widget, qreal factor)
{
    QFont font = widget->font();
    font.setPointSizeF(font.pointSizeF() * factor);
    widget->setFont(font);
}
} // namespace

MainWindow::MainWindow(RadioSession &session, StoredSettings &settings, Backend &backend, StateFile &state)
    : ui_(std::make_unique<Ui::MainWindow>())
    , session_(session)
    , state_(state)
    , memory_(std::make_unique<WindowMemory>(state))
    , audioPopOver_(new AudioPopover(this))
{
    ui_->setupUi(this);
    const RackOutlets rack{.myCollectionView = ui_->myCollectionView,
                           .favoritPopOver = new StationPopover(this, StationPopover::Kind::favourite),
                           .customRadioEditorPopOver =
                               new StationPopover(this, StationPopover::Kind::custom)};
    const PlayerOutlets outlets{.myToolbarBox = ui_->myToolbarBox,
                                .myTableView = ui_->myTableView,
                                .progress = ui_->progress,
                                .searchField = ui_->searchField,
                                .playerStatusString = ui_->playerStatusString,
                                .subtitleStatusString = ui_->subtitleStatusString,
                                .audioPopOver = audioPopOver_,
                                .customRadioPopOver = new AddRecordPopover(this),
                                .rack = rack};
    player_ = std::make_unique<Player>(outlets, session, settings);
    bindTransport();
    bindSound(backend);
    bindInfo();
    bindMenus();
    keys_ = std::make_unique<WindowKeys>(*this, *ui_);
    bindSearch();
    bindGenres();
    bindLists();
    bindOwnStations();
    bindAppearance();
    player_->awakeFromNib();
    layOut();
}

MainWindow::~MainWindow() = default;

void MainWindow::layOut()
{
    scaleFont(ui_->playerStatusString, titleScale);
    scaleFont(ui_->subtitleStatusString, secondaryScale);
    ui_->transportStopButton->setIcon(svgIcon(QStringLiteral("stop"), boxInk));

    ui_->myTableView->clearSortIndicator();
    ui_->myTableView->setSortingEnabled(true);
    ui_->myTableView->setFocus();

    memory_->restoreGeometry(*this);
    tableColumns_ = std::make_unique<TableColumns>(*ui_->myTableView->horizontalHeader(), state_);
    memory_->bindSplitter(*ui_->listsSplitter);
    memory_->bindSplitter(*ui_->genreSplitter);
}

void MainWindow::bindTransport()
{
    for (QToolButton *button : {ui_->transportPlayButton, ui_->transportStopButton}) {
        connect(button, &QToolButton::clicked, player_.get(),
                [this, button] { player_->audioRackButtonAction(button); });
    }
    connect(&session_.playback(), &StreamPlayback::runningChanged, this, &MainWindow::showRunning);
    showRunning(false);
}

void MainWindow::bindSound(Backend &backend)
{
    soundBinding_ = std::make_unique<SoundBinding>(*audioPopOver_, backend, state_);
    soundBinding_->bindCommands(ui_->louderAction, ui_->softerAction, ui_->muteAction);
    soundBinding_->bindWheel(ui_->audioButton);
    const auto toggle = [this] { player_->audioButtonAction(ui_->audioButton); };
    connect(ui_->audioButton, &QToolButton::clicked, this, toggle);
    connect(ui_->soundAction, &QAction::triggered, this, toggle);
    const auto showMuted = [this](bool muted) {
        ui_->audioButton->setIcon(
            svgIcon(muted ? QStringLiteral("volume-muted") : QStringLiteral("volume"), boxInk));
    };
    connect(ui_->muteAction, &QAction::toggled, this, showMuted);
    showMuted(ui_->muteAction->isChecked());
}

void MainWindow::bindInfo()
{
    infoBinding_ = std::make_unique<InfoBinding>(*ui_->infoView, session_);
    ui_->infoView->historyButton()->setIcon(svgIcon(QStringLiteral("history"), boxInk));
    setTabOrder(ui_->transportStopButton, ui_->infoView->historyButton());
    auto *popover = new HistoryPopover(this, session_.history());
    const auto toggle = [this, popover] {
        QWidget *view = ui_->infoView->isVisible() ? static_cast<QWidget *>(ui_->infoView)
                                                   : static_cast<QWidget *>(ui_->myToolbarBox);
        popover->toggleRelativeTo(view->rect(), view);
    };
    connect(ui_->infoView, &InfoView::clicked, this, toggle);
    connect(ui_->recentTitlesAction, &QAction::triggered, this, toggle);
}

void MainWindow::bindSearch()
{
    connect(ui_->searchField, &QLineEdit::returnPressed, player_.get(), &Player::searchForRadio);
    QAction *search =
        ui_->searchField->addAction(svgIcon(QStringLiteral("search"), boxInk), QLineEdit::LeadingPosition);
    search->setText(tr("Search"));
    connect(search, &QAction::triggered, player_.get(), &Player::searchForRadio);
    addClearAction(ui_->searchField, boxInk);
}

void MainWindow::bindGenres()
{
    ui_->genreSplitter->setSizes({genresWidth, tableWidth});
    addClearAction(ui_->genreFilter, palette().color(QPalette::PlaceholderText));
    ui_->myCollection->setFilterField(ui_->genreFilter);
    // The window's last child, so that its list outlives the grid.
    auto *genreObject = new GenreObject(ui_->myCollection, this);
    genreObject->setMyBox(ui_->genreCard);
    genreObject->setDelegate(player_.get());
    try {
        genreObject->awakeFromNib();
    } catch (const Exception &exception) {
        qCWarning(lcWindow).noquote() << "no genres:" << exception.reason();
    }
}

void MainWindow::bindLists()
{
    const DirectorySource &directory = session_.directory();
    connect(&directory, &DirectorySource::busyChanged, this, [this](bool busy) {
        showPlaceholder(busy ? tr("Asking the directory...") : reasonForNoStations());
    });
    connect(&directory, &DirectorySource::answered, this, [this] { showPlaceholder(reasonForNoStations()); });
    ui_->myCollectionView->setPlaceholderText(
        tr("Drag stations here to keep them, or press %1.")
            .arg(ui_->addFavouriteAction->shortcut().toString(QKeySequence::NativeText)));
    tableCommands_ = std::make_unique<TableCommands>(*ui_, player_->stationTable(), session_);
    rackCommands_ = std::make_unique<RackCommands>(*ui_, session_, player_->rackActions());
}

void MainWindow::bindOwnStations()
{
    ui_->addStationButton->setIcon(svgIcon(QStringLiteral("add"), boxInk));
    const auto toggle = [this] { player_->customRadioAction(ui_->addStationButton); };
    connect(ui_->addStationButton, &QToolButton::clicked, this, toggle);
    connect(ui_->addStationAction, &QAction::triggered, this, toggle);
    connect(ui_->addBlankStationAction, &QAction::triggered, this, [this] {
        player_->addCustomRadioData();
        ui_->myCollectionView->scrollToIndex(0);
    });
}

void MainWindow::bindMenus()
{
    for (QAction *action : {ui_->aboutAction, ui_->preferencesAction, ui_->saveRackAction}) {
        connect(action, &QAction::triggered, player_.get(), [this, action] { player_->menuActions(action); });
    }
    connect(ui_->showWindowAction, &QAction::triggered, this, &MainWindow::showRequested);
    connect(ui_->closeWindowAction, &QAction::triggered, this, &QWidget::close);
    connect(ui_->quitAction, &QAction::triggered, this, &MainWindow::quitRequested);
    connect(ui_->spaceKeyAction, &QAction::triggered, player_.get(), &Player::spaceKeyAction);
    connect(ui_->stopAction, &QAction::triggered, ui_->transportStopButton, &QToolButton::click);
    connect(ui_->topStationsAction, &QAction::triggered, &session_.directory(),
            &DirectorySource::requestTopStations);
    connect(ui_->nextFavouriteAction, &QAction::triggered, &session_, &RadioSession::playNextFavourite);
    connect(ui_->previousFavouriteAction, &QAction::triggered, &session_,
            &RadioSession::playPreviousFavourite);
}

/// The button's picture and name say what it would do next; its text is the hub's.
void MainWindow::showRunning(bool running)
{
    const QString name = running ? tr("Pause") : tr("Play");
    ui_->transportPlayButton->setIcon(
        svgIcon(running ? QStringLiteral("pause") : QStringLiteral("play"), playInk));
    ui_->transportPlayButton->setAccessibleName(name);
    ui_->transportPlayButton->setToolTip(name);
}

void MainWindow::showPlaceholder(const QString &text)
{
    ui_->myTableView->setPlaceholderText(text);
    ui_->myTableView->setAccessibleDescription(session_.directory().answer().stations.isEmpty() ? text
                                                                                                : QString());
}

QString MainWindow::reasonForNoStations() const
{
    switch (session_.directory().answer().outcome) {
    case DirectoryAnswer::Outcome::Awaited:
        return {};
    case DirectoryAnswer::Outcome::NoAnswer:
        return tr("No stations. The directory did not answer.");
    case DirectoryAnswer::Outcome::Unusable:
        return tr("No stations. The directory's answer cannot be read.");
    case DirectoryAnswer::Outcome::Read:
        break;
    }
    return tr("No stations found.");
}

Appearance MainWindow::appearance(const StateFile &state)
{
    const int stored = state.integer(appearanceKey, static_cast<int>(Appearance::Desktop));
    const bool known =
        stored >= static_cast<int>(Appearance::Desktop) && stored <= static_cast<int>(Appearance::Dark);
    return known ? static_cast<Appearance>(stored) : Appearance::Desktop;
}

void MainWindow::bindAppearance()
{
    auto *choices = new QActionGroup(this);
    const Appearance chosen = appearance(state_);
    for (const auto &[action, choice] : {std::pair(ui_->desktopAppearanceAction, Appearance::Desktop),
                                         std::pair(ui_->lightAppearanceAction, Appearance::Light),
                                         std::pair(ui_->darkAppearanceAction, Appearance::Dark)}) {
        choices->addAction(action);
        action->setChecked(choice == chosen);
        connect(action, &QAction::triggered, this, [this, choice = choice] {
            state_.setValue(appearanceKey, static_cast<int>(choice));
            Q_EMIT appearanceChosen(choice);
        });
    }
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (closing_ && closing_() == Closing::Minimises) {
        event->ignore();
        showMinimized();
    } else {
        QMainWindow::closeEvent(event);
    }
}

void MainWindow::paintEvent(QPaintEvent *event)
{
    QMainWindow::paintEvent(event);
    if (!painted_) {
        painted_ = true;
        QMetaObject::invokeMethod(this, &MainWindow::firstFramePainted, Qt::QueuedConnection);
    }
}

void MainWindow::hideEvent(QHideEvent *event)
{
    // Iconified by the window manager, it is asked again when it comes back.
    if (!event->spontaneous()) {
        memory_->keepGeometry(*this);
    }
    QMainWindow::hideEvent(event);
}
