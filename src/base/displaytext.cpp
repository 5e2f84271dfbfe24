#include "base/displaytext.h"

#include <algorithm>

namespace {
/// The explicit directional marks of the Unicode bidirectional algorithm (UAX #9): embeddings, overrides,
/// isolates and their ends. The implicit marks (LRM, RLM, ALM) only help and stay.
bool isDirectionalControl(char16_t unit)
{
    return (unit >= u'\u202A' && unit <= u'\u202E') || (unit >= u'\u2066' && unit <= u'\u2069');
}

bool isLineEndOrTab(char16_t unit)
{
    return (unit >= u'\t' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' || unit == u'\u2029';
}

bool isControl(char16_t unit)
{
    return unit < u' ' || (unit >= u'\u007F' && unit < u'\u00A0');
}
} // namespace

QString displayText(const QString &text)
{
    QString shown;
    shown.reserve(std::min(text.size(), maximumDisplayLength));
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (isDirectionalControl(unit) || (isControl(unit) && !isLineEndOrTab(unit))) {
            continue;
        }
        if (shown.size() == maximumDisplayLength) {
            shown.chop(shown.at(maximumDisplayLength - 2).isHighSurrogate() ? 2 : 1);
            return shown + QChar(u'\u2026');
        }
        shown.append(isLineEndOrTab(unit) ? QChar(u' ') : character);
    }
    return shown;
}

QString withoutUserInfo(const QString &address)
{
    constexpr QLatin1StringView mark("://");
    const qsizetype scheme = address.indexOf(mark);
    if (scheme < 0) {
        return address;
    }
    const qsizetype begin = scheme + mark.size();
    const auto end = std::find_if(address.begin() + begin, address.end(), [](QChar letter) {
        return letter == u'/' || letter == u'?' || letter == u'#' || letter == u'\\';
    });
    const QStringView authority(address.begin() + begin, end);
    return QString(address).remove(begin, authority.lastIndexOf(u'@') + 1);
}
