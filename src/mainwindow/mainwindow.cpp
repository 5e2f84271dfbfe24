#include "mainwindow/mainwindow.h"

#include "mainwindow/rackcommands.h"
#include "mainwindow/soundbinding.h"
#include "mainwindow/tablecommands.h"
#include "ui/addrecordpopover.h"
#include "ui/audiopopover.h"
#include "ui/stationpopover.h"
#include "ui/svgicon.h"
#include "ui_mainwindow.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <array>

namespace {
// On the white tool-bar box the ink is dark in every palette.
constexpr QRgb boxInk = 0xff4b4550;
constexpr QRgb playInk = 0xffffffff;

constexpr qreal titleScale = 1.35;
constexpr qreal secondaryScale = 0.95;

/// From the status dot to the listeners; the last column takes the rest.
constexpr std::array columnWidths{40, 264, 128, 72, 120, 96};

void scaleFont(QWidget *widget, qreal factor)
{
    QFont font = widget->font();
    font.setPointSizeF(font.pointSizeF() * factor);
    widget->setFont(font);
}
} // namespace

MainWindow::MainWindow(const DirectoryEndpoints &endpoints, Backend &backend)
    : ui_(std::make_unique<Ui::MainWindow>())
    , audioPopOver_(new AudioPopover(this))
{
    ui_->setupUi(this);
    const RackOutlets rack{.myCollectionView = ui_->myCollectionView,
                           .favoritPopOver = new StationPopover(this, StationPopover::Kind::favourite),
                           .customRadioEditorPopOver =
                               new StationPopover(this, StationPopover::Kind::custom)};
    const PlayerOutlets outlets{.myTableView = ui_->myTableView,
                                .progress = ui_->progress,
                                .searchField = ui_->searchField,
                                .playerStatusString = ui_->playerStatusString,
                                .subtitleStatusString = ui_->subtitleStatusString,
                                .audioPopOver = audioPopOver_,
                                .customRadioPopOver = new AddRecordPopover(this),
                                .rack = rack};
    player_ = std::make_unique<Player>(outlets, endpoints, backend);
    bindTransport();
    bindSound(backend);
    bindMenus();
    bindSearch();
    bindLists();
    bindOwnStations();
    connect(&player_->stationDirectory(), &StationDirectory::busyChanged, this, &MainWindow::showPlaceholder);
    player_->awakeFromNib();
    layOut();
}

MainWindow::~MainWindow() = default;

void MainWindow::layOut()
{
    scaleFont(ui_->playerStatusString, titleScale);
    scaleFont(ui_->subtitleStatusString, secondaryScale);
    ui_->transportStopButton->setIcon(svgIcon(QStringLiteral("stop"), boxInk));

    QHeaderView *header = ui_->myTableView->horizontalHeader();
    for (std::size_t section = 0; section < columnWidths.size(); ++section) {
        header->resizeSection(static_cast<int>(section), columnWidths.at(section));
    }
    header->setSectionResizeMode(0, QHeaderView::Fixed);
    header->setStretchLastSection(true);
    ui_->myTableView->clearSortIndicator();
    ui_->myTableView->setSortingEnabled(true);
    ui_->myTableView->setFocus();
}

void MainWindow::bindTransport()
{
    for (QToolButton *button : {ui_->transportPlayButton, ui_->transportStopButton}) {
        connect(button, &QToolButton::clicked, player_.get(),
                [this, button] { player_->audioRackButtonAction(button); });
    }
    connect(&player_->streamPlayback(), &StreamPlayback::runningChanged, this, &MainWindow::showRunning);
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

void MainWindow::bindSearch()
{
    connect(ui_->searchField, &QLineEdit::returnPressed, player_.get(), &Player::searchForRadio);
    QAction *search =
        ui_->searchField->addAction(svgIcon(QStringLiteral("search"), boxInk), QLineEdit::LeadingPosition);
    search->setText(tr("Search"));
    connect(search, &QAction::triggered, player_.get(), &Player::searchForRadio);

    // The toolkit's own button looks through every icon theme for its picture before the window is there.
    QAction *clear =
        ui_->searchField->addAction(svgIcon(QStringLiteral("clear"), boxInk), QLineEdit::TrailingPosition);
    clear->setText(tr("Clear"));
    clear->setVisible(false);
    connect(clear, &QAction::triggered, ui_->searchField, &QLineEdit::clear);
    connect(ui_->searchField, &QLineEdit::textChanged, clear,
            [clear](const QString &text) { clear->setVisible(!text.isEmpty()); });
}

void MainWindow::bindLists()
{
    ui_->myCollectionView->setPlaceholderText(tr("Drag stations here to keep them, or press Ctrl+D."));
    tableCommands_ =
        std::make_unique<TableCommands>(*ui_, player_->stationTable(), player_->rackActions(),
                                        [this](int row) { return player_->tableItemAddress(row); });
    rackCommands_ = std::make_unique<RackCommands>(*ui_, player_->favouritesRack(), player_->rackActions());
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
    qApp->installEventFilter(this);
    connect(ui_->spaceKeyAction, &QAction::triggered, player_.get(), &Player::spaceKeyAction);
    connect(ui_->stopAction, &QAction::triggered, ui_->transportStopButton, &QToolButton::click);
    connect(ui_->findAction, &QAction::triggered, this, [this] {
        ui_->searchField->setFocus(Qt::ShortcutFocusReason);
        ui_->searchField->selectAll();
    });
    connect(ui_->topStationsAction, &QAction::triggered, &player_->stationDirectory(),
            &StationDirectory::getTop500);
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

void MainWindow::showPlaceholder(bool busy)
{
    ui_->myTableView->setPlaceholderText(busy ? tr("Asking the directory...") : tr("No stations."));
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

/// The space bar presses a button that has the focus, as everywhere; elsewhere it plays and pauses.
bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && qobject_cast<QAbstractButton *>(watched) != nullptr &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space) {
        event->accept();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}
