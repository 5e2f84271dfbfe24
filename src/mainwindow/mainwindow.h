#pragma once

#include "mainwindow/player.h"
#include "settings/statefile.h"

#include <QMainWindow>
#include <functional>
#include <memory>

class AddRecordPopover;
class AudioPopover;
class RackCommands;
class SoundBinding;
class TableCommands;

namespace Ui {
class MainWindow;
}

/// The layout of the single main window and its bindings: which control does what of the hub, and what the
/// controls look like. The hub itself knows the outlets only.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// What closing the window does to it.
    enum class Closing { Hides, Minimises };

    MainWindow(const DirectoryEndpoints &endpoints, Backend &backend);
    ~MainWindow() override;

    Player &player() { return *player_; }

    /// `closing` is asked each time that the window is to close; without one the window hides.
    void setClosing(std::function<Closing()> closing) { closing_ = std::move(closing); }

Q_SIGNALS:
    /// The window has been painted for the first time.
    void firstFramePainted();
    void quitRequested();
    /// The user wants this window before the others.
    void showRequested();

protected:
    void closeEvent(QCloseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void layOut();
    void bindTransport();
    void bindSound(Backend &backend);
    void bindSearch();
    void bindLists();
    void bindOwnStations();
    void bindMenus();
    void showRunning(bool running);
    void showPlaceholder(bool busy);

    std::unique_ptr<Ui::MainWindow> ui_;
    StateFile state_;
    AudioPopover *audioPopOver_;
    std::unique_ptr<SoundBinding> soundBinding_;
    std::unique_ptr<Player> player_;
    std::unique_ptr<TableCommands> tableCommands_;
    std::unique_ptr<RackCommands> rackCommands_;
    std::function<Closing()> closing_;
    bool painted_ = false;
};
