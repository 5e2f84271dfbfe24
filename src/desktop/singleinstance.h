#pragma once

#include "desktop/activation.h"
#include "desktop/remotecommand.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QObject>
#include <optional>

/// Makes the program run once a session: the first instance owns a name on the session bus, and later ones
/// call it there. The interface is org.freedesktop.Application, so that desktops can call it too.
///
/// To be made before the QApplication: Qt connects to the bus as well, and would wait without a limit for one
/// that hangs. Where there is no bus, or none that answers in time, the program runs as if it were the only
/// instance. Main thread.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        /// This is the first instance, or there is no telling.
        Run,
        /// The first instance has received the call.
        Delivered,
        /// There is a first instance, but it does not answer.
        Unanswered,
        /// No other instance is running.
        NotRunning
    };

    /// Connects to the bus; waits at most half a second for one that does not answer.
    SingleInstance();
    /// Leaves the bus; callers that still wait for an answer get an error.
    ~SingleInstance() override;

    /// Becomes the first instance, or has the running one show its window.
    Outcome begin();
    /// Sends the command to the running instance.
    Outcome tell(RemoteCommand command) const;

    /// Whether another start of the program would reach this instance.
    bool isReachable() const;
    /// Not connected where there is no bus.
    const QDBusConnection &connection() const { return connection_; }

Q_SIGNALS:
    /// The program has been started once more.
    void activated(const Activation &activation);
    void commanded(RemoteCommand command);

private:
    enum class Ownership { Ours, Theirs, Unknown };

    Ownership requestName();
    Outcome deliver(const QString &method, const QVariantList &arguments, QDeadlineTimer deadline) const;

    QDBusConnection connection_;
    bool ownsName_ = false;
};
