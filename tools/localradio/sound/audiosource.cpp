#include "localradio/sound/audiosource.h"

#include "localradio/sound/byteloop.h"
#include "localradio/sound/loops.h"
#include "localradio/sound/oggloop.h"

#include <QRandomGenerator>

namespace localradio {

std::unique_ptr<AudioSource> AudioSource::create(Format format, const QByteArray &loop)
{
    if (format == Format::Ogg) {
        auto source = std::make_unique<OggLoop>(loop);
        if (source->pageCount() == 0) {
            return nullptr;
        }
        source->skipTo(QRandomGenerator::global()->bounded(source->pageCount()));
        return source;
    }
    if (loop.isEmpty()) {
        return nullptr;
    }
    return std::make_unique<ByteLoop>(loop, QRandomGenerator::global()->bounded(loop.size()));
}

} // namespace localradio
