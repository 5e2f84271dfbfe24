#pragma once

#include <QByteArray>
#include <array>
#include <functional>
#include <vector>

/// Finds what plays in an Ogg stream (RFC 3533), which is sent as links of a chain, each with its comments:
/// those of Vorbis, Opus (RFC 7845) and FLAC (RFC 9639). It is given all bytes of one connection, cut
/// anywhere, and is off for good where they do not begin as Ogg does.
class OggTitles
{
public:
    /// Told of each link, once its comments have come: the number of its first byte, and "ARTIST - TITLE", or
    /// the one of them that there is; empty where there is neither.
    using TitleFound = std::function<void(quint64 position, const QByteArray &title)>;

    /// How much of a link's comments is looked at, in bytes: pictures stand among them.
    static constexpr qsizetype maximumComments = 64 * 1024;
    /// So many pieces of sound may begin side by side; the first is forgotten for one more.
    static constexpr std::size_t maximumWatched = 4;

    void read(QByteArrayView bytes, const TitleFound &titleFound);

private:
    struct Sound;
    /// A piece of sound whose comments are still to come.
    struct Watched
    {
        quint32 serial;
        quint64 position;
        const Sound *sound;
        QByteArray packet; // of its comments, so far
    };
    using Watches = std::vector<Watched>;

    qsizetype readHeader(QByteArrayView bytes);
    qsizetype readBody(QByteArrayView bytes);
    bool isPageRead() const { return headerLength_ == headerEnd() && bodyLeft_ == 0; }
    void takePage(const TitleFound &titleFound);
    void watch();
    bool continuePacket(Watched &watched) const;

    qsizetype headerEnd() const;
    QByteArrayView segments() const;
    bool isFirstPage() const;
    quint32 serial() const;
    Watches::iterator watchOf(quint32 serial);

    /// Without the lengths of its segments, of which there may be 255.
    static constexpr qsizetype fixedHeader = 27;
    std::array<char, fixedHeader + 255> header_{};
    qsizetype headerLength_ = 0; // how much of it has come
    qsizetype bodyLeft_ = 0;
    bool isKept_ = false;
    QByteArray body_; // while isKept_
    quint64 position_ = 0;
    quint64 pagePosition_ = 0;
    Watches watches_;
    bool isOff_ = false;
};
