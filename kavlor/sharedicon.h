// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>

/**
 * The icon at @p path, the same one whenever it is asked for, until the application object goes.
 *
 * A screen is made anew for each visit. An icon of its own would be read and cached anew each
 * time, and the toolkit's pixmap cache, in which the thumbnails are, does not forget the names of
 * what it has dropped.
 */
QIcon sharedIcon(const QString &path);
