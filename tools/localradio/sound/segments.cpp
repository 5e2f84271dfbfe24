#include "localradio/sound/segments.h"

#include <QtEndian>

#include <openssl/evp.h>

#include <memory>

namespace localradio {

namespace {

/// An ID3 tag with the time at which the segment begins, in ticks of 90 kHz.
QByteArray timeTag(qint64 number)
{
    constexpr qint64 segmentTicks = qint64{segmentUnits} * kindUnitSamples * 90000 / kindSampleRate;
    QByteArray time(8, '\0');
    qToBigEndian(number * segmentTicks % (qint64{1} << 33), time.data());
    const QByteArray content = QByteArray("com.apple.streaming.transportStreamTimestamp") + '\0' + time;
    const auto size = [](qsizetype bytes) { return QByteArray(3, '\0') + static_cast<char>(bytes); };
    constexpr qsizetype frameHeadSize = 10;
    return QByteArray("ID3\4\0\0", 6) + size(content.size() + frameHeadSize) + "PRIV" + size(content.size()) +
           QByteArray(2, '\0') + content;
}

} // namespace

QByteArray segmentOf(const Turn &turn, Container container, qint64 number)
{
    QByteArray segment = container == Container::Frames ? timeTag(number) : QByteArray();
    for (qint64 unit = 0; unit < segmentUnits; ++unit) {
        segment += turn.unit(number * segmentUnits + unit);
    }
    return segment;
}

QByteArray encrypted(const QByteArray &segment, const QByteArray &key, const QByteArray &start)
{
    const auto bytes = [](const QByteArray &array) {
        return reinterpret_cast<const unsigned char *>(array.constData());
    };
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> cipher(EVP_CIPHER_CTX_new(),
                                                                                 EVP_CIPHER_CTX_free);
    QByteArray result(segment.size() + 16, '\0');
    auto *const out = reinterpret_cast<unsigned char *>(result.data());
    int size = 0;
    int padding = 0;
    EVP_EncryptInit_ex(cipher.get(), EVP_aes_128_cbc(), nullptr, bytes(key), bytes(start));
    EVP_EncryptUpdate(cipher.get(), out, &size, bytes(segment), static_cast<int>(segment.size()));
    EVP_EncryptFinal_ex(cipher.get(), out + size, &padding);
    result.resize(size + padding);
    return result;
}

} // namespace localradio
