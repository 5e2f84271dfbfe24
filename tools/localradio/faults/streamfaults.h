#pragma once

#include "localradio/faults/icystyle.h"
#include "localradio/http/answer.h"
#include "localradio/http/delivery.h"
#include "localradio/http/ports.h"
#include "localradio/sound/hostilesound.h"
#include "localradio/sound/taggedsource.h"

#include <optional>

namespace localradio {

class HttpConnection;

/// What a stream's address asks to go wrong, in its query: nothing, if nothing is set. A value.
struct StreamFaults
{
    enum class Body {
        Station, ///< the station's audio
        Endless, ///< likewise, without its pace
        Html,    ///< a web page
        Random,  ///< random bytes without end
        Zeros,   ///< zeros without end
        Hostile, ///< sound that is made to hurt
    };

    std::optional<int> status;             ///< in place of the stream, or of a redirect's 302
    std::optional<QByteArray> redirect;    ///< a word with a meaning, or an address as it stands
    std::optional<QByteArray> contentType; ///< in place of the right one
    std::optional<QByteArray> header;      ///< one more
    std::optional<QByteArray> chunkSize;   ///< before a body that is announced as chunked
    std::optional<LeadingTag> tag;
    Body body = Body::Station;
    const HostileSound *hostile = nullptr; ///< if that is the body
    double afterSeconds = 0;               ///< of sound, everything else than an answer goes wrong
    bool paced = false;                    ///< also what is not the station's sound
    IcyStyle icy;
    Delivery delivery;

    /// Whether the sound is the station's own and has its pace.
    bool isStation() const { return body == Body::Station && !tag; }

    /// Reads the parameters of `target`; those that it does not know have no effect. Throws BadParameter.
    static StreamFaults read(const RequestTarget &target);

    /// What answers `connection` in place of a stream; nothing if a stream is what it gets. A redirect to
    /// the other port goes to the other one of `ports`.
    std::optional<Answer> answerInstead(const HttpConnection &connection, const Ports &ports) const;
};

} // namespace localradio
