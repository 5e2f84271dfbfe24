#pragma once

#include "mainwindow/player.h"

#include <QMainWindow>
#include <functional>
#include <memory>

class AddRecordPopover;
class AudioPopover;
class Backend;
class InfoBinding;
class RackCommands;
class SoundBinding;
class StateFile;
class TableColumns;
class TableCommands;
class WindowKeys;
class WindowMemory;
enum class Appearance;

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

    /// All must outlive the window; `backend` is the one that the session plays on.
    MainWindow(RadioSession &session, StoredSettings &settings, Backend &backend, StateFile &state);
    ~MainWindow() override;

    Player &player() { return *player_; }

    /// The palette that the user has chosen.
    static Appearance appearance(const StateFile &state);
    /// `closing` is asked each time that the window is to close; without one the window hides.
    void setClosing(std::function<Closing()> closing) { closing_ = std::move(closing); }

Q_SIGNALS:
    /// The window has been painted for the first time.
    void firstFramePainted();
    void quitRequested();
    /// The choice is kept already.
    void appearanceChosen(Appearance appearance);
    /// The user wants this window before the others.
    void showRequested();

protected:
    void closeEvent(QCloseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void layOut();
    void bindTransport();
    void bindSound(Backend &backend);
    void bindInfo();
    void bindSearch();
    void bindGenres();
    void bindLists();
    void bindOwnStations();
    void bindMenus();
    void bindAppearance();
    void showRunning(bool running);
    void showPlaceholder(const QString &text);
    QString reasonForNoStations() const;

    std::unique_ptr<Ui::MainWindow> ui_;
    RadioSession &session_;
    StateFile &state_;
    std::unique_ptr<WindowMemory> memory_;
    std::unique_ptr<WindowKeys> keys_;
    AudioPopover *audioPopOver_;
    std::unique_ptr<SoundBinding> soundBinding_;
    std::unique_ptr<InfoBinding> infoBinding_;
    std::unique_ptr<Player> player_;
    std::unique_ptr<TableColumns> tableColumns_;
    std::unique_ptr<TableCommands> tableCommands_;
    std::unique_ptr<RackCommands> rackCommands_;
    std::function<Closing()> closing_;
    bool painted_ = false;
};
