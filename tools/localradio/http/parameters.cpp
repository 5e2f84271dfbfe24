#include "localradio/http/parameters.h"

#include <algorithm>
#include <array>

namespace localradio {

namespace {

[[noreturn]] void refuse(QLatin1StringView name, const QString &wanted)
{
    throw BadParameter((name + QStringLiteral(" must be ") + wanted).toStdString());
}

} // namespace

std::optional<qint64> wholeNumber(const RequestTarget &target, QLatin1StringView name, qint64 least,
                                  qint64 most)
{
    const QString text = target.parameter(name);
    if (text.isNull()) {
        return std::nullopt;
    }
    bool valid = false;
    const qint64 number = text.toLongLong(&valid);
    if (!valid || number < least || number > most) {
        refuse(name, QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
    }
    return number;
}

std::optional<double> positiveNumber(const RequestTarget &target, QLatin1StringView name, double most)
{
    const QString text = target.parameter(name);
    if (text.isNull()) {
        return std::nullopt;
    }
    bool valid = false;
    const double number = text.toDouble(&valid);
    if (!valid || !(number > 0 && number <= most)) {
        refuse(name, QStringLiteral("a number above 0 and at most %1").arg(most));
    }
    return number;
}

std::optional<QByteArray> headerText(const RequestTarget &target, QLatin1StringView name)
{
    const QString text = target.parameter(name);
    if (text.isNull()) {
        return std::nullopt;
    }
    const auto isControl = [](QChar character) { return character.category() == QChar::Other_Control; };
    if (text.isEmpty() || std::ranges::any_of(text, isControl)) {
        refuse(name, QStringLiteral("a text without control characters"));
    }
    return text.toUtf8();
}

std::optional<std::size_t> choice(const RequestTarget &target, QLatin1StringView name,
                                  std::span<const QLatin1StringView> choices)
{
    const QString text = target.parameter(name);
    if (text.isNull()) {
        return std::nullopt;
    }
    const auto found = std::ranges::find(choices, text);
    if (found == choices.end()) {
        QStringList list;
        for (const QLatin1StringView entry : choices) {
            list << entry;
        }
        refuse(name, QStringLiteral("one of: ") + list.join(u", "));
    }
    return static_cast<std::size_t>(found - choices.begin());
}

bool flag(const RequestTarget &target, QLatin1StringView name)
{
    static constexpr std::array choices{QLatin1StringView("0"), QLatin1StringView("1")};
    return choice(target, name, choices).value_or(0) == 1;
}

} // namespace localradio
