#include "localradio/http/httprequest.h"

#include <algorithm>

namespace localradio {

std::optional<HttpRequest> HttpRequest::parse(const QByteArray &head)
{
    if (head.contains('\0')) {
        return std::nullopt;
    }
    QList<QByteArray> lines = head.split('\n');
    for (QByteArray &line : lines) {
        if (line.endsWith('\r')) {
            line.chop(1);
        }
    }
    QList<QByteArray> words = lines.takeFirst().split(' ');
    QByteArray proxied;
    constexpr QByteArrayView scheme("http://");
    if (words.size() == 3 && words[1].startsWith(scheme)) {
        proxied = words[1].first(std::max(words[1].indexOf('/', scheme.size()), qsizetype{0}));
        words[1].remove(0, proxied.size());
    }
    if (words.size() != 3 || words[0].isEmpty() || (!words[1].startsWith('/') && words[0] != "CONNECT") ||
        !words[2].startsWith("HTTP/1.")) {
        return std::nullopt;
    }
    HttpRequest request{words[0], proxied, words[1], {}};
    for (const QByteArray &line : std::as_const(lines)) {
        const qsizetype colon = line.indexOf(':');
        if (colon <= 0) {
            return std::nullopt;
        }
        request.headers.append({line.left(colon), line.mid(colon + 1).trimmed()});
    }
    return request;
}

QByteArray HttpRequest::header(QByteArrayView name) const
{
    const auto found = std::ranges::find_if(
        headers, [name](const auto &entry) { return name.compare(entry.first, Qt::CaseInsensitive) == 0; });
    return found == headers.end() ? QByteArray() : found->second;
}

} // namespace localradio
