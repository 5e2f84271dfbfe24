#pragma once

#include <QStringView>
#include <limits>

/// The decimal integer that `text` begins with, after blanks and an optional sign; 0 where there is none.
/// A number beyond the range of 64 bits gives the nearest end of that range.
constexpr qint64 leadingInteger(QStringView text)
{
    qsizetype position = 0;
    while (position < text.size() &&
           (text[position] == u' ' || (text[position] >= u'\t' && text[position] <= u'\r'))) {
        ++position;
    }
    const bool negative = position < text.size() && text[position] == u'-';
    if (position < text.size() && (negative || text[position] == u'+')) {
        ++position;
    }

    // Counted downwards, because the range reaches one further on that side.
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    qint64 value = 0;
    for (; position < text.size() && text[position] >= u'0' && text[position] <= u'9'; ++position) {
        const qint64 digit = text[position].unicode() - u'0';
        if (value < (lowest + digit) / 10) {
            return negative ? lowest : std::numeric_limits<qint64>::max();
        }
        value = value * 10 - digit;
    }
    if (negative) {
        return value;
    }
    return value == lowest ? std::numeric_limits<qint64>::max() : -value;
}
