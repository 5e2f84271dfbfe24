#pragma once

#include "base/keyedcoder.h"
#include "favourites/archive/keyeddocument.h"
#include "favourites/radiomodel.h"

#include <QByteArray>
#include <QHash>
#include <QStringList>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

/// The value of a field that is not text, a number, a flag or bytes: any other object of the archive. It is
/// not interpreted, but kept and written back with all that it refers to.
struct ArchivedObject
{
    /// Owns the object, which is a part of it.
    std::shared_ptr<const KeyedDocument> document;
    plist_t object = nullptr;

    bool operator==(const ArchivedObject &) const = default;
};
Q_DECLARE_METATYPE(ArchivedObject)

/// Writes keyed archives of station records.
class KeyedArchiver final : public KeyedEncoder
{
public:
    /// The archive of the list, as a binary property list; equal lists give equal bytes. A record that occurs
    /// again, or is null, is left out: a station stands in the list once. A null array where the archive
    /// would exceed the limits for opening one. Main thread.
    static QByteArray archivedDataWithRootObject(const StationRecords &stations);

    /// Adds to the record that is being written. Values are QString, qlonglong, double, bool, QByteArray and
    /// ArchivedObject; any other is written as empty. In a text each unpaired surrogate becomes U+FFFD, and
    /// it ends at its first U+0000.
    void encodeObject(const QVariant &value, QLatin1StringView key) override;

private:
    /// An index among the archive's objects; 0 stands for nothing.
    using Index = std::uint64_t;

    /// An object of another archive, and its index in this one.
    struct Copy
    {
        ArchivedObject original;
        Index index = 0;
    };

    KeyedArchiver();

    Index append(Plist object);
    Index indexOf(const QVariant &value);
    Index indexOfCopy(const ArchivedObject &original);
    Index indexOfClass(const QStringList &chain);
    QByteArray shareKey(const QVariant &value);
    void copyObjects();
    void redirect(plist_t copied, const std::shared_ptr<const KeyedDocument> &document);
    QByteArray finish(Index root);

    std::vector<Plist> objects_;
    /// By type and value: equal values share one object.
    QHash<QByteArray, Index> shared_;
    /// Keeps alive what shared_ identifies by its address.
    std::vector<QVariant> kept_;
    std::vector<Copy> copies_;
    std::unordered_map<plist_t, Index> copyIndexes_;
    plist_t record_ = nullptr;
};

/// Reads keyed archives of station records.
class KeyedUnarchiver final : public KeyedDecoder
{
public:
    /// The most stations of a list that is read: far more than users keep, and no more than are written in a
    /// few seconds. libplist's time for that grows with the square of the list.
    static constexpr std::size_t maximumStations = 25'000;

    struct Result
    {
        StationRecords stations;
        /// Whether an archive of `stations` would hold everything that this one held: no element that is no
        /// station or stands there twice, no key that is no field, no text that could not be kept.
        bool whole = false;
    };

    /// Nothing where `data` is no keyed archive, its root object is no list, or it exceeds a limit. Main
    /// thread.
    static std::optional<Result> unarchiveObjectWithData(const QByteArray &data);

    /// The value under `key` of the record that is being read: a QString, qlonglong, double, bool, QByteArray
    /// or ArchivedObject; invalid where it is absent or empty.
    QVariant decodeObject(QLatin1StringView key) const override;

private:
    explicit KeyedUnarchiver(std::shared_ptr<const KeyedDocument> document);

    std::optional<Result> decodeList();
    StationRecord decodeRecord(plist_t object);
    QVariant decoded(plist_t object) const;
    QVariant decodedInteger(plist_t object) const;
    const QVariant &decodedText(plist_t object) const;
    /// The name of the object's class and those it descends from; none where it has no class.
    const QStringList &classNames(plist_t object) const;

    std::shared_ptr<const KeyedDocument> document_;
    plist_t record_ = nullptr;
    // Updated by decodeObject() while a record asks for its fields.
    mutable bool whole_ = false;
    mutable quint32 found_ = 0;
    /// One copy of each text and of each class's names, however many objects refer to them.
    mutable std::unordered_map<plist_t, QVariant> texts_;
    mutable std::unordered_map<plist_t, QStringList> classNames_;
};
