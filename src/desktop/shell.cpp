#include "desktop/shell.h"

#include "session/radiosession.h"

#include <QApplication>

Shell::Shell(MainWindow &window, RadioSession &session, SingleInstance &instance)
    : window_(window)
    , session_(session)
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
    trayIcon_->setNowPlaying(session_.nowPlaying());
    connect(&session_, &RadioSession::nowPlayingChanged, trayIcon_.get(), &TrayIcon::setNowPlaying);
    connect(trayIcon_.get(), &TrayIcon::showRequested, this, [this] { delegate_.showWindow(); });
    connect(trayIcon_.get(), &TrayIcon::clicked, this, &Shell::toggleWindow);
    connect(trayIcon_.get(), &TrayIcon::commanded, this, &Shell::perform);
}

/// Only a window that the user is working in goes away: they may well be looking for any other.
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
        session_.playback().destroyPlayer();
        break;
    case RemoteCommand::Quit:
        // Whoever asked is answered first.
        QMetaObject::invokeMethod(qApp, &QApplication::quit, Qt::QueuedConnection);
        break;
    }
}
