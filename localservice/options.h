// SPDX-License-Identifier: MIT

#pragma once

#include "result.h"

#include <QStringList>

/** What the service is started with. */
struct Options
{
    static constexpr qint64 maxMediaLimit = 1024L * 1024 * 1024 * 1024;

    int port = 8470;                          ///< 0 = any free port
    QString dataFolder;                       ///< empty = the user's own data location
    qint64 maxMediaBytes = 64L * 1024 * 1024; ///< an upload's media may not be larger
    bool seed = false;    ///< put the trial member and auctions into an empty service
    bool help = false;    ///< say helpText() and end
    bool version = false; ///< say which version this is and end

    /** Reads a command line, the program's name included. */
    static Result<Options> parse(const QStringList &arguments);
    static QString helpText();
};
