#pragma once

#include "localradio/http/requesttarget.h"

#include <QByteArray>

#include <optional>
#include <span>
#include <stdexcept>

/// Parameters whose values are held to what makes sense. A parameter that is absent is never wrong.
namespace localradio {

/// A parameter has a value that makes no sense; what() is one line that says which and what would.
class BadParameter : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The whole number that is the parameter `name`; nothing if it is absent. Throws BadParameter unless it is
/// from `least` to `most`.
std::optional<qint64> wholeNumber(const RequestTarget &target, QLatin1StringView name, qint64 least,
                                  qint64 most);

/// The number that is the parameter `name`, fractions allowed; nothing if it is absent. Throws BadParameter
/// unless it is above 0 and at most `most`.
std::optional<double> positiveNumber(const RequestTarget &target, QLatin1StringView name, double most);

/// The parameter `name` as UTF-8 that fits into a header; nothing if it is absent. Throws BadParameter if it
/// is empty or has control characters.
std::optional<QByteArray> headerText(const RequestTarget &target, QLatin1StringView name);

/// Which of `choices` the parameter `name` is; nothing if it is absent. Throws BadParameter if it is none.
std::optional<std::size_t> choice(const RequestTarget &target, QLatin1StringView name,
                                  std::span<const QLatin1StringView> choices);

/// Whether the parameter `name` is 1; absent means 0. Throws BadParameter if it is anything else.
bool flag(const RequestTarget &target, QLatin1StringView name);

} // namespace localradio
