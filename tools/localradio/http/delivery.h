#pragma once

#include "localradio/http/requesttarget.h"

#include <optional>

namespace localradio {

/// How the bytes of an answer go out: as they come, if nothing is set. A value.
struct Delivery
{
    enum class End {
        Close, ///< the client sees an end
        Reset, ///< the client sees an error
        Stall, ///< the connection stays open and silent
    };

    /// An end before its time.
    struct Cut
    {
        End end = End::Close;
        qint64 afterBytes = 0; ///< of the body, titles included
    };

    std::optional<Cut> cut;
    std::optional<qint64> bytesPerSecond; ///< head included; as fast as the client reads if not set

    bool isPlain() const { return !cut && !bytesPerSecond; }

    /// Reads close-after, reset-after and stall-after, of which the first to come counts, and rate. Throws
    /// BadParameter.
    static Delivery read(const RequestTarget &target);
};

} // namespace localradio
