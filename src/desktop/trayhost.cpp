#include "desktop/trayhost.h"

#include "desktop/xdesktop.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace {
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString propertiesName = QStringLiteral("org.freedesktop.DBus.Properties");
} // namespace

TrayHost::TrayHost(const QDBusConnection &bus)
    : bus_(bus)
    , watcher_(watcherName, bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayHost::ask);
    if (bus_.isConnected()) {
        for (const auto &signal : {QStringLiteral("StatusNotifierHostRegistered"),
                                   QStringLiteral("StatusNotifierHostUnregistered")}) {
            // QtDBus has no other way than by name.
            bus_.connect(watcherName, watcherPath, watcherName, signal, this, SLOT(ask()));
        }
    }
    if (XDesktop *x = XDesktop::instance()) {
        x->watchForTray([this] { report(); });
    }
    ask();
}

TrayHost::~TrayHost()
{
    if (XDesktop *x = XDesktop::instance()) {
        x->watchForTray({});
    }
}

bool TrayHost::has(Kind kind) const
{
    const XDesktop *x = XDesktop::instance();
    switch (kind) {
    case Kind::StatusNotifier:
        return statusNotifier_ && bus_.isConnected();
    case Kind::Embedding:
        return x != nullptr && x->hasTray();
    case Kind::None:
        break;
    }
    return false;
}

void TrayHost::ask()
{
    if (!bus_.isConnected()) {
        QMetaObject::invokeMethod(this, &TrayHost::report, Qt::QueuedConnection);
        return;
    }
    auto question =
        QDBusMessage::createMethodCall(watcherName, watcherPath, propertiesName, QStringLiteral("Get"));
    question.setArguments({watcherName, QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    auto *answer = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, &TrayHost::receive);
}

void TrayHost::receive(QDBusPendingCallWatcher *answer)
{
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    statusNotifier_ = reply.isValid() && reply.value().variant().toBool();
    answer->deleteLater();
    report();
}

void TrayHost::report()
{
    const Kind best = has(Kind::StatusNotifier) ? Kind::StatusNotifier
                      : has(Kind::Embedding)    ? Kind::Embedding
                                                : Kind::None;
    Q_EMIT changed(best);
}
