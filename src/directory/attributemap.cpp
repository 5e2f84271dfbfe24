#include "directory/attributemap.h"

#include <utility>

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
