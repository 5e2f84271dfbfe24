#include "localradio/http/requesttarget.h"

#include <algorithm>
#include <utility>

namespace localradio {

namespace {

QString decode(const QByteArray &text)
{
    return QString::fromUtf8(QByteArray::fromPercentEncoding(text));
}

QString decodeForm(QByteArray text)
{
    return decode(text.replace('+', ' '));
}

/// What stands before the first `separator`, and what after it.
std::pair<QByteArray, QByteArray> splitOnce(const QByteArray &text, char separator)
{
    const qsizetype at = text.indexOf(separator);
    return at < 0 ? std::pair(text, QByteArray("")) : std::pair(text.first(at), text.sliced(at + 1));
}

} // namespace

RequestTarget::RequestTarget(const QByteArray &target)
{
    const auto [path, query] = splitOnce(target, '?');
    path_ = decode(path);
    for (const QByteArray &pair : query.split('&')) {
        const auto [name, value] = splitOnce(pair, '=');
        parameters_.append({decodeForm(name), decodeForm(value)});
    }
}

QString RequestTarget::parameter(QLatin1StringView name) const
{
    const auto found =
        std::ranges::find_if(parameters_, [name](const auto &entry) { return entry.first == name; });
    return found == parameters_.end() ? QString() : found->second;
}

QStringList RequestTarget::parameters(QLatin1StringView name) const
{
    QStringList values;
    for (const auto &[key, value] : parameters_) {
        if (key == name) {
            values << value;
        }
    }
    return values;
}

} // namespace localradio
