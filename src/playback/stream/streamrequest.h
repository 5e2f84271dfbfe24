#pragma once

#include "http/httpmessage.h"

#include <QUrl>

/// What a stream is started from.
struct StreamRequest
{
    /// A stream or a playlist of streams. An item of a URL that is not valid fails.
    QUrl url;
    /// How long the stream may take to start, in seconds; never negative.
    double timeout = 15.0;
    /// Sent with every request for the scheme, host and port of `url`, and to no other server that a redirect
    /// or a playlist names. One that no header line can hold is left out. Without a "User-Agent" among them
    /// the backend sends its own.
    HttpHeaders headers = {};
};
