#include "localradio/http/redirect.h"

#include "localradio/http/httpconnection.h"

namespace localradio {

QByteArray redirectLocation(const QByteArray &redirect, const HttpConnection &connection, const Ports &ports,
                            const QByteArray &healthy)
{
    const QByteArray here = connection.origin();
    if (redirect == "same") {
        return here + healthy;
    }
    if (redirect == "port") {
        return originOf(ports.otherThan(connection.port())).toUtf8() + healthy;
    }
    if (redirect == "tls") {
        return originOf(ports.encrypted, true).toUtf8() + healthy;
    }
    if (redirect == "loop") {
        return here + connection.request().target;
    }
    return redirect == "file" ? "file:///etc/passwd" : redirect;
}

} // namespace localradio
