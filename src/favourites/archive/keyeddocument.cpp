#include "favourites/archive/keyeddocument.h"

#include "favourites/archive/binaryplistform.h"

#include <optional>

namespace {
bool isVersion(plist_t node)
{
    uint64_t number = 0;
    if (isPlist(node, PLIST_UINT)) {
        plist_get_uint_val(node, &number);
    }
    return number == KeyedDocument::version;
}
} // namespace

std::shared_ptr<const KeyedDocument> KeyedDocument::open(QByteArrayView bytes)
{
    const std::optional<BinaryPlistForm> form = BinaryPlistForm::examine(bytes);
    if (!form) {
        return nullptr;
    }
    plist_t tree = nullptr;
    plist_from_bin(bytes.data(), static_cast<uint32_t>(bytes.size()), &tree);
    const std::shared_ptr<KeyedDocument> document(new KeyedDocument);
    document->tree_.reset(tree);

    plist_t top = plistValue(tree, "$top");
    plist_t objects = plistValue(tree, "$objects");
    document->objects_ = plistChildren(objects);
    document->root_ = plistValue(top, "root");
    if (plistText(plistValue(tree, "$archiver")) != archiver || !isVersion(plistValue(tree, "$version")) ||
        !isPlist(objects, PLIST_ARRAY) || document->objects_.empty() || document->root_ == nullptr) {
        return nullptr;
    }
    constexpr uint32_t keys = 4;
    document->isPlain_ = form->textsAreKept && plist_dict_get_size(tree) == keys &&
                         plist_dict_get_size(top) == 1 &&
                         plistText(document->objects_.front()) == QLatin1StringView("$null");
    return document;
}

plist_t KeyedDocument::resolved(plist_t node) const
{
    if (!isPlist(node, PLIST_UID)) {
        return node;
    }
    uint64_t index = 0;
    plist_get_uid_val(node, &index);
    // No archiver writes a reference to a reference.
    return index == 0 || index >= objects_.size() || isPlist(objects_[index], PLIST_UID) ? nullptr
                                                                                         : objects_[index];
}

bool KeyedDocument::isDangling(plist_t node) const
{
    uint64_t index = 0;
    if (isPlist(node, PLIST_UID)) {
        plist_get_uid_val(node, &index);
    }
    return index != 0 && resolved(node) == nullptr;
}
