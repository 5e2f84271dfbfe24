#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

/// A list of stream addresses as radio stations hand them out: the "[playlist]" form (.pls) and the list of
/// lines (.m3u).
namespace Playlist {
inline constexpr qsizetype maximumEntries = 64;
/// How many bytes of a body are enough to tell what it is.
inline constexpr qsizetype headBytes = 64;

/// What a body that begins with some bytes is.
enum class Kind { Playlist, Text, Media };

/// Decides by the bytes alone, because a content type is wrong as often as not. `head` is the body's first
/// headBytes, or the whole of a shorter one. A stream begins in the middle of a frame, with any byte: only
/// what is text all through counts as a playlist or as other text (a web page, an error message).
Kind kindOf(QByteArrayView head);

/// Whether a playlist is that of the pieces of one stream (RFC 8216).
bool isSegmented(QByteArrayView playlist);

/// The http and https addresses that a playlist names, in its own order, at most maximumEntries. Those of a
/// list of lines may be relative to `base`. All others are left out; a segmented stream's list names none.
QList<QUrl> entries(QByteArrayView playlist, const QUrl &base);
} // namespace Playlist
