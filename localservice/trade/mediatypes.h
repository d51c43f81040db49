// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

// The photos and clips that the service takes, told apart by their file names' endings.

/** The ending of a file name in lower case, or an empty text when the service does not take it. */
QString mediaExtension(const QString &fileName);
bool isVideo(const QString &fileName);
/** What a browser is told that a file is. */
QByteArray mediaType(const QString &fileName);
