#include "favourites/archive/binaryplistform.h"
#include "favourites/archive/keyedarchive.h"

#include <bit>
#include <unordered_set>
#include <utility>

namespace {
/// Longer texts and data are identified by their address: comparing them would cost more than sharing saves.
constexpr qsizetype longestCompared = 256;

Plist newScalar(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return Plist(plist_new_bool(value.toBool() ? 1 : 0));
    case QMetaType::LongLong:
        return newPlistInteger(value.toLongLong());
    case QMetaType::Double:
        return Plist(plist_new_real(value.toDouble()));
    case QMetaType::QString:
        return newPlistText(value.toString());
    default:
        break;
    }
    const QByteArray data = value.toByteArray();
    return Plist(plist_new_data(data.constData(), static_cast<uint64_t>(data.size())));
}

bool isScalar(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::LongLong:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return true;
    default:
        return false;
    }
}

QByteArray bytesOf(std::uint64_t number)
{
    return {reinterpret_cast<const char *>(&number), sizeof number};
}

QByteArray addressOf(const void *data, qsizetype size)
{
    return 'a' + bytesOf(reinterpret_cast<std::uintptr_t>(data)) + bytesOf(static_cast<std::uint64_t>(size));
}
} // namespace

KeyedArchiver::KeyedArchiver()
{
    append(newPlistText(QStringLiteral("$null")));
}

QByteArray KeyedArchiver::archivedDataWithRootObject(const StationRecords &stations)
{
    KeyedArchiver archiver;
    plist_t list = plist_new_dict();
    const Index root = archiver.append(Plist(list));
    plist_t elements = plist_new_array();
    plist_dict_set_item(list, "NS.objects", elements);

    const Index recordClass =
        archiver.indexOfClass({QStringLiteral("RadioModel"), QStringLiteral("NSObject")});
    std::unordered_set<const RadioModel *> written;
    for (const StationRecord &station : stations) {
        if (station != nullptr && written.insert(station.get()).second) {
            archiver.record_ = plist_new_dict();
            plist_array_append_item(elements, plist_new_uid(archiver.append(Plist(archiver.record_))));
            station->encodeWithCoder(archiver);
            plist_dict_set_item(archiver.record_, "$class", plist_new_uid(recordClass));
        }
    }
    const Index listClass = archiver.indexOfClass(
        {QStringLiteral("NSMutableArray"), QStringLiteral("NSArray"), QStringLiteral("NSObject")});
    plist_dict_set_item(list, "$class", plist_new_uid(listClass));
    archiver.copyObjects();

    const QByteArray bytes = archiver.finish(root);
    const bool canBeOpened =
        written.size() <= KeyedUnarchiver::maximumStations && BinaryPlistForm::examine(bytes).has_value();
    return canBeOpened ? bytes : QByteArray();
}

void KeyedArchiver::encodeObject(const QVariant &value, QLatin1StringView key)
{
    plist_dict_set_item(record_, key.data(), plist_new_uid(indexOf(value)));
}

KeyedArchiver::Index KeyedArchiver::append(Plist object)
{
    objects_.push_back(std::move(object));
    return objects_.size() - 1;
}

KeyedArchiver::Index KeyedArchiver::indexOf(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<ArchivedObject>()) {
        return indexOfCopy(value.value<ArchivedObject>());
    }
    if (!isScalar(value)) {
        return 0;
    }
    Index &index = shared_[shareKey(value)];
    if (index == 0) {
        kept_.push_back(value);
        index = append(newScalar(value));
    }
    return index;
}

KeyedArchiver::Index KeyedArchiver::indexOfCopy(const ArchivedObject &original)
{
    const auto [place, isNew] = copyIndexes_.try_emplace(original.object, objects_.size());
    if (isNew) {
        copies_.push_back({original, append(nullptr)});
    }
    return place->second;
}

KeyedArchiver::Index KeyedArchiver::indexOfClass(const QStringList &chain)
{
    plist_t names = plist_new_array();
    for (const QString &name : chain) {
        plist_array_append_item(names, newPlistText(name).release());
    }
    plist_t record = plist_new_dict();
    plist_dict_set_item(record, "$classname", newPlistText(chain.first()).release());
    plist_dict_set_item(record, "$classes", names);
    return append(Plist(record));
}

QByteArray KeyedArchiver::shareKey(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QByteArray("b1") : QByteArray("b0");
    case QMetaType::LongLong:
        return 'i' + bytesOf(static_cast<std::uint64_t>(value.toLongLong()));
    case QMetaType::Double:
        return 'r' + bytesOf(std::bit_cast<std::uint64_t>(value.toDouble()));
    case QMetaType::QString: {
        const QString text = value.toString();
        const auto *units = reinterpret_cast<const char *>(text.constData());
        return text.size() > longestCompared
                   ? addressOf(units, text.size())
                   : 's' + QByteArray(units, text.size() * qsizetype{sizeof(QChar)});
    }
    default: {
        const QByteArray data = value.toByteArray();
        return data.size() > longestCompared ? addressOf(data.constData(), data.size()) : 'd' + data;
    }
    }
}

void KeyedArchiver::copyObjects()
{
    // Redirecting a copy finds more to copy. Nothing is copied twice, so that cycles terminate.
    for (std::size_t next = 0; next < copies_.size(); ++next) {
        const Copy copy = copies_[next];
        Plist copied(plist_copy(copy.original.object));
        redirect(copied.get(), copy.original.document);
        objects_[copy.index] = std::move(copied);
    }
}

void KeyedArchiver::redirect(plist_t copied, const std::shared_ptr<const KeyedDocument> &document)
{
    std::vector<plist_t> pending{copied};
    while (!pending.empty()) {
        plist_t node = pending.back();
        pending.pop_back();
        if (isPlist(node, PLIST_UID)) {
            plist_t object = document->resolved(node);
            plist_set_uid_val(node, object == nullptr ? 0 : indexOfCopy({document, object}));
        } else if (isPlist(node, PLIST_STRING)) {
            // An unpaired surrogate would make the whole archive unreadable for other readers.
            setPlistText(node, plistText(node));
        } else {
            const std::vector<plist_t> children = plistChildren(node);
            pending.insert(pending.end(), children.begin(), children.end());
        }
    }
}

QByteArray KeyedArchiver::finish(Index root)
{
    const Plist archive(plist_new_dict());
    plist_dict_set_item(archive.get(), "$version", plist_new_uint(KeyedDocument::version));
    plist_dict_set_item(archive.get(), "$archiver", plist_new_string(KeyedDocument::archiver.data()));
    plist_t top = plist_new_dict();
    plist_dict_set_item(top, "root", plist_new_uid(root));
    plist_dict_set_item(archive.get(), "$top", top);
    plist_t objects = plist_new_array();
    for (Plist &object : objects_) {
        plist_array_append_item(objects, object.release());
    }
    plist_dict_set_item(archive.get(), "$objects", objects);
    char *bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(archive.get(), &bytes, &size);
    QByteArray binary(bytes, size);
    freePlistBytes(bytes);
    return binary;
}
