#include "playback/stream/playlist.h"

#include "base/leadinginteger.h"
#include "http/address.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <utility>
#include <vector>

namespace {
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

QByteArrayView withoutMark(QByteArrayView text)
{
    return text.startsWith(byteOrderMark) ? text.sliced(byteOrderMark.size()) : text;
}

bool beginsWith(const QByteArray &text, QByteArrayView beginning)
{
    return QByteArrayView(text)
               .first(std::min(text.size(), beginning.size()))
               .compare(beginning, Qt::CaseInsensitive) == 0;
}

bool isText(QByteArrayView head)
{
    return std::all_of(head.begin(), head.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= ' ' || (byte >= '\t' && byte <= '\r');
    });
}

void appendAddress(QList<QUrl> &list, const QUrl &address)
{
    if (isHttpUrl(address)) {
        list.append(address);
    }
}

/// "File1=...", "File2=..."; the numbers give the order, the file's own where two are the same.
QList<QUrl> numberedEntries(const QStringList &lines)
{
    std::vector<std::pair<qint64, QUrl>> files;
    for (const QString &line : lines) {
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0 && line.startsWith(QLatin1StringView("File"), Qt::CaseInsensitive) &&
            files.size() < static_cast<std::size_t>(Playlist::maximumEntries)) {
            files.emplace_back(leadingInteger(QStringView(line).mid(4)),
                               QUrl(line.mid(equals + 1).trimmed()));
        }
    }
    std::stable_sort(files.begin(), files.end(),
                     [](const auto &left, const auto &right) { return left.first < right.first; });
    QList<QUrl> list;
    for (const auto &[number, address] : files) {
        appendAddress(list, address);
    }
    return list;
}

QList<QUrl> lineEntries(const QStringList &lines, const QUrl &base)
{
    QList<QUrl> list;
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1StringView("#EXT-X-"))) {
            return {};
        }
        if (!line.isEmpty() && !line.startsWith(u'#') && list.size() < Playlist::maximumEntries) {
            appendAddress(list, base.resolved(QUrl(line)));
        }
    }
    return list;
}
} // namespace

Playlist::Kind Playlist::kindOf(QByteArrayView head)
{
    const QByteArray text = withoutMark(head).toByteArray().trimmed();
    if (text.isEmpty() || !isText(text)) {
        return Kind::Media;
    }
    for (const QByteArrayView beginning : {"[playlist]", "#EXT", "http://", "https://"}) {
        if (beginsWith(text, beginning)) {
            return Kind::Playlist;
        }
    }
    return Kind::Text;
}

QList<QUrl> Playlist::entries(QByteArrayView playlist, const QUrl &base)
{
    const QString text = QString::fromUtf8(withoutMark(playlist)).trimmed();
    QStringList lines;
    for (const QString &part : text.split(u'\n')) {
        for (const QString &line : part.split(u'\r')) {
            lines.append(line.trimmed());
        }
    }
    return text.startsWith(QLatin1StringView("[playlist]"), Qt::CaseInsensitive) ? numberedEntries(lines)
                                                                                 : lineEntries(lines, base);
}

bool Playlist::isSegmented(QByteArrayView playlist)
{
    return playlist.indexOf("#EXT-X-TARGETDURATION") >= 0 || playlist.indexOf("#EXT-X-STREAM-INF") >= 0;
}
