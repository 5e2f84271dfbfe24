#pragma once

#include <QtGlobal>

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

/// A port whose queue of connections is full: the system drops whatever asks for one more.
class FullPort
{
public:
    FullPort()
    {
        sockaddr_in address{};
        socklen_t size = sizeof(address);
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto *where = reinterpret_cast<sockaddr *>(&address);
        isFull_ = ::bind(sockets_[0], where, size) == 0 && ::listen(sockets_[0], 0) == 0 &&
                  ::getsockname(sockets_[0], where, &size) == 0;
        port_ = ntohs(address.sin_port);
        // A queue of length 0 takes one connection; a second one stays in progress for ever.
        isFull_ = isFull_ && ::connect(sockets_[1], where, size) == 0 &&
                  ::connect(sockets_[2], where, size) != 0 && errno == EINPROGRESS;
    }
    ~FullPort()
    {
        for (const int socket : sockets_) {
            ::close(socket);
        }
    }
    Q_DISABLE_COPY_MOVE(FullPort)

    /// Whether the queue could be filled.
    bool isFull() const { return isFull_; }
    /// On the loopback interface.
    quint16 port() const { return port_; }

private:
    std::array<int, 3> sockets_{::socket(AF_INET, SOCK_STREAM, 0), ::socket(AF_INET, SOCK_STREAM, 0),
                                ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0)};
    quint16 port_ = 0;
    bool isFull_ = false;
};
