#include "localradio/faults/icystyle.h"

#include "localradio/http/parameters.h"

#include <algorithm>
#include <array>

namespace localradio {

namespace {

constexpr qsizetype floodInterval = 256;

QByteArray latin1Title(const QByteArray &track, qint64 /*audioByte*/)
{
    return "D\xe9j\xe0 vu, " + track;
}

QByteArray titleWithNuls(const QByteArray &track, qint64 /*audioByte*/)
{
    return QByteArray(track).insert(track.size() / 2, 2, '\0');
}

QByteArray longTitle(const QByteArray &track, qint64 /*audioByte*/)
{
    return (track + ' ').repeated(IcyWeaver::maxTextSize / (track.size() + 1) + 1);
}

QByteArray changingTitle(const QByteArray &track, qint64 audioByte)
{
    return track + ' ' + QByteArray::number(audioByte / floodInterval);
}

QByteArray unterminatedBlock(QByteArray title)
{
    return IcyWeaver::padded("StreamTitle='" + title);
}

} // namespace

QByteArray IcyStyle::sameAsTrack(const QByteArray &track, qint64 /*audioByte*/)
{
    return track;
}

IcyStyle IcyStyle::read(const RequestTarget &target)
{
    // Where the announced interval is no length, no client could find a block: so there are none.
    static const std::array<std::pair<QLatin1StringView, IcyStyle>, 10> oddities{{
        {QLatin1StringView("bad-metaint"), {.interval = 12000}},
        {QLatin1StringView("zero-metaint"), {.announcedInterval = "0", .interval = 0}},
        {QLatin1StringView("huge-metaint"), {.announcedInterval = "99999999999999999999", .interval = 0}},
        {QLatin1StringView("text-metaint"), {.announcedInterval = "often", .interval = 0}},
        {QLatin1StringView("unterminated"), {.block = unterminatedBlock}},
        {QLatin1StringView("latin1"), {.title = latin1Title}},
        {QLatin1StringView("nul"), {.title = titleWithNuls}},
        {QLatin1StringView("long"), {.title = longTitle}},
        {QLatin1StringView("flood"),
         {.announcedInterval = QByteArray::number(floodInterval),
          .interval = floodInterval,
          .title = changingTitle}},
        {QLatin1StringView("old-head"), {.oldStatusLine = true}},
    }};
    std::array<QLatin1StringView, oddities.size()> names;
    std::ranges::transform(oddities, names.begin(), [](const auto &oddity) { return oddity.first; });
    const auto index = choice(target, QLatin1StringView("icy"), names);
    return index ? oddities[*index].second : IcyStyle{};
}

} // namespace localradio
