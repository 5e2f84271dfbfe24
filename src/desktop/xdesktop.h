#pragma once

#include "desktop/activation.h"

#include <QAbstractNativeEventFilter>
#include <QWindow>
#include <functional>

struct xcb_connection_t;

/// The desktop's conventions on X11 that Qt does not offer: activation with another process's timestamp, and
/// the older kind of tray. Main thread.
class XDesktop : private QAbstractNativeEventFilter
{
public:
    /// Null where the windows are not on an X server. Lives as long as the QApplication.
    static XDesktop *instance();

    /// To be called before the window is shown: names the startup sequence that shows it.
    void announce(WId window, const Activation &activation);
    /// To be called afterwards: asks the window manager to raise the window, with the time of the user's
    /// request, and ends the desktop's startup feedback.
    void activate(WId window, const Activation &activation);

    /// Whether there is a tray that embeds windows. Asks the X server.
    bool hasTray() const;
    /// Calls `appeared` whenever such a tray appears; an empty function ends that.
    void watchForTray(std::function<void()> appeared);

private:
    explicit XDesktop(xcb_connection_t *connection);
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    std::uint32_t atom(const char *name) const;
    void endStartup(std::uint32_t window, const QByteArray &startupId);

    xcb_connection_t *connection_;
    /// 0 where there is no such screen.
    std::uint32_t root_ = 0;
    std::uint32_t manager_;
    std::uint32_t traySelection_;
    std::function<void()> appeared_;
};
