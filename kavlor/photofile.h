// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/**
 * Reads a member's photos, which nobody has looked at yet, in bounded memory: what a file of a few
 * bytes announces may take gigabytes once it is unpacked.
 */

/** A picture as it is shown, and the size it has in its file. */
struct ShownPhoto
{
    QImage image; ///< null when it could not be read
    QSize originalSize;
};

/**
 * The photo in @p fileName, scaled into @p box with its proportions kept.
 *
 * A photo of up to 256 megapixels is read at the size it is shown in, without its whole picture
 * ever being in memory, where the reader of its format can do so: JPEG always, and in Qt 6.4 a PNG
 * without a palette that is not interlaced. The others unpack it whole first, into at most 1 GB.
 */
ShownPhoto readPhoto(const QString &fileName, const QSize &box);
