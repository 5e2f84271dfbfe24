#pragma once

#include <QString>
#include <stdexcept>

/// The base of all exceptions that this program raises itself. One that escapes from an event handler loses
/// that event only: the application logs it in one line and goes on.
class Exception : public std::runtime_error
{
public:
    explicit Exception(const QString &reason)
        : std::runtime_error(reason.toStdString())
    {
    }

    QString reason() const { return QString::fromUtf8(what()); }
};

/// An index that lies outside its list.
class RangeError : public Exception
{
public:
    using Exception::Exception;
};

/// The element of `list` at `index`. Raises RangeError where there is none.
template <class List>
decltype(auto) elementAt(List &list, qsizetype index)
{
    if (index < 0 || index >= list.size()) {
        throw RangeError(QStringLiteral("index %1 beyond bounds [0 .. %2)").arg(index).arg(list.size()));
    }
    return list[index];
}
