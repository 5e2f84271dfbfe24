#include "localradio/faults/orderedplaylist.h"

#include "localradio/http/parameters.h"

#include <algorithm>
#include <array>

namespace localradio {

namespace {

constexpr qint64 maxPadding = qint64{16} * 1024 * 1024;

/// What a playlist's addresses are, in their order.
QList<QByteArray> entriesOf(const RequestTarget &target, const QByteArray &rawTarget,
                            const QByteArray &origin)
{
    QList<QByteArray> entries;
    for (const QString &entry : target.parameters(QLatin1StringView("entry"))) {
        entries << entry.toUtf8();
    }
    if (flag(target, QLatin1StringView("itself"))) {
        entries << origin + rawTarget;
    }
    static constexpr std::array twins{QLatin1StringView("1"), QLatin1StringView("2")};
    if (const auto twin = choice(target, QLatin1StringView("each-other"), twins)) {
        const bool first = *twin == 0;
        entries << origin + QByteArray(rawTarget).replace(first ? "each-other=1" : "each-other=2",
                                                          first ? "each-other=2" : "each-other=1");
    }
    return entries;
}

/// Comment lines that take so many bytes, or the few more that a last line takes at least.
QByteArray comments(char mark, const QByteArray &eol, qint64 bytes)
{
    constexpr qint64 lineSize = 80;
    const auto line = [&](qint64 size) -> QByteArray {
        return mark + QByteArray(std::max(qsizetype{0}, size - 1 - eol.size()), '-') + eol;
    };
    QByteArray lines = line(lineSize).repeated(bytes / lineSize);
    if (const qint64 rest = bytes % lineSize; rest > 0) {
        lines += line(rest);
    }
    return lines;
}

} // namespace

OrderedPlaylist OrderedPlaylist::make(const RequestTarget &target, const QByteArray &rawTarget,
                                      const QByteArray &origin)
{
    static constexpr std::array forms{QLatin1StringView("pls"), QLatin1StringView("m3u")};
    static constexpr std::array lineEnds{QLatin1StringView("lf"), QLatin1StringView("crlf"),
                                         QLatin1StringView("cr")};
    const bool pls = choice(target, QLatin1StringView("form"), forms).value_or(0) == 0;
    const QByteArray eol =
        std::array{"\n", "\r\n", "\r"}[choice(target, QLatin1StringView("eol"), lineEnds).value_or(0)];
    const char mark = pls ? ';' : '#';
    const auto padding = wholeNumber(target, QLatin1StringView("pad"), 0, maxPadding).value_or(0);
    const QList<QByteArray> entries = entriesOf(target, rawTarget, origin);

    OrderedPlaylist playlist;
    playlist.contentType = headerText(target, QLatin1StringView("type"))
                               .value_or(pls ? QByteArray("audio/x-scpls") : QByteArray("audio/x-mpegurl"));
    if (flag(target, QLatin1StringView("bom"))) {
        playlist.text = "\xef\xbb\xbf";
    }
    playlist.text += (pls ? "[playlist]" : "#EXTM3U") + eol + comments(mark, eol, padding);
    if (pls) {
        playlist.text += "numberofentries=" + QByteArray::number(entries.size()) + eol;
    }
    for (qsizetype i = 0; i < entries.size(); ++i) {
        playlist.text += (pls ? "File" + QByteArray::number(i + 1) + '=' : QByteArray()) + entries[i] + eol;
    }
    if (pls) {
        playlist.text += "Version=2" + eol;
    }
    if (flag(target, QLatin1StringView("endless"))) {
        playlist.filler = comments(mark, eol, 80);
    }
    return playlist;
}

} // namespace localradio
