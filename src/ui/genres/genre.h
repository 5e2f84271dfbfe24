#pragma once

#include "base/atomicfield.h"

#include <QList>
#include <QString>
#include <QVariant>
#include <memory>

class Genre;
class KeyedDecoder;
class KeyedEncoder;
class QJsonArray;

/// A genre's identity is the pointer, not the values of its fields.
using GenreRecord = std::shared_ptr<Genre>;
using GenreRecords = QList<GenreRecord>;

/// A genre of the picker.
///
/// A field holds the value from the genre file: as a rule a QString, a qlonglong, a double or nothing, which
/// is an invalid QVariant, but any other JSON value as well. Every read and every write of a field is
/// indivisible, whichever thread performs it.
class Genre
{
public:
    /// Named "genre", from the source "Genre"; without type and stars.
    Genre();
    Genre(const Genre &) = delete;
    Genre &operator=(const Genre &) = delete;

    /// The genres in the elements of a genre file, in their order. Elements that are no objects are left out.
    static GenreRecords listFromJson(const QJsonArray &elements);

    /// A record of what `coder` holds and nothing else: no defaults.
    static GenreRecord initWithCoder(const KeyedDecoder &coder);
    /// Writes the name, the name once more as the type, and the stars; neither the type nor the label.
    void encodeWithCoder(KeyedEncoder &coder) const;

    /// What the directory is asked for.
    QVariant name() const { return name_.get(); }
    void setName(const QVariant &name) { name_.set(name); }
    /// Where the genre comes from.
    QVariant label() const { return label_.get(); }
    void setLabel(const QVariant &label) { label_.set(label); }
    /// The kind: in the genre file 0 for a list of the directory's own, 1 for music, 2 for the spoken word.
    QVariant type() const { return type_.get(); }
    void setType(const QVariant &type) { type_.set(type); }
    /// How much is found: 1 to 5.
    QVariant stars() const { return stars_.get(); }
    void setStars(const QVariant &stars) { stars_.set(stars); }

    /// The name as text: a number in plain digits; null where there is none, or it is anything else.
    QString nameText() const;

private:
    struct NoDefaults
    {
    };
    explicit Genre(NoDefaults) {}

    AtomicField<QVariant> name_;
    AtomicField<QVariant> label_;
    AtomicField<QVariant> type_;
    AtomicField<QVariant> stars_;
};
