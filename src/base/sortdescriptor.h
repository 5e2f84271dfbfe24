#pragma once

#include <QString>
#include <Qt>

/// An order: by the value under `key`, with that value's default comparison.
struct SortDescriptor
{
    QString key;
    Qt::SortOrder order = Qt::AscendingOrder;

    bool operator==(const SortDescriptor &) const = default;
};
