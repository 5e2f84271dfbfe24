#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>
#include <chrono>
#include <optional>

/// Some of the bytes behind an address.
struct HlsRange
{
    quint64 from = 0;
    /// None for all that follow.
    std::optional<quint64> length = {};

    bool operator==(const HlsRange &) const = default;
};

/// How something is encrypted.
struct HlsEncryption
{
    enum class Method {
        None,
        Aes128,  ///< all of it, by AES-128 in CBC mode with PKCS7 padding
        Unknown, ///< in a way that we do not know, or that is not told well enough
    };

    Method method = Method::None;
    QUrl key = {};
    /// 16 bytes; empty where the number of the segment stands for it.
    QByteArray vector = {};

    bool operator==(const HlsEncryption &) const = default;
};

/// What a player has to know before it can read segments ("Media Initialization Section").
struct HlsHeader
{
    QUrl url;
    HlsRange range = {};
    HlsEncryption encryption = {};

    bool operator==(const HlsHeader &) const = default;
};

/// A piece of a stream.
struct HlsSegment
{
    quint64 number = 0;
    QUrl url;
    HlsRange range = {};
    std::chrono::milliseconds duration = {};
    /// What the station says of it, as it came.
    QByteArray title = {};
    HlsEncryption encryption = {};
    std::optional<HlsHeader> header = {};
};

/// One of the ways in which a stream is offered.
struct HlsVariant
{
    QUrl url;
    /// The most that it takes, in bit/s, pictures included; 0 where nobody says.
    int bandwidth = 0;
    /// Whether there are pictures beside the sound.
    bool hasPictures = false;
};

/// What a playlist of HTTP live streaming says (RFC 8216): either which variants of a stream there are, or
/// which segments of one. Whatever it says is within bounds, and all addresses are http or https; what has
/// another address is left out.
struct HlsPlaylist
{
    static constexpr qsizetype maximumVariants = 64;
    static constexpr qsizetype maximumSegments = 4096;
    /// No segment counts as longer.
    static constexpr std::chrono::milliseconds longestDuration = std::chrono::hours(1);

    /// Those whose sound can be played, as far as is told; the best sound first: without pictures before with
    /// them, and the higher bandwidth before the lower.
    QList<HlsVariant> variants = {};
    /// In the order of their numbers. Of more than maximumSegments the first of a complete stream and the
    /// last of any other.
    QList<HlsSegment> segments = {};
    /// How long a segment is at most; from 1 s to longestDuration.
    std::chrono::milliseconds targetDuration = {};
    /// Whether no further segments will come.
    bool isComplete = false;

    /// Addresses may be relative to `base`. Lines that say nothing that we know are passed over.
    static HlsPlaylist read(QByteArrayView text, const QUrl &base);
};
