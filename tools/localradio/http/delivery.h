#pragma once

#include "localradio/http/requesttarget.h"

#include <chrono>
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

    /// A silence after which it goes on.
    struct Pause
    {
        std::chrono::milliseconds duration{0};
        qint64 afterBytes = 0; ///< of the body
    };

    std::optional<Cut> cut;
    std::optional<Pause> pause;
    std::optional<qint64> bytesPerSecond; ///< head included; as fast as the client reads if not set
    qint64 slowAfterBytes = 0;            ///< of the body, which go out before it is slow

    bool isPlain() const { return !cut && !pause && !bytesPerSecond; }

    /// All this happens so many bytes of the body later.
    void delay(qint64 bytes);

    /// Reads close-after, reset-after and stall-after, of which the first to come counts, silent-for and
    /// rate. Throws BadParameter.
    static Delivery read(const RequestTarget &target);
};

} // namespace localradio
