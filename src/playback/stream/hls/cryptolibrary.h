#pragma once

#include <openssl/evp.h>

/// The functions of libcrypto that we call, found in the shared library when the program runs. Once opened,
/// the library stays in the process.
struct CryptoLibrary
{
    decltype(&EVP_CIPHER_CTX_new) contextNew = nullptr;
    decltype(&EVP_CIPHER_CTX_free) contextFree = nullptr;
    decltype(&EVP_aes_128_cbc) aes128Cbc = nullptr;
    decltype(&EVP_DecryptInit_ex) decryptInit = nullptr;
    decltype(&EVP_DecryptUpdate) decryptUpdate = nullptr;
    decltype(&EVP_DecryptFinal_ex) decryptFinal = nullptr;

    /// Opened by the first call; null, and a line in the log, where the machine has no libcrypto that fits.
    /// On any thread.
    static const CryptoLibrary *get();
};
