#pragma once

#include "localradio/audiosource.h"
#include "localradio/oggpage.h"

#include <vector>

namespace localradio {

/// Plays an Ogg Vorbis file over and over as one logical stream: the header pages once, then audio pages
/// whose sequence numbers, positions and checksums go on where the turn before has ended.
class OggLoop : public AudioSource
{
public:
    /// Reads the pages of \a file, of a single logical stream whose positions start near 0. What follows a
    /// damaged page is left out.
    explicit OggLoop(const QByteArray &file);

    /// How many audio pages one turn has; a loop of none must not be read.
    qsizetype pageCount() const { return static_cast<qsizetype>(m_pages.size()); }

    /// Goes on with audio page \a page, from 0 to pageCount() - 1.
    void skipTo(qsizetype page) { m_next = static_cast<std::size_t>(page); }

    QByteArray read(qsizetype bytes) override;

private:
    QByteArray m_headers; // until they are read
    std::vector<OggPage> m_pages;
    std::size_t m_next = 0;
    quint32 m_sequenceNumber = 0; // of the next page
    qint64 m_turnStart = 0;       // samples in the turns before this one
};

} // namespace localradio
