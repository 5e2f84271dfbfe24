#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

class QDBusPendingCallWatcher;

/// Whether the desktop shows tray icons, by the status-notifier protocol on the session bus or, on X11, by
/// taking windows in. Asks without waiting, and then listens; nothing runs meanwhile. Main thread.
///
/// The toolkit answers this too, but waits for the bus, and asks it only once in the life of the program.
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
    /// Comes with the first answer, and when a host has come or, on the bus, gone. `kind` is the best that
    /// there is.
    void changed(TrayHost::Kind kind);

private Q_SLOTS:
    void ask();

private:
    void take(QDBusPendingCallWatcher *answer);
    void report();

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    bool statusNotifier_ = false;
};
