#pragma once

#include "localradio/http/requesttarget.h"

#include <QByteArray>

namespace localradio {

/// A playlist made to the order of its address's query. A value.
struct OrderedPlaylist
{
    QByteArray contentType;
    QByteArray text;
    QByteArray filler; ///< a comment line that follows the text over and over; empty: the playlist ends

    /// The playlist that `target` orders, which is `rawTarget` as it came on the wire and was asked for at
    /// `origin`, such as "http://127.0.0.1:8000". Throws BadParameter.
    static OrderedPlaylist make(const RequestTarget &target, const QByteArray &rawTarget,
                                const QByteArray &origin);
};

} // namespace localradio
