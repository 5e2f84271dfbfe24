#include "playback/streamheaders.h"

#include "http/address.h"
#include "playback/backend.h"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>

namespace {
/// Whether a header can be sent without making up further lines.
bool fitsInALine(const QPair<QByteArray, QByteArray> &header)
{
    const QByteArray line = header.first + header.second;
    return !line.contains('\r') && !line.contains('\n') && !line.contains('\0');
}

bool isUserAgent(const QPair<QByteArray, QByteArray> &header)
{
    return header.first.compare("User-Agent", Qt::CaseInsensitive) == 0;
}
} // namespace

QByteArray StreamHeaders::userAgent()
{
    // Some servers answer anything that begins like a browser's agent with a web page.
    return QByteArrayLiteral("Plumtide/") + QCoreApplication::applicationVersion().toUtf8();
}

StreamHeaders::StreamHeaders(const StreamRequest &request)
    : owner_(request.url)
{
    std::copy_if(request.headers.begin(), request.headers.end(), std::back_inserter(own_), fitsInALine);
}

HttpHeaders StreamHeaders::forUrl(const QUrl &url) const
{
    HttpHeaders headers;
    if (isSameOrigin(url, owner_)) {
        headers = own_;
    }
    if (std::none_of(headers.cbegin(), headers.cend(), isUserAgent)) {
        headers.prepend({"User-Agent", userAgent()});
    }
    return headers;
}
