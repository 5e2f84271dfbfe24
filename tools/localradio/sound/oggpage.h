#pragma once

#include <QByteArray>
#include <QList>

#include <vector>

namespace localradio {

/// One page of an Ogg stream, as a copy that can be given a new place in a stream. A value; any thread.
class OggPage
{
public:
    /// Reads the page that begins at `offset` of `data`; the page is not valid if there is none, or only
    /// a part of one.
    OggPage(const QByteArray &data, qsizetype offset);

    /// A page that is full of one packet which goes on behind it; `continued` tells whether it has begun
    /// before. `part` has a whole number of 255 bytes, at most 255 of them.
    static OggPage fullOf(const QByteArray &part, bool continued);

    /// The pages that stand one behind the other from the beginning of `data`, up to where there is none.
    static std::vector<OggPage> pagesOf(const QByteArray &data);

    /// The whole packets of the only stream of `data`.
    static QList<QByteArray> packetsOf(const QByteArray &data);

    bool isValid() const { return !bytes_.isEmpty(); }

    /// The page as it stands in a stream; empty if it is not valid.
    const QByteArray &bytes() const { return bytes_; }
    qsizetype size() const { return bytes_.size(); }

    /// Whether its first packet began on the page before.
    bool isContinued() const;

    /// Whether its stream begins with it.
    bool isFirst() const;

    /// Samples up to the end of the last packet that ends on this page; 0 on the header pages of Vorbis.
    qint64 granulePosition() const;
    void setGranulePosition(qint64 position);
    void setSequenceNumber(quint32 number);

    /// Which stream of a file it belongs to.
    quint32 serialNumber() const;
    void setSerialNumber(quint32 number);

    /// Makes the checksum right again after any of the setters.
    void updateChecksum();

private:
    QByteArray bytes_;
};

} // namespace localradio
