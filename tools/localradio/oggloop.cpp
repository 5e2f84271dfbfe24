#include "localradio/oggloop.h"

#include <utility>

namespace localradio {

OggLoop::OggLoop(const QByteArray &file)
{
    for (qsizetype at = 0; at < file.size();) {
        OggPage page(file, at);
        if (!page.isValid()) {
            break;
        }
        at += page.size();
        if (page.granulePosition() == 0) {
            m_headers += page.bytes();
            ++m_sequenceNumber;
        } else {
            m_pages.push_back(std::move(page));
        }
    }
}

QByteArray OggLoop::read(qsizetype bytes)
{
    QByteArray audio = std::exchange(m_headers, {});
    while (audio.size() < bytes) {
        OggPage page = m_pages[m_next];
        page.setSequenceNumber(m_sequenceNumber++);
        page.setGranulePosition(m_turnStart + page.granulePosition());
        page.updateChecksum();
        audio += page.bytes();
        if (++m_next == m_pages.size()) {
            m_next = 0;
            m_turnStart += m_pages.back().granulePosition();
        }
    }
    return audio;
}

} // namespace localradio
