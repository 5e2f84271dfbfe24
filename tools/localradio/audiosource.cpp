#include "localradio/audiosource.h"

#include "localradio/byteloop.h"
#include "localradio/loops.h"
#include "localradio/oggloop.h"

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
