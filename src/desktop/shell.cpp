#include "desktop/shell.h"

#include <QApplication>

Shell::Shell(MainWindow &window, SingleInstance &instance)
    : window_(window)
    , delegate_(&window)
{
    QApplication::setQuitOnLastWindowClosed(false);
    // Or the end of a file dialog's work would end a program without a window.
    QCoreApplication::setQuitLockEnabled(false);
    window.setClosing([this, &instance] {
        return closing(ending_, instance.isReachable(), trayIcon_ && trayIcon_->isVisible());
    });
    connect(&window, &MainWindow::showRequested, this, [this] { delegate_.showWindow(); });
    connect(&window, &MainWindow::quitRequested, qApp, &QApplication::quit);
    connect(&instance, &SingleInstance::activated, this, [this](const Activation &activation) {
        delegate_.applicationShouldHandleReopen(window_.isVisible(), activation);
    });
    connect(&instance, &SingleInstance::commanded, this, &Shell::perform);
    connect(&window.player().streamPlayback(), &StreamPlayback::titleChanged, this,
            [this](const QString &title) { station_ = title; });
    // Not before: the tray costs more than the window may wait for.
    connect(&window, &MainWindow::firstFramePainted, this,
            [this, bus = instance.connection()] { showTrayIcon(bus); });
}

MainWindow::Closing Shell::closing(bool isEnding, bool isReachable, bool hasTrayIcon)
{
    return isEnding || isReachable || hasTrayIcon ? MainWindow::Closing::Hides
                                                  : MainWindow::Closing::Minimises;
}

void Shell::showTrayIcon(const QDBusConnection &bus)
{
    trayIcon_ = std::make_unique<TrayIcon>(bus);
    const StreamPlayback &playback = window_.player().streamPlayback();
    const auto refresh = [this, &playback] {
        const bool isRunning = playback.myBackendPlayer() && playback.myBackendPlayer()->rate() != 0;
        trayIcon_->setPlaying(isRunning                    ? TrayIcon::Playing::Running
                              : playback.myBackendPlayer() ? TrayIcon::Playing::Paused
                                                           : TrayIcon::Playing::Nothing);
    };
    trayIcon_->setStation(station_);
    refresh();
    connect(&playback, &StreamPlayback::titleChanged, trayIcon_.get(), &TrayIcon::setStation);
    connect(&playback, &StreamPlayback::runningChanged, trayIcon_.get(), refresh);
    connect(trayIcon_.get(), &TrayIcon::showRequested, this, [this] { delegate_.showWindow(); });
    connect(trayIcon_.get(), &TrayIcon::clicked, this, &Shell::toggleWindow);
    connect(trayIcon_.get(), &TrayIcon::commanded, this, &Shell::perform);
}

/// Only a window that the user is working in goes away: any other he may well be looking for.
void Shell::toggleWindow()
{
    if (window_.isActiveWindow() && !window_.isMinimized()) {
        window_.close();
    } else {
        delegate_.showWindow();
    }
}

void Shell::perform(RemoteCommand command)
{
    switch (command) {
    case RemoteCommand::PlayPause:
        window_.player().spaceKeyAction();
        break;
    case RemoteCommand::Stop:
        window_.player().streamPlayback().destroyPlayer();
        break;
    case RemoteCommand::Quit:
        // Whoever asked gets his answer first.
        QMetaObject::invokeMethod(qApp, &QApplication::quit, Qt::QueuedConnection);
        break;
    }
}
