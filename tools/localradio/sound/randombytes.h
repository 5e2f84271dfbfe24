#pragma once

#include "localradio/sound/audiosource.h"

#include <QRandomGenerator>

namespace localradio {

/// Noise in place of audio: random bytes, the same ones for every client.
class RandomBytes : public AudioSource
{
public:
    QByteArray read(qsizetype bytes) override;

private:
    QRandomGenerator generator_{20110};
};

} // namespace localradio
