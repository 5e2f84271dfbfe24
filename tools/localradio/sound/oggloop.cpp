#include "localradio/sound/oggloop.h"

#include <utility>

namespace localradio {

OggLoop::OggLoop(const QByteArray &file)
{
    for (OggPage &page : OggPage::pagesOf(file)) {
        if (page.granulePosition() == 0) {
            headers_ += page.bytes();
            ++sequenceNumber_;
        } else {
            pages_.push_back(std::move(page));
        }
    }
}

QByteArray OggLoop::read(qsizetype bytes)
{
    QByteArray audio = std::exchange(headers_, {});
    while (audio.size() < bytes) {
        OggPage page = pages_[next_];
        page.setSequenceNumber(sequenceNumber_++);
        page.setGranulePosition(turnStart_ + page.granulePosition());
        page.updateChecksum();
        audio += page.bytes();
        if (++next_ == pages_.size()) {
            next_ = 0;
            turnStart_ += pages_.back().granulePosition();
        }
    }
    return audio;
}

} // namespace localradio
