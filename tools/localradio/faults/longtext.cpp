#include "localradio/faults/longtext.h"

#include "localradio/http/streamoutlet.h"

#include <utility>

namespace localradio {

LongTextSender::LongTextSender(StreamOutlet &outlet, LongText text)
    : QObject(&outlet)
    , outlet_(outlet)
    , text_(std::move(text))
{
    connect(&outlet_, &StreamOutlet::bytesLeft, this, &LongTextSender::send);
    outlet_.send(text_.begin);
    send();
}

void LongTextSender::send()
{
    QByteArray pieces;
    for (const qint64 room = outlet_.room(); next_ < text_.pieces && pieces.size() < room; ++next_) {
        pieces += text_.piece(next_);
    }
    outlet_.send(pieces);
    if (next_ == text_.pieces) {
        outlet_.send(std::exchange(text_.end, {}));
        outlet_.finish();
    }
}

} // namespace localradio
