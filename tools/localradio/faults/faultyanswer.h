#pragma once

#include "localradio/faults/longtext.h"
#include "localradio/http/delivery.h"

#include <QByteArray>

namespace localradio {

/// A directory's faulty answer to a search. A value.
struct FaultyAnswer
{
    int status = 200;
    QByteArray head; ///< up to and with the blank line; what precedes `body` on the wire
    LongText body;
    Delivery delivery;

    /// The answer to the search text `order`, "NAME" or "NAME=VALUE" as `--help-faults` lists them. Where it
    /// has stations to play, they play the one with the id `station`. Throws BadParameter.
    static FaultyAnswer make(const QString &order, int station);
};

} // namespace localradio
