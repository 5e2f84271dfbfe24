#pragma once

#include "http/httpexchange.h"

#include <QUrl>

struct StreamRequest;

/// The headers of the requests for one stream. Its own ones, which may be credentials, go to the scheme, host
/// and port of its address only.
class StreamHeaders
{
public:
    /// The User-Agent that stream servers are sent.
    static QByteArray userAgent();

    /// A header that does not fit in a line is left out.
    explicit StreamHeaders(const StreamRequest &request);

    /// The address that the stream's own headers belong to.
    const QUrl &owner() const { return owner_; }
    /// What a request for `url` carries: the stream's own headers where they may go there, and always a
    /// User-Agent.
    HttpHeaders forUrl(const QUrl &url) const;

private:
    QUrl owner_;
    HttpHeaders own_;
};
