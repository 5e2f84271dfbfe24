#pragma once

#include <QByteArray>

struct evp_cipher_ctx_st;

/// Decrypts one segment as it comes: AES-128 in CBC mode with PKCS7 padding.
class HlsCipher
{
public:
    static constexpr qsizetype keyBytes = 16;

    /// Whether this machine can decrypt at all. The first call opens libcrypto.
    static bool isAvailable();
    /// The initialisation vector that stands for the number of a segment (RFC 8216, 5.2).
    static QByteArray vectorFor(quint64 number);

    /// Both have keyBytes bytes. Only where this is available.
    HlsCipher(const QByteArray &key, const QByteArray &vector);
    ~HlsCipher();

    HlsCipher(const HlsCipher &) = delete;
    HlsCipher &operator=(const HlsCipher &) = delete;

    /// What the bytes that come next make readable: all but the last block.
    QByteArray decrypt(const QByteArray &bytes);
    /// What is left at the end of the segment; nothing where that was no proper end.
    QByteArray finish();

private:
    evp_cipher_ctx_st *context_;
};
