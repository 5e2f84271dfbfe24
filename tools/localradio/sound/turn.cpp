#include "localradio/sound/turn.h"

#include <algorithm>

namespace localradio {

QByteArray Turn::unit(qint64 number) const
{
    const auto count = static_cast<qint64>(units.size());
    const QByteArray &unit = units[static_cast<std::size_t>(number % count)];
    return stamp ? stamp(unit, number, number / count) : unit;
}

EndlessTurn::EndlessTurn(std::shared_ptr<const Turn> turn, qint64 start)
    : turn_(std::move(turn))
    , next_(start)
{
    if (!turn_->entrances.empty()) {
        const auto entrance =
            std::ranges::lower_bound(turn_->entrances, static_cast<std::size_t>(start) % turn_->units.size());
        next_ =
            static_cast<qint64>(entrance == turn_->entrances.end() ? turn_->entrances.front() : *entrance);
    }
}

QByteArray EndlessTurn::read(qsizetype bytes)
{
    QByteArray audio = begun_ ? QByteArray() : turn_->header;
    begun_ = true;
    while (audio.size() < bytes) {
        audio += turn_->unit(next_++);
    }
    return audio;
}

} // namespace localradio
