#pragma once

#include <QByteArrayView>
#include <QtGlobal>
#include <optional>

/// The result of examining the form of a binary property list.
///
/// libplist trusts the files that it opens: it expands shared objects, recurses into nested ones and has no
/// limits. So the form of a file is examined first, without building anything from it; only a list that
/// passes is handed on.
struct BinaryPlistForm
{
    /// The longest file, in bytes.
    static constexpr qsizetype maximumSize = qsizetype{32} * 1024 * 1024;
    /// The most objects in the offset table.
    static constexpr quint64 maximumObjects = 1'000'000;
    /// The most references from containers to objects: each becomes a node in memory.
    static constexpr quint64 maximumReferences = 2'000'000;
    /// The most bytes of text and data, where what is referred to twice counts twice.
    static constexpr quint64 maximumContents = quint64{64} * 1024 * 1024;
    /// How deep arrays and dictionaries may be nested; a keyed archive nests four.
    static constexpr int maximumDepth = 4;

    /// Whether libplist keeps every text unchanged: it loses unpaired surrogates, and what follows a U+0000.
    bool textsAreKept = true;

    /// Nothing where `bytes` are no binary property list, exceed a limit, contain an array or a dictionary
    /// twice, or use a kind of object that libplist does not give back unchanged. Takes time in proportion to
    /// the limits, whatever the bytes are. Any thread.
    static std::optional<BinaryPlistForm> examine(QByteArrayView bytes);
};
