#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <memory>
#include <plist/plist.h>
#include <vector>

/// Small helpers over libplist's nodes. A plist_t that is passed or returned belongs to the tree it is in; a
/// Plist owns a whole tree.

struct PlistFree
{
    void operator()(plist_t node) const { plist_free(node); }
};
using Plist = std::unique_ptr<void, PlistFree>;

/// Releases bytes that libplist has allocated.
void freePlistBytes(char *bytes);

/// A node of a number that may be negative.
Plist newPlistInteger(std::int64_t number);

/// A string node. An unpaired surrogate, which cannot be written, becomes U+FFFD; the text ends at its first
/// U+0000, because libplist's strings do.
Plist newPlistText(const QString &text);

/// Makes `node` a string node of that text, as newPlistText() does.
void setPlistText(plist_t node, const QString &text);

/// The text of a string node, whatever characters it is made of; null of any other node, or of none.
QString plistText(plist_t node);

/// The bytes of a data node; null of any other node, or of none.
QByteArray plistData(plist_t node);

/// Whether `node` is of that type; false of none.
bool isPlist(plist_t node, plist_type type);

/// The value under `key`; null where there is none, or `dictionary` is none.
plist_t plistValue(plist_t dictionary, const char *key);

/// The elements of an array or the values of a dictionary, in their order; none of any other node.
std::vector<plist_t> plistChildren(plist_t container);
