#include "http/address.h"

QByteArray percentEscaped(const QString &text)
{
    return QUrl::toPercentEncoding(text, "!$&'()*+,/:;=?@");
}

QUrl urlFromAddress(const QString &address)
{
    return QUrl::fromEncoded(percentEscaped(address), QUrl::StrictMode);
}

bool isHttpUrl(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1StringView("http") || url.scheme() == QLatin1StringView("https"));
}

quint16 effectivePort(const QUrl &url)
{
    return static_cast<quint16>(url.port(url.scheme() == QLatin1StringView("https") ? 443 : 80));
}

bool isSameOrigin(const QUrl &left, const QUrl &right)
{
    return left.scheme() == right.scheme() && left.host() == right.host() &&
           effectivePort(left) == effectivePort(right);
}
