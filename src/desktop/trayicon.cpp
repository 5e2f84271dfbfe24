#include "desktop/trayicon.h"

#include "ui/widgets/svgicon.h"

#include <QAction>

TrayIcon::TrayIcon(const QDBusConnection &bus)
    : host_(bus)
{
    connect(&host_, &TrayHost::changed, this, [this](TrayHost::Kind host) {
        if (!icon_ && host != TrayHost::Kind::None) {
            makeFor(host);
        }
    });
}

bool TrayIcon::isVisible() const
{
    return icon_ && host_.has(kind_);
}

void TrayIcon::setNowPlaying(const NowPlaying &nowPlaying)
{
    nowPlaying_ = nowPlaying;
    refresh();
}

QString TrayIcon::toolTip(const NowPlaying &nowPlaying)
{
    if (!nowPlaying.isRunning() || nowPlaying.station.isEmpty()) {
        return tr("Plumtide");
    }
    // Trays differ in whether they take markup, so that escaping would show in some of them.
    QString name = nowPlaying.station;
    return name.replace(u'<', u'\u2039').replace(u'>', u'\u203a');
}

void TrayIcon::makeFor(TrayHost::Kind host)
{
    // Qt decides by itself how it shows its icons.
    kind_ = QSystemTrayIcon::isSystemTrayAvailable() ? host : TrayHost::Kind::Embedding;
    menu_ = std::make_unique<QMenu>();
    connect(menu_->addAction(tr("&Show Plumtide")), &QAction::triggered, this, &TrayIcon::showRequested);
    menu_->addSeparator();
    playPause_ = addCommand({}, RemoteCommand::PlayPause);
    stop_ = addCommand(tr("S&top"), RemoteCommand::Stop);
    menu_->addSeparator();
    addCommand(tr("&Quit"), RemoteCommand::Quit);
    icon_ = std::make_unique<QSystemTrayIcon>(svgIcon(QStringLiteral("plumtide")));
    icon_->setContextMenu(menu_.get());
    connect(icon_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) {
            Q_EMIT clicked();
        }
    });
    refresh();
    icon_->show();
}

QAction *TrayIcon::addCommand(const QString &text, RemoteCommand command)
{
    QAction *action = menu_->addAction(text);
    connect(action, &QAction::triggered, this, [this, command] { Q_EMIT commanded(command); });
    return action;
}

void TrayIcon::refresh()
{
    if (icon_) {
        const bool isPlaying = nowPlaying_.isRunning() || nowPlaying_.state == PlaybackState::Paused;
        playPause_->setText(nowPlaying_.isRunning() ? tr("&Pause") : tr("&Play"));
        playPause_->setEnabled(isPlaying);
        stop_->setEnabled(isPlaying);
        icon_->setToolTip(toolTip(nowPlaying_));
    }
}
