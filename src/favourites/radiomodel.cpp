#include "favourites/radiomodel.h"

#include "base/keyedcoder.h"
#include "base/rvobject.h"

#include <utility>

namespace {
constexpr std::array<QLatin1StringView, RadioModel::fieldCount> keys{
    QLatin1StringView("name"),           QLatin1StringView("genre"),         QLatin1StringView("mid"),
    QLatin1StringView("mountType"),      QLatin1StringView("bitrate"),       QLatin1StringView("listener"),
    QLatin1StringView("stars"),          QLatin1StringView("imageFilePath"), QLatin1StringView("volume"),
    QLatin1StringView("bass"),           QLatin1StringView("midrange"),      QLatin1StringView("treble"),
    QLatin1StringView("custom"),         QLatin1StringView("url"),           QLatin1StringView("port"),
    QLatin1StringView("mountpoint"),     QLatin1StringView("password"),      QLatin1StringView("username"),
    QLatin1StringView("radioIsPrivate"), QLatin1StringView("radioscheme"),   QLatin1StringView("radioUuid"),
};

constexpr qlonglong defaultStars = 2;
constexpr double defaultBitrate = 64.0;
constexpr double defaultSound = 6.0;

bool isNumber(const QVariant &value)
{
    return value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Double;
}

std::size_t indexOf(RadioField field)
{
    return static_cast<std::size_t>(field);
}
} // namespace

RadioModel::RadioModel()
{
    setName(QStringLiteral("My Radio"));
    setGenre(QStringLiteral("Pop"));
    setMid(QStringLiteral("0"));
    setMountType(QStringLiteral("audio/mpeg"));
    setBitrate(defaultBitrate);
    setListener(qlonglong{0});
    setStars(defaultStars);
    setImageFilePath(QString(directoryArtwork));
    setVolume(defaultSound);
    setBass(defaultSound);
    setMidrange(defaultSound);
    setTreble(defaultSound);
    setCustom(false);
    setRadioIsPrivate(false);
    setRadioscheme(QStringLiteral("http"));
    setRadioUuid(RVObject::getUUID());
}

StationRecord RadioModel::initWithCoder(const KeyedDecoder &coder)
{
    StationRecord record(new RadioModel(NoDefaults()));
    for (const RadioField field : fields()) {
        record->setValue(field, coder.decodeObject(key(field)));
    }
    return record;
}

void RadioModel::encodeWithCoder(KeyedEncoder &coder) const
{
    for (const RadioField field : fields()) {
        coder.encodeObject(value(field), key(field));
    }
}

QLatin1StringView RadioModel::key(RadioField field)
{
    return keys.at(indexOf(field));
}

std::array<RadioField, RadioModel::fieldCount> RadioModel::fields()
{
    std::array<RadioField, fieldCount> all{};
    for (std::size_t index = 0; index < fieldCount; ++index) {
        all.at(index) = static_cast<RadioField>(index);
    }
    return all;
}

QVariant RadioModel::value(RadioField field) const
{
    const std::scoped_lock lock(mutex_);
    return values_.at(indexOf(field));
}

void RadioModel::setValue(RadioField field, const QVariant &value)
{
    QVariant old = value;
    const std::scoped_lock lock(mutex_);
    values_.at(indexOf(field)).swap(old);
}

QString RadioModel::text(RadioField field) const
{
    const QVariant held = value(field);
    return held.typeId() == QMetaType::QString || isNumber(held) ? held.toString() : QString();
}

bool RadioModel::flag(RadioField field) const
{
    const QVariant held = value(field);
    return (held.typeId() == QMetaType::Bool || isNumber(held)) && held.toBool();
}
