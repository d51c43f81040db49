// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QString>

/**
 * The picture of a reply, whose body is in @p fileName, scaled to fit 220 x 220 pixels.
 *
 * Null when there is none to read, or when it would take more than 64 MB unpacked, its texts
 * included: what a file of a few bytes announces may take gigabytes.
 */
QImage readReplyImage(const QString &fileName);
