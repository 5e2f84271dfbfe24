#include "favourites/archive/keyedarchive.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {
constexpr QLatin1StringView recordClass("RadioModel");

/// Far more than the superclasses of any class.
constexpr std::size_t longestChain = 64;

bool isList(const QStringList &classes)
{
    return classes.contains(QLatin1StringView("NSArray")) ||
           classes.contains(QLatin1StringView("NSMutableArray"));
}

bool isText(const QStringList &classes)
{
    return classes.contains(QLatin1StringView("NSString")) ||
           classes.contains(QLatin1StringView("NSMutableString"));
}
} // namespace

KeyedUnarchiver::KeyedUnarchiver(std::shared_ptr<const KeyedDocument> document)
    : document_(std::move(document))
    , whole_(document_->isPlain())
{
}

std::optional<KeyedUnarchiver::Result> KeyedUnarchiver::unarchiveObjectWithData(const QByteArray &data)
{
    std::shared_ptr<const KeyedDocument> document = KeyedDocument::open(data);
    return document ? KeyedUnarchiver(std::move(document)).decodeList() : std::nullopt;
}

std::optional<KeyedUnarchiver::Result> KeyedUnarchiver::decodeList()
{
    plist_t list = document_->root();
    plist_t objects = document_->resolved(plistValue(list, "NS.objects"));
    const std::vector<plist_t> elements = plistChildren(objects);
    if (!isList(classNames(list)) || !isPlist(objects, PLIST_ARRAY) || elements.size() > maximumStations) {
        return std::nullopt;
    }
    constexpr quint32 keys = 2;
    whole_ = whole_ && plist_dict_get_size(list) == keys && isList(classNames(list).mid(0, 1));

    Result result;
    std::unordered_set<plist_t> seen;
    for (plist_t element : elements) {
        plist_t object = document_->resolved(element);
        if (seen.insert(object).second && classNames(object).contains(recordClass)) {
            result.stations.append(decodeRecord(object));
        } else {
            whole_ = false;
        }
    }
    result.whole = whole_;
    return result;
}

StationRecord KeyedUnarchiver::decodeRecord(plist_t object)
{
    record_ = object;
    found_ = 0;
    StationRecord record = RadioModel::initWithCoder(*this);
    // The fields and the class are all that is written again.
    whole_ = whole_ && plist_dict_get_size(object) == found_ + 1 && classNames(object).first() == recordClass;
    return record;
}

QVariant KeyedUnarchiver::decodeObject(QLatin1StringView key) const
{
    plist_t node = plistValue(record_, key.data());
    if (node == nullptr) {
        return {};
    }
    ++found_;
    whole_ = whole_ && !document_->isDangling(node);
    return decoded(document_->resolved(node));
}

QVariant KeyedUnarchiver::decoded(plist_t object) const
{
    if (object == nullptr) {
        return {};
    }
    switch (plist_get_node_type(object)) {
    case PLIST_BOOLEAN: {
        uint8_t flag = 0;
        plist_get_bool_val(object, &flag);
        return flag != 0;
    }
    case PLIST_UINT:
        return decodedInteger(object);
    case PLIST_REAL: {
        double real = 0;
        plist_get_real_val(object, &real);
        return real;
    }
    case PLIST_STRING:
    case PLIST_DATA:
        return decodedText(object);
    default:
        break;
    }
    // A mutable text is an object that holds one.
    constexpr quint32 keys = 2;
    if (isPlist(object, PLIST_DICT) && plist_dict_get_size(object) == keys && isText(classNames(object))) {
        plist_t text = document_->resolved(plistValue(object, "NS.string"));
        if (isPlist(text, PLIST_STRING)) {
            return decodedText(text);
        }
    }
    return QVariant::fromValue(ArchivedObject{document_, object});
}

QVariant KeyedUnarchiver::decodedInteger(plist_t object) const
{
    uint64_t number = 0;
    plist_get_uint_val(object, &number);
    // From 2^63 on it is either a negative number, or one that was stored in 16 bytes and has no qlonglong.
    if (number > INT64_MAX) {
        const Plist negative = newPlistInteger(static_cast<std::int64_t>(number));
        if (plist_compare_node_value(object, negative.get()) == 0) {
            return QVariant::fromValue(ArchivedObject{document_, object});
        }
    }
    return static_cast<qlonglong>(number);
}

const QVariant &KeyedUnarchiver::decodedText(plist_t object) const
{
    QVariant &text = texts_[object];
    if (!text.isValid()) {
        text = isPlist(object, PLIST_STRING) ? QVariant(plistText(object)) : QVariant(plistData(object));
    }
    return text;
}

const QStringList &KeyedUnarchiver::classNames(plist_t object) const
{
    plist_t description = document_->resolved(plistValue(object, "$class"));
    const auto [known, isNew] = classNames_.try_emplace(description);
    if (isNew && description != nullptr) {
        QStringList &names = known->second;
        names.append(plistText(plistValue(description, "$classname")));
        const std::vector<plist_t> chain = plistChildren(plistValue(description, "$classes"));
        for (std::size_t index = 0; index < std::min(chain.size(), longestChain); ++index) {
            names.append(plistText(chain[index]));
        }
    }
    return known->second;
}
