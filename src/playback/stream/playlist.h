#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

/// A list of stream addresses as radio stations hand them out: numbered entries below "[playlist]" (.pls) or
/// "[Reference]", a list of lines (.m3u), ASX, or XSPF.
namespace Playlist {
inline constexpr qsizetype maximumEntries = 64;
/// How many bytes of a body are enough to tell what it is.
inline constexpr qsizetype headBytes = 512;

/// What a body that begins with some bytes is.
enum class Kind { Playlist, Text, Media };

/// Decides by the bytes alone, because a content type is wrong as often as not. `head` is the body's first
/// headBytes, or the whole of a shorter one. A stream begins in the middle of a frame, with any byte: only
/// what is text all through counts as a playlist or as other text (a web page, an error message). That
/// something is media is certain from fewer bytes, too.
Kind kindOf(QByteArrayView head);

/// Whether a whole playlist lists the pieces or the variants of one stream (RFC 8216), no addresses of
/// streams.
bool isSegmented(QByteArrayView playlist);

/// The http and https addresses that a whole playlist names, in its own order, at most maximumEntries. They
/// may be relative to `base`. What is escaped in them stays as it is; what may not stand in an address is
/// escaped. All others are left out; a segmented stream's list names none.
QList<QUrl> entries(QByteArrayView playlist, const QUrl &base);
} // namespace Playlist
