// SPDX-License-Identifier: MIT

#pragma once

#include <QPixmap>
#include <QString>

// Many pictures of the program are drawn twice: as large as the handheld shows them, and larger in
// the folder ":/large", for where they are shown larger than that.

/** Where the larger drawing of the picture at @p path is; @p path itself when there is none. */
QString largeDrawing(const QString &path);

/** The picture at @p path, @p height pixels high, from the drawing that is sharp at that height. */
QPixmap drawingOfHeight(const QString &path, int height);
