#include "desktop/sessionbus.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QList>
#include <QUrl>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {
constexpr const char *addressVariable = "DBUS_SESSION_BUS_ADDRESS";

/// The name of the socket; empty where the address has none. One that begins with a zero byte is abstract,
/// not a file.
QByteArray socketName(const QByteArray &address)
{
    constexpr QByteArrayView unixSockets("unix:");
    if (!address.startsWith(unixSockets)) {
        return {};
    }
    for (const QByteArray &part : address.mid(unixSockets.size()).split(',')) {
        const qsizetype equals = part.indexOf('=');
        const QByteArray key = part.left(equals);
        if (key == "path" || key == "abstract") {
            const QByteArray name = QByteArray::fromPercentEncoding(part.mid(equals + 1));
            return key == "path" ? name : '\0' + name;
        }
    }
    return {};
}

/// Starts D-Bus authentication, and waits for the first byte of any answer. A rejection is an answer too.
bool socketAnswers(int socket, const QByteArray &name, const QDeadlineTimer &deadline)
{
    sockaddr_un where = {};
    where.sun_family = AF_UNIX;
    const auto length = static_cast<std::size_t>(name.size());
    if (length >= sizeof where.sun_path) {
        return false;
    }
    std::memcpy(where.sun_path, name.constData(), length);
    const bool isFile = name.front() != '\0';
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length + (isFile ? 1 : 0));
    if (::connect(socket, reinterpret_cast<const sockaddr *>(&where), size) != 0) {
        return false;
    }
    const QByteArray greeting =
        '\0' + QByteArray("AUTH EXTERNAL ") + QByteArray::number(::getuid()).toHex() + "\r\n";
    if (::send(socket, greeting.constData(), static_cast<std::size_t>(greeting.size()), MSG_NOSIGNAL) !=
        greeting.size()) {
        return false;
    }
    pollfd waiting = {socket, POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&waiting, 1, static_cast<int>(deadline.remainingTime()));
    } while (ready < 0 && errno == EINTR);
    char first = 0;
    return ready > 0 && ::recv(socket, &first, 1, 0) == 1;
}
} // namespace

QByteArray SessionBus::address()
{
    QByteArray address = qgetenv(addressVariable);
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    if (address.isEmpty() && !runtime.isEmpty() && QFile::exists(QFile::decodeName(runtime + "/bus"))) {
        address = "unix:path=" + runtime + "/bus";
    }
    return address.startsWith("disabled:") ? QByteArray() : address;
}

bool SessionBus::answers(const QByteArray &address, std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    for (const QByteArray &one : address.split(';')) {
        const QByteArray name = socketName(one);
        if (name.isEmpty()) {
            return true;
        }
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        const bool answered = socket >= 0 && socketAnswers(socket, name, deadline);
        ::close(socket);
        if (answered) {
            return true;
        }
    }
    return false;
}

void SessionBus::disable()
{
    qputenv(addressVariable, "disabled:");
}
