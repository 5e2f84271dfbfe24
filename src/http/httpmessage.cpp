#include "http/httpmessage.h"

#include "http/address.h"

#include <algorithm>
#include <array>

namespace {
bool isNamed(const QPair<QByteArray, QByteArray> &header, QByteArrayView name)
{
    return header.first.compare(name, Qt::CaseInsensitive) == 0;
}

/// Sets a header, in the place of one of the same name.
void setHeader(HttpHeaders &headers, const QByteArray &name, const QByteArray &value)
{
    headers.removeIf([&name](const auto &header) { return isNamed(header, name); });
    headers.emplaceBack(name, value);
}

template <std::size_t Count>
bool isOneOf(const QByteArray &coding, const std::array<QByteArrayView, Count> &names)
{
    return std::any_of(names.cbegin(), names.cend(), [&coding](QByteArrayView name) {
        return coding.compare(name, Qt::CaseInsensitive) == 0;
    });
}
} // namespace

HttpHeaders HttpRequest::headersFor(const QUrl &target) const
{
    HttpHeaders all{{"Accept", "*/*"}, {"Cache-Control", "no-cache"}};
    if (!isCompressible) {
        all.emplaceBack("Accept-Encoding", "identity");
    }
    for (const auto &[name, value] : headers) {
        setHeader(all, name, value);
    }
    if (!target.userInfo().isEmpty()) {
        setHeader(all, "Authorization", userInfoAuthorization(target));
    }
    if (isSameOrigin(target, owner)) {
        for (const auto &[name, value] : ownerHeaders) {
            setHeader(all, name, value);
        }
    }
    return all;
}

bool HttpRequest::isConfidential(const QUrl &target) const
{
    return !target.userInfo().isEmpty() || (!ownerHeaders.isEmpty() && isSameOrigin(target, owner));
}

bool HttpRequest::hasBody() const
{
    return !body.isEmpty() || method == "POST" || method == "PUT";
}

void HttpRequest::followRedirect(int status)
{
    constexpr int temporaryRedirect = 307;
    constexpr int permanentRedirect = 308;
    if (status != temporaryRedirect && status != permanentRedirect) {
        method = QByteArrayLiteral("GET");
        body.clear();
    }
}

QByteArray HttpResponse::header(QByteArrayView name) const
{
    const auto found = std::find_if(headers.cbegin(), headers.cend(),
                                    [name](const auto &header) { return isNamed(header, name); });
    return found != headers.cend() ? found->second : QByteArray();
}

bool HttpResponse::isRedirect() const
{
    return (status == 301 || status == 302 || status == 303 || status == 307 || status == 308) &&
           !header("Location").isEmpty();
}

QUrl HttpResponse::redirectTarget() const
{
    return url.resolved(QUrl::fromEncoded(header("Location")));
}

/// Each coding within another would multiply what a few bytes can make, and libcurl decodes whatever it
/// knows: zstd, whose decoder may be told to take 128 MiB, among it.
bool HttpResponse::isReadable(bool isCompressible) const
{
    static constexpr std::array<QByteArrayView, 5> contentCodings{"gzip", "x-gzip", "deflate", "br",
                                                                  "identity"};
    static constexpr std::array<QByteArrayView, 2> transferCodings{"chunked", "identity"};
    int codings = 0;
    for (const auto &header : headers) {
        if (isNamed(header, "Transfer-Encoding") && !isOneOf(header.second, transferCodings)) {
            return false;
        }
        if (isCompressible && isNamed(header, "Content-Encoding") && !header.second.isEmpty()) {
            ++codings;
            if (codings > 1 || !isOneOf(header.second, contentCodings)) {
                return false;
            }
        }
    }
    return true;
}

QByteArray userInfoAuthorization(const QUrl &url)
{
    const QString credentials = url.userName(QUrl::FullyDecoded) + u':' + url.password(QUrl::FullyDecoded);
    return "Basic " + credentials.toUtf8().toBase64();
}

QByteArray requestAddress(const QUrl &url)
{
    return url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment);
}
