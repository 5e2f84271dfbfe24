#include "desktop/singleinstance.h"

#include "desktop/applicationadaptor.h"
#include "desktop/sessionbus.h"

#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <algorithm>

namespace {
Q_LOGGING_CATEGORY(lcInstance, "plumtide.app")

using std::chrono::milliseconds;

/// Together the most that a bus may delay a start.
constexpr milliseconds busPatience{500};
constexpr milliseconds namePatience{500};
/// How long the first instance may take to answer.
constexpr milliseconds ownerPatience{5000};

const QString connectionName = QStringLiteral("plumtide");
const QString ourName = QStringLiteral("com.ostrel.plumtide");
const QString ourPath = QStringLiteral("/com/ostrel/plumtide");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");
/// The errors of different bus implementations for a name without an owner.
const QStringList noOwnerErrors{QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner"),
                                QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown")};
const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

QDBusConnection connectToBus()
{
    const QByteArray address = SessionBus::address();
    if (address.isEmpty()) {
        // The libraries would start one.
        SessionBus::disable();
        return QDBusConnection(connectionName);
    }
    if (!SessionBus::answers(address, busPatience)) {
        qCWarning(lcInstance).noquote() << "the session bus does not answer: going on without it";
        SessionBus::disable();
        return QDBusConnection(connectionName);
    }
    // A connection of our own: it can be closed when the program ends, and needs no QApplication.
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
}
} // namespace

SingleInstance::SingleInstance()
    : connection_(connectToBus())
{
    new ApplicationAdaptor(this);
    connection_.registerObject(ourPath, this, QDBusConnection::ExportAdaptors);
}

SingleInstance::~SingleInstance()
{
    connection_ = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(connectionName);
}

SingleInstance::Outcome SingleInstance::begin()
{
    const QDeadlineTimer deadline(ownerPatience);
    Outcome outcome = Outcome::NotRunning;
    // The owner may be about to end, and not answer any more: then the name is free a moment later.
    while (outcome == Outcome::NotRunning) {
        const Ownership ownership = requestName();
        if (ownership != Ownership::Theirs) {
            ownsName_ = ownership == Ownership::Ours;
            return Outcome::Run;
        }
        outcome =
            deliver(QStringLiteral("Activate"), {Activation::fromEnvironment().platformData()}, deadline);
    }
    return outcome;
}

SingleInstance::Outcome SingleInstance::tell(RemoteCommand command) const
{
    for (const auto &[one, name] : remoteCommandNames) {
        if (one == command) {
            return deliver(QStringLiteral("ActivateAction"),
                           {QString(name), QVariantList(), Activation::fromEnvironment().platformData()},
                           QDeadlineTimer(ownerPatience));
        }
    }
    return Outcome::NotRunning;
}

bool SingleInstance::isReachable() const
{
    return ownsName_ && connection_.isConnected();
}

SingleInstance::Ownership SingleInstance::requestName()
{
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    constexpr uint exists = 3;
    auto request = QDBusMessage::createMethodCall(busName, busPath, busName, QStringLiteral("RequestName"));
    request.setArguments({ourName, doNotQueue});
    const QDBusMessage reply =
        connection_.call(request, QDBus::Block, static_cast<int>(namePatience.count()));
    const uint result = reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toUInt() : 0;
    return result == primaryOwner ? Ownership::Ours
           : result == exists     ? Ownership::Theirs
                                  : Ownership::Unknown;
}

SingleInstance::Outcome SingleInstance::deliver(const QString &method, const QVariantList &arguments,
                                                QDeadlineTimer deadline) const
{
    auto call = QDBusMessage::createMethodCall(ourName, ourPath, interfaceName, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    const auto patience = static_cast<int>(std::max<qint64>(1, deadline.remainingTime()));
    const QDBusMessage reply = connection_.call(call, QDBus::Block, patience);
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return Outcome::Delivered;
    }
    // The bus also answers NoReply for an owner that disconnects without answering, but at once.
    const QString error = reply.errorName();
    const bool isGone = noOwnerErrors.contains(error) ||
                        error == QDBusError::errorString(QDBusError::Disconnected) ||
                        (error == QDBusError::errorString(QDBusError::NoReply) && !deadline.hasExpired());
    return isGone ? Outcome::NotRunning : Outcome::Unanswered;
}
