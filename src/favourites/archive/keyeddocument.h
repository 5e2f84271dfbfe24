#pragma once

#include "favourites/archive/plist.h"

#include <QByteArrayView>
#include <QLatin1StringView>
#include <cstdint>
#include <memory>
#include <vector>

/// The opened file of a keyed archive: its objects, not yet decoded. Immutable once it is open; any thread.
class KeyedDocument
{
public:
    /// The archiver and the version that every keyed archive names.
    static constexpr QLatin1StringView archiver{"NSKeyedArchiver"};
    static constexpr std::uint64_t version = 100000;

    /// Null where `bytes` are no keyed archive, or none that is safe to open.
    static std::shared_ptr<const KeyedDocument> open(QByteArrayView bytes);

    /// The object that was archived; null where it is absent.
    plist_t root() const { return resolved(root_); }

    /// The object that `node` refers to, or `node` itself where it stands for itself. Null for no node, for
    /// the reference that stands for nothing, and for one that leads nowhere.
    plist_t resolved(plist_t node) const;

    /// Whether `node` is a reference that leads nowhere.
    bool isDangling(plist_t node) const;

    /// Whether the file consists of what every archive of one object consists of, and all its texts are as
    /// they were written.
    bool isPlain() const { return isPlain_; }

private:
    KeyedDocument() = default;

    Plist tree_;
    std::vector<plist_t> objects_;
    plist_t root_ = nullptr;
    bool isPlain_ = false;
};
