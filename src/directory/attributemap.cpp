#include "directory/attributemap.h"

#include <QDataStream>
#include <utility>

namespace {
bool isBlock(const QByteArray &texts)
{
    return texts.isEmpty() || texts.endsWith('\0');
}
} // namespace

AttributeMap::AttributeMap(QByteArray names, QByteArray values)
    : names_(std::move(names))
    , values_(std::move(values))
{
}

std::optional<QByteArrayView> AttributeMap::value(QByteArrayView name) const
{
    const char *value = values_.constData();
    const char *candidate = names_.constData();
    const char *const end = candidate + names_.size();
    while (candidate != end) {
        const QByteArrayView candidateName(candidate);
        const QByteArrayView text(value);
        if (candidateName == name) {
            return text;
        }
        candidate += candidateName.size() + 1;
        value += text.size() + 1;
    }
    return std::nullopt;
}

QDataStream &operator<<(QDataStream &stream, const AttributeMap &map)
{
    return stream << map.names_ << map.values_;
}

QDataStream &operator>>(QDataStream &stream, AttributeMap &map)
{
    QByteArray names;
    QByteArray values;
    stream >> names >> values;
    const bool matching = isBlock(names) && isBlock(values) && names.count('\0') == values.count('\0');
    if (!matching) {
        stream.setStatus(QDataStream::ReadCorruptData);
    }
    map = matching ? AttributeMap(names, values) : AttributeMap();
    return stream;
}
