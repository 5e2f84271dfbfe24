#pragma once

#include "localradio/sound/audiosource.h"

namespace localradio {

/// Plays a format whose frames follow each other without a frame around them: MP3, or AAC in ADTS. Repeats
/// bytes that are no audio likewise.
class ByteLoop : public AudioSource
{
public:
    /// Plays `loop`, whole frames and not empty, from byte `start`; on from there if a frame begins at that
    /// byte, since live streams are joined amid a frame.
    ByteLoop(const QByteArray &loop, qsizetype start);

    QByteArray read(qsizetype bytes) override;

private:
    QByteArray loop_;
    qsizetype next_;
};

} // namespace localradio
