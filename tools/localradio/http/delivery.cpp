#include "localradio/http/delivery.h"

#include "localradio/http/parameters.h"

#include <cmath>
#include <limits>

namespace localradio {

Delivery Delivery::read(const RequestTarget &target)
{
    Delivery delivery;
    delivery.bytesPerSecond = wholeNumber(target, QLatin1StringView("rate"), 1, 1'000'000'000);
    for (const auto &[name, end] : {std::pair(QLatin1StringView("close-after"), End::Close),
                                    std::pair(QLatin1StringView("reset-after"), End::Reset),
                                    std::pair(QLatin1StringView("stall-after"), End::Stall)}) {
        const auto bytes = wholeNumber(target, name, 0, std::numeric_limits<qint64>::max());
        if (bytes && (!delivery.cut || *bytes < delivery.cut->afterBytes)) {
            delivery.cut = Cut{end, *bytes};
        }
    }
    if (const auto seconds = positiveNumber(target, QLatin1StringView("silent-for"), 3600)) {
        delivery.pause = Pause{std::chrono::milliseconds(std::lround(*seconds * 1000)), 0};
    }
    return delivery;
}

void Delivery::delay(qint64 bytes)
{
    if (cut) {
        cut->afterBytes += bytes;
    }
    if (pause) {
        pause->afterBytes += bytes;
    }
    slowAfterBytes += bytes;
}

} // namespace localradio
