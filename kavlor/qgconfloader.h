// SPDX-License-Identifier: MIT

#pragma once

#include <QFunctionPointer>

// The GConf library, found when the program runs and never linked, so that the program also starts
// where there is none.

/** Loads the library; a load more for each call. Failing is not reported: nothing resolves then. */
void qgconf_loadLibGConf();
/** The function @p name of the library or of GLib, which it brings along; null without either. */
QFunctionPointer qgconf_resolve_me(const char *name);
/** Takes one load back. */
void qgconf_unloadLibGConf();
