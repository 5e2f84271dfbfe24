#pragma once

#include "desktop/appdelegate.h"
#include "desktop/singleinstance.h"
#include "desktop/trayicon.h"
#include "mainwindow/mainwindow.h"

#include <memory>

/// Keeps the one main window reachable from the desktop: what closing it does, and what brings it back. The
/// program goes on without its window until somebody quits it. Main thread; lives as long as the window.
class Shell : public QObject
{
    Q_OBJECT

public:
    Shell(MainWindow &window, SingleInstance &instance);

    /// From now on the window closes whatever might bring it back: the program ends.
    void setEnding(bool ending) { ending_ = ending; }

    /// A window that nothing could bring back is not hidden. `isReachable`: by another start of the program.
    static MainWindow::Closing closing(bool isEnding, bool isReachable, bool hasTrayIcon);

private:
    void showTrayIcon(const QDBusConnection &bus);
    void toggleWindow();
    void perform(RemoteCommand command);

    MainWindow &window_;
    AppDelegate delegate_;
    std::unique_ptr<TrayIcon> trayIcon_;
    /// The playing station's name, for the tray icon.
    QString station_;
    bool ending_ = false;
};
