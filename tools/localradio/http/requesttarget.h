#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

namespace localradio {

/// The target of a request, taken apart: "/path?key=value&...". A value; any bytes are accepted.
class RequestTarget
{
public:
    /// Reads `target` as it came on the wire. Form decoding: "+" is a blank, percent escapes are UTF-8;
    /// a broken escape stands for itself, bytes that are not UTF-8 become U+FFFD.
    explicit RequestTarget(const QByteArray &target);

    /// The decoded path.
    const QString &path() const { return path_; }

    /// All parameters, decoded and in their order.
    const QList<QPair<QString, QString>> &parameters() const { return parameters_; }

    /// The decoded value of the first parameter of that name; a null string if there is none.
    QString parameter(QLatin1StringView name) const;

    /// The decoded values of all parameters of that name, in their order.
    QStringList parameters(QLatin1StringView name) const;

private:
    QString path_;
    QList<QPair<QString, QString>> parameters_;
};

} // namespace localradio
