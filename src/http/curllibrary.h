#pragma once

#include <curl/curl.h>

/// The functions of libcurl that we call, found in the shared library when the program runs. Once opened, the
/// library stays in the process.
struct CurlLibrary
{
    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_easy_pause) easyPause = nullptr;
    decltype(&curl_easy_setopt) easySetopt = nullptr;
    decltype(&curl_easy_getinfo) easyGetinfo = nullptr;
    decltype(&curl_easy_nextheader) easyNextheader = nullptr;
    decltype(&curl_easy_strerror) easyStrerror = nullptr;
    decltype(&curl_slist_append) slistAppend = nullptr;
    decltype(&curl_slist_free_all) slistFreeAll = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;
    decltype(&curl_multi_setopt) multiSetopt = nullptr;
    decltype(&curl_multi_add_handle) multiAddHandle = nullptr;
    decltype(&curl_multi_remove_handle) multiRemoveHandle = nullptr;
    decltype(&curl_multi_socket_action) multiSocketAction = nullptr;
    decltype(&curl_multi_info_read) multiInfoRead = nullptr;
    /// Whether it can decode "br".
    bool hasBrotli = false;
    /// Whether it finds certificates by their names in a folder, rather than reading all of them.
    bool hasCertificateFolder = false;

    /// Opened by the first call, which may take 20 ms; null, and a line in the log, where the machine has no
    /// libcurl that fits. On any thread.
    static const CurlLibrary *get();
};
