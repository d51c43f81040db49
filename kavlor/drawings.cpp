// SPDX-License-Identifier: MIT

#include "drawings.h"

#include <QFile>
#include <QImage>

QString largeDrawing(const QString &path)
{
    const QString large = QStringLiteral(":/large") + path.mid(1);
    return QFile::exists(large) ? large : path;
}

QPixmap drawingOfHeight(const QString &path, int height)
{
    QImage image(path);
    if (image.height() < height)
        image.load(largeDrawing(path));
    const QPixmap drawing = QPixmap::fromImage(image);
    return drawing.height() == height ? drawing
                                      : drawing.scaledToHeight(height, Qt::SmoothTransformation);
}
