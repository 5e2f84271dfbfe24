#include "playback/stream/hls/hlscipher.h"

#include "playback/stream/hls/cryptolibrary.h"

#include <QtEndian>

namespace {
const unsigned char *bytesOf(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

unsigned char *bytesOf(QByteArray &array)
{
    return reinterpret_cast<unsigned char *>(array.data());
}
} // namespace

bool HlsCipher::isAvailable()
{
    return CryptoLibrary::get() != nullptr;
}

QByteArray HlsCipher::vectorFor(quint64 number)
{
    QByteArray vector(keyBytes, '\0');
    qToBigEndian(number, vector.data() + keyBytes - sizeof(number));
    return vector;
}

HlsCipher::HlsCipher(const QByteArray &key, const QByteArray &vector)
    : context_(CryptoLibrary::get()->contextNew())
{
    const CryptoLibrary &crypto = *CryptoLibrary::get();
    crypto.decryptInit(context_, crypto.aes128Cbc(), nullptr, bytesOf(key), bytesOf(vector));
}

HlsCipher::~HlsCipher()
{
    CryptoLibrary::get()->contextFree(context_);
}

QByteArray HlsCipher::decrypt(const QByteArray &bytes)
{
    QByteArray plain(bytes.size() + keyBytes, Qt::Uninitialized);
    int length = 0;
    if (CryptoLibrary::get()->decryptUpdate(context_, bytesOf(plain), &length, bytesOf(bytes),
                                            static_cast<int>(bytes.size())) != 1) {
        return {};
    }
    plain.truncate(length);
    return plain;
}

QByteArray HlsCipher::finish()
{
    QByteArray plain(keyBytes, Qt::Uninitialized);
    int length = 0;
    if (CryptoLibrary::get()->decryptFinal(context_, bytesOf(plain), &length) != 1) {
        return {};
    }
    plain.truncate(length);
    return plain;
}
