#include "desktop/xdesktop.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace {
/// Frees what xcb allocates.
struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};

/// Of the display that the environment names.
int screenNumber()
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) == 0) {
        return 0;
    }
    std::free(host);
    return screen;
}

xcb_window_t rootOf(xcb_connection_t *connection, int screen)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && screen > 0; --screen) {
        xcb_screen_next(&screens);
    }
    return screens.rem > 0 ? screens.data->root : xcb_window_t{XCB_NONE};
}

const char *bytesOf(const xcb_client_message_event_t &message)
{
    return reinterpret_cast<const char *>(&message);
}
} // namespace

XDesktop *XDesktop::instance()
{
    // Other platforms may have the interface as well, but no connection.
    if (qGuiApp == nullptr || QGuiApplication::platformName() != QLatin1StringView("xcb")) {
        return nullptr;
    }
    const auto *x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x == nullptr) {
        return nullptr;
    }
    static XDesktop desktop(x->connection());
    return &desktop;
}

XDesktop::XDesktop(xcb_connection_t *connection)
    : connection_(connection)
    , root_(rootOf(connection, screenNumber()))
    , manager_(atom("MANAGER"))
    , traySelection_(atom(QByteArray("_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber())).constData()))
{
}

xcb_atom_t XDesktop::atom(const char *name) const
{
    const auto request = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
        xcb_intern_atom_reply(connection_, request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void XDesktop::announce(WId window, const Activation &activation)
{
    if (!activation.startupId.isEmpty()) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window),
                            atom("_NET_STARTUP_ID"), atom("UTF8_STRING"), 8,
                            static_cast<std::uint32_t>(activation.startupId.size()),
                            activation.startupId.constData());
    }
}

void XDesktop::activate(WId window, const Activation &activation)
{
    constexpr std::uint32_t fromApplication = 1;
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = fromApplication;
    message.data.data32[1] = activation.startupTime();
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   bytesOf(message));
    if (!activation.startupId.isEmpty()) {
        endStartup(message.window, activation.startupId);
    }
    xcb_flush(connection_);
}

/// Broadcasts the text in messages of 20 bytes; a zero byte ends it (freedesktop.org startup notification).
void XDesktop::endStartup(std::uint32_t window, const QByteArray &startupId)
{
    QByteArray quoted = startupId;
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    const QByteArray text = "remove: ID=\"" + quoted + '"' + '\0';
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = window;
    message.type = atom("_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t next = atom("_NET_STARTUP_INFO");
    constexpr qsizetype piece = sizeof message.data.data8;
    for (qsizetype at = 0; at < text.size(); at += piece) {
        std::memset(message.data.data8, 0, piece);
        std::memcpy(message.data.data8, text.constData() + at,
                    static_cast<std::size_t>(std::min(piece, text.size() - at)));
        xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_PROPERTY_CHANGE, bytesOf(message));
        message.type = next;
    }
}

bool XDesktop::hasTray() const
{
    const auto request = xcb_get_selection_owner(connection_, traySelection_);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> reply(
        xcb_get_selection_owner_reply(connection_, request, nullptr));
    return reply && reply->owner != XCB_NONE;
}

void XDesktop::watchForTray(std::function<void()> appeared)
{
    QCoreApplication::instance()->removeNativeEventFilter(this);
    appeared_ = std::move(appeared);
    if (appeared_) {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
}

bool XDesktop::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    constexpr unsigned sentBySomebody = 0x80;
    if ((event->response_type & ~sentBySomebody) == XCB_CLIENT_MESSAGE) {
        const auto *client = static_cast<const xcb_client_message_event_t *>(message);
        if (client->type == manager_ && client->data.data32[1] == traySelection_) {
            // The call may end the watch.
            const auto appeared = appeared_;
            appeared();
        }
    }
    return false;
}
