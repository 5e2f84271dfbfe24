#include "http/curllibrary.h"

#include "base/libraryfunction.h"

#include <QLoggingCategory>
#include <memory>

namespace {
Q_LOGGING_CATEGORY(lcHttp, "plumtide.http")

/// The version of the interface, as in the shared object's name, and the one from which on a handle can be
/// let go of while its name is still being looked up (CURLOPT_QUICK_EXIT), without certificates being read
/// anew each time.
constexpr int interfaceVersion = 4;
constexpr unsigned leastVersion = CURL_VERSION_BITS(7, 88, 0);

bool findAll(QLibrary &library, CurlLibrary &functions)
{
    return findFunction(library, "curl_easy_init", functions.easyInit) &&
           findFunction(library, "curl_easy_cleanup", functions.easyCleanup) &&
           findFunction(library, "curl_easy_pause", functions.easyPause) &&
           findFunction(library, "curl_easy_setopt", functions.easySetopt) &&
           findFunction(library, "curl_easy_getinfo", functions.easyGetinfo) &&
           findFunction(library, "curl_easy_nextheader", functions.easyNextheader) &&
           findFunction(library, "curl_easy_strerror", functions.easyStrerror) &&
           findFunction(library, "curl_slist_append", functions.slistAppend) &&
           findFunction(library, "curl_slist_free_all", functions.slistFreeAll) &&
           findFunction(library, "curl_multi_init", functions.multiInit) &&
           findFunction(library, "curl_multi_cleanup", functions.multiCleanup) &&
           findFunction(library, "curl_multi_setopt", functions.multiSetopt) &&
           findFunction(library, "curl_multi_add_handle", functions.multiAddHandle) &&
           findFunction(library, "curl_multi_remove_handle", functions.multiRemoveHandle) &&
           findFunction(library, "curl_multi_socket_action", functions.multiSocketAction) &&
           findFunction(library, "curl_multi_info_read", functions.multiInfoRead);
}

std::unique_ptr<const CurlLibrary> open()
{
    QLibrary library(QStringLiteral("curl"), interfaceVersion);
#if !defined(PLUMTIDE_SANITIZED)
    // Its thirty shared objects find each other's functions in half the time when they do not look through
    // those of the program first. Sanitizers have to be found first.
    library.setLoadHints(QLibrary::DeepBindHint);
#endif
    auto functions = std::make_unique<CurlLibrary>();
    decltype(&curl_global_init) initialise = nullptr;
    decltype(&curl_version_info) describe = nullptr;
    if (!library.load() || !findAll(library, *functions) ||
        !findFunction(library, "curl_global_init", initialise) ||
        !findFunction(library, "curl_version_info", describe) ||
        initialise(CURL_GLOBAL_DEFAULT) != CURLE_OK) {
        qCWarning(lcHttp).noquote() << "no network: libcurl cannot be used:" << library.errorString();
        return nullptr;
    }
    const curl_version_info_data *version = describe(CURLVERSION_NOW);
    const auto has = [version](int feature) { return (version->features & feature) != 0; };
    // Without the latter a name server that does not answer would hold the window.
    if (version->version_num < leastVersion || !has(CURL_VERSION_ASYNCHDNS)) {
        qCWarning(lcHttp).noquote() << "no network: libcurl" << version->version << "does not fit";
        return nullptr;
    }
    functions->hasBrotli = has(CURL_VERSION_BROTLI);
    functions->hasCertificateFolder = version->capath != nullptr;
    return functions;
}
} // namespace

const CurlLibrary *CurlLibrary::get()
{
    static const std::unique_ptr<const CurlLibrary> library = open();
    return library.get();
}
