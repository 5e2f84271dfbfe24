#pragma once

#include <QByteArray>
#include <optional>

class QDataStream;

/// The attributes of one XML element: a flat map from name to text, in document order.
///
/// Names and values each stand in one block, one behind the other and each ended by a NUL, as the UTF-8 that
/// they arrived in. Elements with the same names share that block, so that a station costs two pointers and
/// its own text, and copies are cheap.
class AttributeMap
{
public:
    AttributeMap() = default;
    /// Both blocks hold the same number of texts.
    AttributeMap(QByteArray names, QByteArray values);

    /// The value under `name`; nothing where the element has no such attribute. The view lives as long as
    /// this map or a copy of it.
    std::optional<QByteArrayView> value(QByteArrayView name) const;

    friend QDataStream &operator<<(QDataStream &stream, const AttributeMap &map);
    /// Leaves the map empty, and marks the stream as corrupt, where its two blocks do not belong together.
    friend QDataStream &operator>>(QDataStream &stream, AttributeMap &map);

private:
    QByteArray names_;
    QByteArray values_;
};
