#pragma once

#include <QByteArray>

namespace localradio {

/// A whole answer to an HTTP request.
struct Answer
{
    int status = 200;
    QByteArray contentType = "text/plain; charset=utf-8";
    QByteArray body;
};

} // namespace localradio
