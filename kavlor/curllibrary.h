// SPDX-License-Identifier: MIT

#pragma once

#include <curl/curl.h>

/**
 * The functions of the HTTP library that the client calls.
 *
 * The library is loaded, and made ready, when the first request is made: with the nineteen under
 * it, it would take a quarter of the time until the first window is seen, and nothing there needs
 * it. Whoever installs the program has to see to it that the library is there.
 */
struct CurlLibrary
{
    /** The same for the whole program, which never unloads it. Null when it cannot be loaded. */
    static const CurlLibrary *instance();

    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_setopt) easySetopt = nullptr;
    decltype(&curl_easy_getinfo) easyGetinfo = nullptr;
    decltype(&curl_easy_pause) easyPause = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_slist_append) slistAppend = nullptr;
    decltype(&curl_slist_free_all) slistFreeAll = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_setopt) multiSetopt = nullptr;
    decltype(&curl_multi_add_handle) multiAddHandle = nullptr;
    decltype(&curl_multi_remove_handle) multiRemoveHandle = nullptr;
    decltype(&curl_multi_socket_action) multiSocketAction = nullptr;
    decltype(&curl_multi_info_read) multiInfoRead = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;
};
