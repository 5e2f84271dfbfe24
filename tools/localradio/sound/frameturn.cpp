#include "localradio/sound/frames.h"
#include "localradio/sound/kinds.h"
#include "localradio/sound/turn.h"

namespace localradio {

Turn Turn::ofFrames(const QByteArray &file)
{
    std::vector<qsizetype> begins;
    for (qsizetype at = 0; at < file.size();) {
        const qsizetype size = frameSize(QByteArrayView(file).sliced(at));
        if (size <= 0) {
            return {};
        }
        begins.push_back(at);
        at += size;
    }
    const std::size_t frames = begins.size();
    begins.push_back(file.size());
    Turn turn;
    for (std::size_t unit = 0; unit < kindUnits; ++unit) {
        const qsizetype begin = begins[unit * frames / kindUnits];
        turn.units.push_back(file.mid(begin, begins[(unit + 1) * frames / kindUnits] - begin));
    }
    return turn;
}

} // namespace localradio
