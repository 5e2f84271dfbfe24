#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// The Base64 codec behind the Basic authentication header: RFC 4648, section 4, with padding, in one line.
class Base64
{
public:
    /// Empty text for no bytes.
    static QString encode(const QByteArray &bytes);
    /// Empty text for a null pointer or a length of 0 or less.
    static QString encode(const char *bytes, qint64 length);

    /// Nothing for null text, for text with characters outside ASCII, or where the number of
    /// characters is no multiple of 4. Every trailing "=" is dropped; a character outside the alphabet counts
    /// as "A". There is no other validation.
    static std::optional<QByteArray> decode(const QString &text);
    static std::optional<QByteArray> decode(const char *characters, quint64 length);
};
