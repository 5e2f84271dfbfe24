#pragma once

#include "localradio/sound/kinds.h"
#include "localradio/sound/turn.h"

/// A turn of a kind cut into segments, as HLS serves it.
namespace localradio {

inline constexpr int segmentUnits = 6;
inline constexpr int turnSegments = kindUnits / segmentUnits;
inline constexpr double segmentSeconds = kindSeconds / turnSegments;

/// The segment `number`, from 0 on, of `turn` played without end; of frames, with the time in front that HLS
/// wants there (RFC 8216, section 3.4). `turn` has as many units as a turn of a kind.
QByteArray segmentOf(const Turn &turn, Container container, qint64 number);

/// `segment` encrypted by AES-128 in CBC mode with padding; `key` and `start`, the vector, have 16 bytes.
QByteArray encrypted(const QByteArray &segment, const QByteArray &key, const QByteArray &start);

} // namespace localradio
