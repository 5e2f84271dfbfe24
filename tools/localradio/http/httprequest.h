#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

#include <optional>

namespace localradio {

/// The head of an HTTP request, its spelling kept as it came. A value.
struct HttpRequest
{
    QByteArray method;
    QByteArray proxied = {}; ///< the "http://HOST" before the target, where a proxy is asked
    QByteArray target;       ///< of CONNECT "HOST:PORT"
    QList<QPair<QByteArray, QByteArray>> headers; ///< in the order received; values without outer blanks

    /// Reads `head`, everything before the blank line; lines may end in LF alone. Nothing if it is not a
    /// request for a path by HTTP/1, be it one on any host, or for a tunnel.
    static std::optional<HttpRequest> parse(const QByteArray &head);

    /// The value of the first header of that name, in any case; a null array if there is none.
    QByteArray header(QByteArrayView name) const;
};

} // namespace localradio
