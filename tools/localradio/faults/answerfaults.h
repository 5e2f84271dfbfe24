#pragma once

#include "localradio/http/ports.h"
#include "localradio/http/requesttarget.h"

namespace localradio {

class HttpConnection;

/// The faults of the directory's answers: a search for "fault:" and a fault's name is answered with that
/// fault.
class AnswerFaults
{
public:
    /// Where such an answer has stations to play, they play the one with the id `station`. A redirect to the
    /// other port goes to the other one of `ports`.
    AnswerFaults(int station, const Ports &ports);

    /// Answers the request of `connection` for `target`. False, and nothing is answered, if it is no search
    /// for a fault. Throws BadParameter.
    bool serve(HttpConnection &connection, const RequestTarget &target) const;

private:
    int station_;
    Ports ports_;
};

} // namespace localradio
