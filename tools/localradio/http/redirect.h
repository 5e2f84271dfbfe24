#pragma once

#include "localradio/http/ports.h"

#include <QByteArray>

namespace localradio {

class HttpConnection;

/// Where `connection` is sent by a redirect that is asked for as `redirect`: "loop" is the request itself,
/// "file" a file, "same" the request for `healthy`, a target without faults, and "port" likewise on the other
/// one of `ports`, and "tls" on the encrypted one. Anything else is an address as it stands.
QByteArray redirectLocation(const QByteArray &redirect, const HttpConnection &connection, const Ports &ports,
                            const QByteArray &healthy);

} // namespace localradio
