#include "playback/stream/hls/cryptolibrary.h"

#include "base/libraryfunction.h"

#include <QLoggingCategory>
#include <memory>

namespace {
Q_LOGGING_CATEGORY(lcCrypto, "plumtide.playback")

/// As in the shared object's name.
constexpr int cryptoVersion = 3;

std::unique_ptr<const CryptoLibrary> openCrypto()
{
    QLibrary library(QStringLiteral("crypto"), cryptoVersion);
    auto functions = std::make_unique<CryptoLibrary>();
    if (!library.load() || !findFunction(library, "EVP_CIPHER_CTX_new", functions->contextNew) ||
        !findFunction(library, "EVP_CIPHER_CTX_free", functions->contextFree) ||
        !findFunction(library, "EVP_aes_128_cbc", functions->aes128Cbc) ||
        !findFunction(library, "EVP_DecryptInit_ex", functions->decryptInit) ||
        !findFunction(library, "EVP_DecryptUpdate", functions->decryptUpdate) ||
        !findFunction(library, "EVP_DecryptFinal_ex", functions->decryptFinal)) {
        qCWarning(lcCrypto).noquote()
            << "encrypted streams do not play: libcrypto cannot be used:" << library.errorString();
        return nullptr;
    }
    return functions;
}
} // namespace

const CryptoLibrary *CryptoLibrary::get()
{
    static const std::unique_ptr<const CryptoLibrary> library = openCrypto();
    return library.get();
}
