#include "localradio/http/delivery.h"

#include "localradio/http/parameters.h"

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
    return delivery;
}

} // namespace localradio
