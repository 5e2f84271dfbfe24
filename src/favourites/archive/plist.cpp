#include "favourites/archive/plist.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <cstdlib>

namespace {
QByteArray plistBytes(const QString &text)
{
    // QString's own conversion would write a question mark.
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    return encoder.encode(text);
}

// Of the functions that came with libplist 2.3 some took the place of others.

template <class Byte>
void freeBytes(Byte *bytes)
{
    if constexpr (requires { plist_mem_free(bytes); }) {
        plist_mem_free(bytes);
    } else {
        plist_to_bin_free(bytes);
    }
}

template <class Number>
plist_t newInteger(Number number)
{
    if constexpr (requires { plist_new_int(number); }) {
        return plist_new_int(number);
    } else {
        return plist_new_uint(static_cast<std::uint64_t>(number));
    }
}
} // namespace

void freePlistBytes(char *bytes)
{
    freeBytes(bytes);
}

Plist newPlistInteger(std::int64_t number)
{
    return Plist(newInteger(number));
}

Plist newPlistText(const QString &text)
{
    return Plist(plist_new_string(plistBytes(text).constData()));
}

void setPlistText(plist_t node, const QString &text)
{
    plist_set_string_val(node, plistBytes(text).constData());
}

QString plistText(plist_t node)
{
    if (!isPlist(node, PLIST_STRING)) {
        return {};
    }
    uint64_t length = 0;
    const char *bytes = plist_get_string_ptr(node, &length);
    // QString's own conversion would drop a byte order mark in front, which is a character here.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder.decode(QByteArrayView(bytes, static_cast<qsizetype>(length)));
    return text.isNull() ? QStringLiteral("") : text;
}

QByteArray plistData(plist_t node)
{
    if (!isPlist(node, PLIST_DATA)) {
        return {};
    }
    uint64_t length = 0;
    const char *bytes = plist_get_data_ptr(node, &length);
    return length == 0 ? QByteArray("") : QByteArray(bytes, static_cast<qsizetype>(length));
}

bool isPlist(plist_t node, plist_type type)
{
    return node != nullptr && plist_get_node_type(node) == type;
}

plist_t plistValue(plist_t dictionary, const char *key)
{
    return isPlist(dictionary, PLIST_DICT) ? plist_dict_get_item(dictionary, key) : nullptr;
}

std::vector<plist_t> plistChildren(plist_t container)
{
    std::vector<plist_t> children;
    void *position = nullptr;
    plist_t child = nullptr;
    // With iterators: access by index starts from the beginning each time.
    if (isPlist(container, PLIST_ARRAY)) {
        children.reserve(plist_array_get_size(container));
        plist_array_new_iter(container, &position);
        for (plist_array_next_item(container, position, &child); child != nullptr;
             plist_array_next_item(container, position, &child)) {
            children.push_back(child);
        }
    } else if (isPlist(container, PLIST_DICT)) {
        children.reserve(plist_dict_get_size(container));
        plist_dict_new_iter(container, &position);
        for (plist_dict_next_item(container, position, nullptr, &child); child != nullptr;
             plist_dict_next_item(container, position, nullptr, &child)) {
            children.push_back(child);
        }
    }
    std::free(position);
    return children;
}
