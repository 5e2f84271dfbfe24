#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

class QDBusPendingCallWatcher;

/// Whether the desktop shows tray icons, by the StatusNotifier protocol on the session bus or, on X11, by
/// embedding windows. Asks without waiting, and then listens to signals; there is no timer. Main thread.
///
/// Qt answers this too, but waits for the bus, and asks it only once in the life of the program.
class TrayHost : public QObject
{
    Q_OBJECT

public:
    enum class Kind { None, StatusNotifier, Embedding };

    explicit TrayHost(const QDBusConnection &bus);
    ~TrayHost() override;

    /// Whether there is one of that kind now.
    bool has(Kind kind) const;

Q_SIGNALS:
    /// Emitted with the first answer, and when a host has appeared or, on the bus, disappeared. `kind` is the
    /// best one available.
    void changed(TrayHost::Kind kind);

private Q_SLOTS:
    void ask();

private:
    void receive(QDBusPendingCallWatcher *answer);
    void report();

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    bool statusNotifier_ = false;
};
