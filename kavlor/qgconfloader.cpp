// SPDX-License-Identifier: MIT

#include "qgconfloader.h"

#include <QLibrary>

namespace {

QLibrary &gconf()
{
    static QLibrary library(QStringLiteral("gconf-2"), 4);
    return library;
}

} // namespace

void qgconf_loadLibGConf()
{
    // GObject keeps the types that GConf registers for good, so the code behind them must stay.
    gconf().setLoadHints(QLibrary::PreventUnloadHint);
    gconf().load();
}

QFunctionPointer qgconf_resolve_me(const char *name)
{
    return gconf().isLoaded() ? gconf().resolve(name) : nullptr;
}

void qgconf_unloadLibGConf()
{
    gconf().unload();
}
