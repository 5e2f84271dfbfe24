#pragma once

#include "localradio/http/requesttarget.h"

#include <QByteArray>
#include <QList>

#include <functional>
#include <optional>

namespace localradio {

/// The newest segment that is on air when the server starts.
inline constexpr qint64 hlsFirstNewest = 1600;

/// What the query of an HLS address orders. A value.
struct HlsOrder
{
    enum class Form { TransportStream, Fragments, Frames };
    enum class List { Live, Event, Vod };
    enum class Key { None, Sequence, Explicit, Rotating };
    enum class Address { Relative, Root, Absolute, Port };

    Form form = Form::TransportStream;
    List list = List::Live;
    qint64 window = 6; ///< segments in the list; of an event, those before the start
    Key key = Key::None;
    Address address = Address::Relative;
    bool ranges = false;         ///< segments are parts of the file of their turn
    bool discontinuity = false;  ///< times begin anew in every turn
    bool itself = false;         ///< the list names itself in place of all segments or variants
    bool endless = false;        ///< comments without end follow
    bool renditions = false;     ///< every variant has its sound in a rendition
    qint64 skip = 0;             ///< numbers left out after every ten segments
    std::optional<double> stall; ///< seconds after which the list changes no more
    QList<QByteArray> variants;

    /// What stands in place of the right addresses, where it is set.
    QByteArray otherVariant;
    QByteArray otherSegment;
    QByteArray otherKey;
    QByteArray otherMap;

    /// Reads the parameters of `target`. Throws BadParameter.
    static HlsOrder read(const RequestTarget &target);

    /// What the file of a segment of this form ends in, and its media type.
    QByteArray suffix() const;
    QByteArray mediaType() const;

    /// The number of the key that the segment `number` is encrypted with.
    qint64 keyOf(qint64 number) const { return key == Key::Rotating ? number / 4 : 0; }
};

/// Where a playlist stands, as far as it names addresses.
struct HlsPlace
{
    RequestTarget target;
    QByteArray rawTarget;
    QByteArray root;        ///< the path that everything of HLS is below, with the slash at its end
    QByteArray origin;      ///< "http://HOST:PORT" that was asked
    QByteArray otherOrigin; ///< likewise, of the other port
};

/// The playlist of the variants that `order` names.
QByteArray masterPlaylist(const HlsOrder &order, const HlsPlace &place);

/// The playlist of the segments of `variant` up to the number `newest`. `sizeOf` tells the bytes of one.
QByteArray mediaPlaylist(const HlsOrder &order, const HlsPlace &place, const QByteArray &variant,
                         qint64 newest, const std::function<qint64(qint64 number)> &sizeOf);

/// The key with that number, and the vector that it begins with where that is said.
QByteArray hlsKey(qint64 number);
QByteArray hlsVector(const HlsOrder &order, qint64 segment);

} // namespace localradio
