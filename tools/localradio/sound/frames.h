#pragma once

#include <QByteArrayView>

namespace localradio {

/// The bytes of the frame that `data` begins with, as its own head says: MPEG audio layer III of 128 kbit/s,
/// ADTS, LOAS, AC-3 or E-AC-3 of 192 kbit/s at 48 kHz. 0 if there is none of these.
qsizetype frameSize(QByteArrayView data);

} // namespace localradio
