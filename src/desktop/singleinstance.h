#pragma once

#include "desktop/activation.h"
#include "desktop/remotecommand.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QObject>
#include <optional>

/// Makes the program run once a session: the first one owns a name on the session bus, and later ones talk to
/// it there. The interface is org.freedesktop.Application, so that desktops can do so too.
///
/// To be made before the QApplication: the toolkit connects to the bus as well, and would wait without end
/// for one that hangs. Where there is none, or none that answers in time, the program runs as if alone. Main
/// thread.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        /// This is the first one, or nobody can tell.
        Run,
        /// The first one has been told.
        Delivered,
        /// There is a first one, but it does not answer.
        Unanswered,
        /// There is nobody to be told.
        Nobody
    };

    /// Connects to the bus; waits for at most half a second for one that says nothing.
    SingleInstance();
    /// Leaves the bus; whoever has asked something of us meanwhile learns that we are gone.
    ~SingleInstance() override;

    /// Becomes the first one, or has the one that is there show its window.
    Outcome begin();
    /// Tells the one that is there.
    Outcome tell(RemoteCommand command) const;

    /// Whether another start of the program would reach this one.
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
