// SPDX-License-Identifier: MIT

#include "picturecomparison.h"

namespace {

int largestDifference(QRgb one, QRgb other)
{
    return qMax(qMax(qAbs(qRed(one) - qRed(other)), qAbs(qGreen(one) - qGreen(other))),
                qMax(qAbs(qBlue(one) - qBlue(other)), qAbs(qAlpha(one) - qAlpha(other))));
}

QString sizeText(const QImage &picture)
{
    return QStringLiteral("%1x%2").arg(picture.width()).arg(picture.height());
}

} // namespace

QString pictureDifference(const QImage &picture, const QImage &expected, int tolerance)
{
    if (picture.size() != expected.size())
        return QStringLiteral("the picture is %1, expected is %2")
            .arg(sizeText(picture), sizeText(expected));
    const QImage one = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage other = expected.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    int count = 0;
    int largest = 0;
    QPoint place;
    for (int y = 0; y < one.height(); ++y) {
        const auto *oneLine = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *otherLine = reinterpret_cast<const QRgb *>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            const int difference = largestDifference(oneLine[x], otherLine[x]);
            if (difference > tolerance)
                ++count;
            if (difference > largest) {
                largest = difference;
                place = QPoint(x, y);
            }
        }
    }
    if (count == 0)
        return {};
    return QStringLiteral("%1 pixels differ by more than %2 of 255, the most by %3 at (%4, %5)")
        .arg(count)
        .arg(tolerance)
        .arg(largest)
        .arg(place.x())
        .arg(place.y());
}
