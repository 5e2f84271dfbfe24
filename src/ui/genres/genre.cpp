#include "ui/genres/genre.h"

#include "base/keyedcoder.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {
constexpr QLatin1StringView nameKey("name");
constexpr QLatin1StringView labelKey("label");
constexpr QLatin1StringView typeKey("type");
constexpr QLatin1StringView starsKey("stars");

/// The label of genres with a type.
const QString directoryLabel = QStringLiteral("Shoutcast");
} // namespace

Genre::Genre()
    : name_(QStringLiteral("genre"))
    , label_(QStringLiteral("Genre"))
{
}

GenreRecords Genre::listFromJson(const QJsonArray &elements)
{
    GenreRecords genres;
    for (const auto &element : elements) {
        if (!element.isObject()) {
            continue;
        }
        const QJsonObject object = element.toObject();
        auto genre = std::make_shared<Genre>();
        genre->setName(object.value(nameKey).toVariant());
        if (object.contains(typeKey)) {
            genre->setType(object.value(typeKey).toVariant());
            genre->setLabel(directoryLabel);
        }
        if (object.contains(starsKey)) {
            genre->setStars(object.value(starsKey).toVariant());
        }
        genres.append(std::move(genre));
    }
    return genres;
}

GenreRecord Genre::initWithCoder(const KeyedDecoder &coder)
{
    GenreRecord genre(new Genre(NoDefaults()));
    genre->setName(coder.decodeObject(nameKey));
    genre->setType(coder.decodeObject(typeKey));
    genre->setLabel(coder.decodeObject(labelKey));
    genre->setStars(coder.decodeObject(starsKey));
    return genre;
}

void Genre::encodeWithCoder(KeyedEncoder &coder) const
{
    coder.encodeObject(name(), nameKey);
    coder.encodeObject(name(), typeKey);
    coder.encodeObject(stars(), starsKey);
}

QString Genre::nameText() const
{
    const QVariant held = name();
    switch (held.typeId()) {
    case QMetaType::QString: {
        // An empty name counts as a name, although conversions may have made it null.
        const QString text = held.toString();
        return text.isNull() ? QStringLiteral("") : text;
    }
    case QMetaType::LongLong:
    case QMetaType::Double:
        return held.toString();
    default:
        return {};
    }
}
