#pragma once

#include "desktop/appdelegate.h"
#include "desktop/singleinstance.h"
#include "desktop/trayicon.h"
#include "mainwindow/mainwindow.h"

#include <memory>

class RadioSession;

/// Keeps the one main window reachable from the desktop: what closing it does, and what brings it back. The
/// program goes on without its window until somebody quits it. Main thread; lives as long as the window.
class Shell : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this object; the window is the session's.
    Shell(MainWindow &window, RadioSession &session, SingleInstance &instance);

    /// From now on the window closes whatever might bring it back: the program ends.
    void setEnding(bool ending) { ending_ = ending; }

    /// A window that nothing could bring back is not hidden. `isReachable`: by another start of the program.
    static MainWindow::Closing closing(bool isEnding, bool isReachable, bool hasTrayIcon);

private:
    void showTrayIcon(const QDBusConnection &bus);
    void toggleWindow();
    void perform(RemoteCommand command);

    MainWindow &window_;
    RadioSession &session_;
    AppDelegate delegate_;
    std::unique_ptr<TrayIcon> trayIcon_;
    bool ending_ = false;
};
