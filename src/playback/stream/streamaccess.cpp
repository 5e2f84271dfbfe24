#include "playback/stream/streamaccess.h"

#include "http/address.h"
#include "playback/stream/streamrequest.h"

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

bool isAuthorization(const QPair<QByteArray, QByteArray> &header)
{
    return header.first.compare("Authorization", Qt::CaseInsensitive) == 0;
}
} // namespace

QByteArray StreamAccess::userAgent()
{
    // Some servers answer anything that begins like a browser's agent with a web page.
    return QByteArrayLiteral("Plumtide/") + QCoreApplication::applicationVersion().toUtf8();
}

StreamAccess::StreamAccess(const StreamRequest &request)
    : owner_(request.url)
    , isConfidential_(!request.headers.isEmpty() || !request.url.userInfo().isEmpty())
{
    std::copy_if(request.headers.begin(), request.headers.end(), std::back_inserter(own_), fitsInALine);
    const bool isAuthorized = std::any_of(own_.cbegin(), own_.cend(), isAuthorization);
    if (!owner_.userInfo().isEmpty() && !isAuthorized) {
        own_.emplaceBack("Authorization", userInfoAuthorization(owner_));
    }
}

HttpRequest StreamAccess::requestFor(const QUrl &url, std::chrono::milliseconds deadline) const
{
    HttpRequest request{.url = url,
                        .headers = {{"User-Agent", userAgent()}},
                        .ownerHeaders = own_,
                        .owner = owner_,
                        .acceptsUnverified = !isConfidential_ && url.userInfo().isEmpty(),
                        .deadline = deadline};
    if (!url.userInfo().isEmpty() && !isSameOrigin(url, owner_)) {
        // Not by the address alone: a redirect within the server does not repeat it.
        request.ownerHeaders = {{"Authorization", userInfoAuthorization(url)}};
        request.owner = url;
    }
    return request;
}
