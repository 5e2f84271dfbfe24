#pragma once

#include <QByteArray>
#include <array>

/// What is fuzzed: each gives bytes as they may come from outside to the code that reads them, and ends the
/// process where that code breaks one of its guarantees.
struct FuzzTarget
{
    /// Also of the folder of its seeds.
    const char *name;
    void (*run)(const QByteArray &data);
};

/// Lines: the address that is asked, and where the answer says to go from there.
void fuzzHttpRedirect(const QByteArray &data);
void fuzzDirectoryAnswer(const QByteArray &data);
void fuzzFavouritesArchive(const QByteArray &data);
/// A stream, read at once and in pieces.
void fuzzOggTitles(const QByteArray &data);
void fuzzPlaylist(const QByteArray &data);
void fuzzHlsPlaylist(const QByteArray &data);
/// Segments of a stream, with "|SEGMENT|" between them.
void fuzzHlsSegments(const QByteArray &data);
/// Lines: scheme, url, port, mount point, user name, password of a station.
void fuzzStationAddress(const QByteArray &data);
void fuzzDisplayText(const QByteArray &data);
/// What follows the token of this process.
void fuzzDragPayload(const QByteArray &data);

inline constexpr std::array<FuzzTarget, 10> fuzzTargets{{
    {"http-redirect", fuzzHttpRedirect},
    {"directory-answer", fuzzDirectoryAnswer},
    {"favourites-archive", fuzzFavouritesArchive},
    {"ogg-titles", fuzzOggTitles},
    {"playlist", fuzzPlaylist},
    {"hls-playlist", fuzzHlsPlaylist},
    {"hls-segments", fuzzHlsSegments},
    {"station-address", fuzzStationAddress},
    {"display-text", fuzzDisplayText},
    {"drag-payload", fuzzDragPayload},
}};
