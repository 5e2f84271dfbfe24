#pragma once

#include "localradio/sound/audiosource.h"
#include "localradio/sound/oggpage.h"

#include <vector>

namespace localradio {

/// Plays an Ogg Vorbis file over and over as one logical stream: the header pages once, then audio pages
/// whose sequence numbers, positions and checksums go on where the turn before has ended.
class OggLoop : public AudioSource
{
public:
    /// Reads the pages of `file`, of a single logical stream whose positions start near 0. What follows a
    /// damaged page is left out.
    explicit OggLoop(const QByteArray &file);

    /// How many audio pages one turn has; a loop of none must not be read.
    qsizetype pageCount() const { return static_cast<qsizetype>(pages_.size()); }

    /// Goes on with audio page `page`, from 0 to pageCount() - 1.
    void skipTo(qsizetype page) { next_ = static_cast<std::size_t>(page); }

    QByteArray read(qsizetype bytes) override;

private:
    QByteArray headers_; // until they are read
    std::vector<OggPage> pages_;
    std::size_t next_ = 0;
    quint32 sequenceNumber_ = 0; // of the next page
    qint64 turnStart_ = 0;       // samples in the turns before this one
};

} // namespace localradio
