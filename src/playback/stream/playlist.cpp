#include "playback/stream/playlist.h"

#include "base/leadinginteger.h"
#include "http/address.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <iterator>
#include <utility>
#include <vector>

namespace {
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

QString decoded(QByteArrayView text)
{
    return QString::fromUtf8(text.startsWith(byteOrderMark) ? text.sliced(byteOrderMark.size()) : text)
        .trimmed();
}

QStringList linesOf(const QString &text)
{
    QStringList lines;
    for (const QString &part : text.split(u'\n')) {
        for (const QString &line : part.split(u'\r')) {
            lines.append(line.trimmed());
        }
    }
    return lines;
}

template <std::size_t Count>
bool beginsWithAny(QStringView text, const std::array<QLatin1StringView, Count> &beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(), [text](QLatin1StringView beginning) {
        return text.startsWith(beginning, Qt::CaseInsensitive);
    });
}

bool isText(QByteArrayView head)
{
    return std::all_of(head.begin(), head.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= ' ' || (byte >= '\t' && byte <= '\r');
    });
}

bool isSection(QStringView line)
{
    return beginsWithAny<2>(line, {QLatin1StringView("[playlist]"), QLatin1StringView("[reference]")});
}

bool isMarkup(QStringView text)
{
    return text.startsWith(u'<');
}

bool isMarkupOfList(QStringView text)
{
    const auto contains = [text](QLatin1StringView tag) { return text.contains(tag, Qt::CaseInsensitive); };
    return (contains(QLatin1StringView("<asx")) || contains(QLatin1StringView("<playlist"))) &&
           !contains(QLatin1StringView("<html")) && !contains(QLatin1StringView("<!doctype html"));
}

QStringView withoutQuotes(QStringView text)
{
    const bool isQuoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == u'"' || text.front() == u'\'');
    return isQuoted ? text.sliced(1, text.size() - 2).trimmed() : text;
}

/// Whether a line may be an address: an absolute one, or one word with a folder or an extension. A sentence
/// is none.
bool looksLikeAddress(QStringView line)
{
    const QStringView address = withoutQuotes(line);
    if (beginsWithAny<2>(address, {QLatin1StringView("http://"), QLatin1StringView("https://")})) {
        return true;
    }
    const qsizetype dot = address.lastIndexOf(u'.');
    const bool hasExtension = dot >= 0 && dot + 1 < address.size() && address[dot + 1].isLetterOrNumber();
    return (hasExtension || address.contains(u'/')) &&
           std::none_of(address.begin(), address.end(), [](QChar letter) {
               return letter.isSpace() || QStringView(u"<>\"{}|^`").contains(letter);
           });
}

/// Any line may precede a section; other lists have nothing but addresses and comments.
bool isListOfLines(const QStringList &lines)
{
    bool isList = true;
    for (const QString &line : lines) {
        if (isSection(line) || (isList && line.startsWith(QLatin1StringView("#EXT"), Qt::CaseInsensitive))) {
            return true;
        }
        isList = isList && (line.isEmpty() || line.startsWith(u'#') || looksLikeAddress(line));
    }
    return isList;
}

bool hasSegments(const QStringList &lines)
{
    return std::any_of(lines.begin(), lines.end(), [](const QString &line) {
        return beginsWithAny<5>(line, {QLatin1StringView("#EXT-X-TARGETDURATION:"),
                                       QLatin1StringView("#EXT-X-MEDIA-SEQUENCE:"),
                                       QLatin1StringView("#EXT-X-STREAM-INF:"),
                                       QLatin1StringView("#EXT-X-KEY:"), QLatin1StringView("#EXT-X-MAP:")});
    });
}

/// "File1=...", "File2=...", or "Ref1=..."; the numbers give the order, the file's own where two are the
/// same.
QStringList numberedEntries(const QStringList &lines)
{
    std::vector<std::pair<qint64, QString>> files;
    for (const QString &line : lines) {
        const qsizetype equals = line.indexOf(u'=');
        const qsizetype number = line.startsWith(QLatin1StringView("File"), Qt::CaseInsensitive)  ? 4
                                 : line.startsWith(QLatin1StringView("Ref"), Qt::CaseInsensitive) ? 3
                                                                                                  : -1;
        if (number > 0 && equals >= number && (equals == number || line[number].isDigit()) &&
            files.size() < static_cast<std::size_t>(Playlist::maximumEntries)) {
            files.emplace_back(leadingInteger(QStringView(line).sliced(number)), line.sliced(equals + 1));
        }
    }
    std::stable_sort(files.begin(), files.end(),
                     [](const auto &left, const auto &right) { return left.first < right.first; });
    QStringList list;
    for (const auto &[number, address] : files) {
        list.append(address);
    }
    return list;
}

QStringList lineEntries(const QStringList &lines)
{
    QStringList list;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(list),
                 [](const QString &line) { return !line.startsWith(u'#'); });
    return list;
}

/// The quoted value of an attribute in a tag's inside; empty where it has none.
QStringView attribute(QStringView tag, QLatin1StringView name)
{
    for (qsizetype at = 0; (at = tag.indexOf(name, at, Qt::CaseInsensitive)) >= 0; at += name.size()) {
        const QStringView rest = tag.sliced(at + name.size()).trimmed();
        const QStringView value = rest.startsWith(u'=') ? rest.sliced(1).trimmed() : QStringView();
        if (value.startsWith(u'"') || value.startsWith(u'\'')) {
            const qsizetype end = value.indexOf(value.front(), 1);
            if (end < 0 || (at > 0 && tag[at - 1].isSpace())) {
                return value.first(std::max(end, qsizetype{1})).sliced(1);
            }
        }
    }
    return {};
}

QString withoutEntities(QString text)
{
    return text.replace(QLatin1StringView("&quot;"), QLatin1StringView("\""))
        .replace(QLatin1StringView("&apos;"), QLatin1StringView("'"))
        .replace(QLatin1StringView("&lt;"), QLatin1StringView("<"))
        .replace(QLatin1StringView("&gt;"), QLatin1StringView(">"))
        .replace(QLatin1StringView("&amp;"), QLatin1StringView("&"));
}

/// The addresses of ASX (`<ref href="...">`) and of XSPF (`<location>...</location>` in a `<track>`; outside
/// of one it is the playlist's own). What stations write is seldom well-formed.
QStringList markupEntries(QStringView text)
{
    QStringList list;
    bool isInTrack = false;
    for (qsizetype next = 0; (next = text.indexOf(u'<', next)) >= 0;) {
        const QStringView rest = text.sliced(next + 1);
        const bool isComment = rest.startsWith(QLatin1StringView("!--"));
        const qsizetype end = isComment ? rest.indexOf(QLatin1StringView("-->")) : rest.indexOf(u'>');
        if (end < 0) {
            break;
        }
        next += 1 + end;
        const QStringView tag = rest.first(end);
        if (beginsWithAny<4>(tag, {QLatin1StringView("ref "), QLatin1StringView("ref\t"),
                                   QLatin1StringView("ref\r"), QLatin1StringView("ref\n")}) ||
            tag.startsWith(QLatin1StringView("entryref"), Qt::CaseInsensitive)) {
            list.append(withoutEntities(attribute(tag, QLatin1StringView("href")).toString()));
        } else if (tag.startsWith(QLatin1StringView("track"), Qt::CaseInsensitive)) {
            isInTrack = true;
        } else if (isInTrack && tag.startsWith(QLatin1StringView("location"), Qt::CaseInsensitive)) {
            const QStringView content = rest.sliced(end + 1);
            list.append(
                withoutEntities(content.first(std::max(content.indexOf(u'<'), qsizetype{0})).toString()));
        }
    }
    return list;
}
} // namespace

Playlist::Kind Playlist::kindOf(QByteArrayView head)
{
    const QString text = decoded(head);
    if (text.isEmpty() || !isText(head)) {
        return Kind::Media;
    }
    if (isMarkup(text)) {
        return isMarkupOfList(text) ? Kind::Playlist : Kind::Text;
    }
    QStringList lines = linesOf(text);
    if (head.size() >= headBytes && lines.size() > 1) {
        // It is cut.
        lines.removeLast();
    }
    return isListOfLines(lines) ? Kind::Playlist : Kind::Text;
}

bool Playlist::isSegmented(QByteArrayView playlist)
{
    return hasSegments(linesOf(decoded(playlist)));
}

QList<QUrl> Playlist::entries(QByteArrayView playlist, const QUrl &base)
{
    const QString text = decoded(playlist);
    const QStringList lines = linesOf(text);
    QStringList addresses;
    if (isMarkup(text)) {
        addresses = markupEntries(text);
    } else if (std::any_of(lines.begin(), lines.end(), isSection)) {
        addresses = numberedEntries(lines);
    } else if (!hasSegments(lines)) {
        addresses = lineEntries(lines);
    }
    QList<QUrl> list;
    for (const QString &address : addresses) {
        const QUrl entry(withoutQuotes(QStringView(address).trimmed()).toString());
        const QUrl resolved = entry.isEmpty() ? QUrl() : base.resolved(entry);
        if (isHttpUrl(resolved) && list.size() < maximumEntries) {
            list.append(resolved);
        }
    }
    return list;
}
