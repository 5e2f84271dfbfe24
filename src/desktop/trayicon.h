#pragma once

#include "desktop/remotecommand.h"
#include "desktop/trayhost.h"
#include "session/nowplaying.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <memory>

/// The program's icon in the desktop's tray: made when there is a tray to show it, whenever that is. Its menu
/// shows the window, plays and pauses, stops and quits; its tooltip names the station that plays. Main
/// thread.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    explicit TrayIcon(const QDBusConnection &bus);

    /// Whether the user can see it.
    bool isVisible() const;

    void setNowPlaying(const NowPlaying &nowPlaying);

    /// Plain text that no tray takes for markup.
    static QString toolTip(const NowPlaying &nowPlaying);

Q_SIGNALS:
    void showRequested();
    /// A click on the icon itself.
    void clicked();
    void commanded(RemoteCommand command);

private:
    void makeFor(TrayHost::Kind host);
    QAction *addCommand(const QString &text, RemoteCommand command);
    void refresh();

    TrayHost host_;
    /// What the icon has been made for: it stays with that.
    TrayHost::Kind kind_ = TrayHost::Kind::None;
    NowPlaying nowPlaying_;
    QAction *playPause_ = nullptr;
    QAction *stop_ = nullptr;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
};
