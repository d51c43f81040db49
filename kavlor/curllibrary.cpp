// SPDX-License-Identifier: MIT

#include "curllibrary.h"

#include <QDebug>
#include <QLibrary>

#include <optional>

namespace {

constexpr int abiVersion = 4;

// Finds the functions of one library, and remembers whether all were there.
class Finder
{
public:
    explicit Finder(const QString &name)
        : m_library(name, abiVersion)
    {
        m_library.setLoadHints(QLibrary::PreventUnloadHint);
    }

    template <typename Function>
    void find(Function *function, const char *name)
    {
        *function = reinterpret_cast<Function>(m_library.resolve(name));
        m_foundAll = m_foundAll && *function;
    }
    bool hasFoundAll() const
    {
        return m_foundAll;
    }
    QString errorText() const
    {
        return m_library.errorString();
    }

private:
    QLibrary m_library;
    bool m_foundAll = true;
};

std::optional<CurlLibrary> load()
{
    Finder finder(QStringLiteral("curl"));
    CurlLibrary library;
    decltype(&curl_global_init) globalInit = nullptr;
    finder.find(&globalInit, "curl_global_init");
    finder.find(&library.easyInit, "curl_easy_init");
    finder.find(&library.easySetopt, "curl_easy_setopt");
    finder.find(&library.easyGetinfo, "curl_easy_getinfo");
    finder.find(&library.easyPause, "curl_easy_pause");
    finder.find(&library.easyCleanup, "curl_easy_cleanup");
    finder.find(&library.slistAppend, "curl_slist_append");
    finder.find(&library.slistFreeAll, "curl_slist_free_all");
    finder.find(&library.multiInit, "curl_multi_init");
    finder.find(&library.multiSetopt, "curl_multi_setopt");
    finder.find(&library.multiAddHandle, "curl_multi_add_handle");
    finder.find(&library.multiRemoveHandle, "curl_multi_remove_handle");
    finder.find(&library.multiSocketAction, "curl_multi_socket_action");
    finder.find(&library.multiInfoRead, "curl_multi_info_read");
    finder.find(&library.multiCleanup, "curl_multi_cleanup");
    if (finder.hasFoundAll() && globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK)
        return library;
    qWarning("No HTTP library: %s", qPrintable(finder.errorText()));
    return std::nullopt;
}

} // namespace

const CurlLibrary *CurlLibrary::instance()
{
    static const std::optional<CurlLibrary> library = load();
    return library ? &*library : nullptr;
}
