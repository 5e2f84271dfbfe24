#include "localradio/sound/oggpage.h"
#include "localradio/sound/turn.h"

#include <algorithm>

namespace localradio {

Turn Turn::ofChain(const QByteArray &file)
{
    Turn turn;
    for (const OggPage &page : OggPage::pagesOf(file)) {
        if (page.isFirst()) {
            turn.entrances.push_back(turn.units.size());
        }
        turn.units.push_back(page.bytes());
    }
    turn.stamp = [links = turn.entrances, count = turn.units.size()](const QByteArray &unit, qint64 number,
                                                                     qint64 turns) {
        const auto place = static_cast<std::size_t>(number) % count;
        const auto link = std::ranges::upper_bound(links, place) - links.begin();
        OggPage page(unit, 0);
        page.setSerialNumber(static_cast<quint32>(turns * std::ssize(links) + link));
        page.updateChecksum();
        return page.bytes();
    };
    return turn;
}

} // namespace localradio
