#pragma once

#include "http/httpmessage.h"

#include <QUrl>
#include <chrono>

struct StreamRequest;

/// How one station's servers are asked, for whatever of it: its own headers, which may be credentials, go to
/// the scheme, host and port of its address only, and a user name and password in an address to that
/// address's. A station that has either is asked for at verified servers alone.
class StreamAccess
{
public:
    /// The User-Agent that stream servers are sent.
    static QByteArray userAgent();

    /// A header that does not fit in a line is left out.
    explicit StreamAccess(const StreamRequest &request);

    /// A request for what is at `url`, to be answered within `deadline`.
    HttpRequest requestFor(const QUrl &url, std::chrono::milliseconds deadline) const;

private:
    QUrl owner_;
    HttpHeaders own_;
    bool isConfidential_;
};
