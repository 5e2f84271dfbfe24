#include "base/base64.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The value of each 7-bit character; 0 for those outside the alphabet.
constexpr std::array<quint8, 128> decodeTable = [] {
    std::array<quint8, 128> table{};
    for (std::size_t position = 0; position < alphabet.size(); ++position) {
        table[static_cast<std::size_t>(alphabet[position])] = static_cast<quint8>(position);
    }
    return table;
}();

quint32 decodedValue(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < decodeTable.size() ? decodeTable[code] : 0;
}
} // namespace

QString Base64::encode(const QByteArray &bytes)
{
    return encode(bytes.constData(), bytes.size());
}

QString Base64::encode(const char *bytes, qint64 length)
{
    if (bytes == nullptr || length <= 0) {
        return QStringLiteral("");
    }
    return QString::fromLatin1(QByteArray::fromRawData(bytes, length).toBase64());
}

std::optional<QByteArray> Base64::decode(const QString &text)
{
    const auto isAscii = [](QChar character) { return character.unicode() < decodeTable.size(); };
    if (text.isNull() || !std::all_of(text.begin(), text.end(), isAscii)) {
        return std::nullopt;
    }
    const QByteArray characters = text.toLatin1();
    return decode(characters.constData(), static_cast<quint64>(characters.size()));
}

std::optional<QByteArray> Base64::decode(const char *characters, quint64 length)
{
    if (characters == nullptr || length % 4 != 0) {
        return std::nullopt;
    }
    std::string_view text(characters, length);
    // With nothing but padding find_last_not_of gives npos, and npos + 1 is 0.
    text = text.substr(0, text.find_last_not_of('=') + 1);

    const std::size_t outputLength = 3 * text.size() / 4;
    QByteArray output;
    output.reserve(static_cast<qsizetype>(outputLength) + 2);
    for (std::size_t group = 0; group < text.size(); group += 4) {
        quint32 bits = 0;
        for (std::size_t position = group; position < group + 4; ++position) {
            bits = bits << 6U | (position < text.size() ? decodedValue(text[position]) : 0);
        }
        output.append(static_cast<char>(bits >> 16U));
        output.append(static_cast<char>(bits >> 8U));
        output.append(static_cast<char>(bits));
    }
    output.truncate(static_cast<qsizetype>(outputLength));
    return output;
}
