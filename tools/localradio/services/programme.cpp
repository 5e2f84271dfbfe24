#include "localradio/services/programme.h"

#include <cmath>

namespace localradio {

QByteArray Programme::trackAt(double seconds) const
{
    const int pace = 8 + number % 8;
    const auto count = tracks.size();
    const auto turn = static_cast<qsizetype>(std::floor(seconds / pace)) % count;
    return tracks[(turn + count) % count].toUtf8();
}

} // namespace localradio
