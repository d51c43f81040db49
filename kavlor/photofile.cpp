// SPDX-License-Identifier: MIT

#include "photofile.h"

#include <QImageReader>

namespace {

constexpr qint64 maxPhotoPixels = 256'000'000;
constexpr int maxPhotoMegabytes = 1024; // 256 megapixels of 4 bytes each

// Raises the toolkit's limit on the memory of a picture while it lives. There is one limit for the
// whole program, so it is put back as soon as the photo is read.
class AllocationLimit
{
public:
    explicit AllocationLimit(int megabytes)
    {
        QImageReader::setAllocationLimit(megabytes);
    }
    ~AllocationLimit()
    {
        QImageReader::setAllocationLimit(m_before);
    }
    Q_DISABLE_COPY_MOVE(AllocationLimit)

private:
    const int m_before = QImageReader::allocationLimit();
};

qint64 pixelCount(const QSize &size)
{
    return static_cast<qint64>(size.width()) * size.height();
}

// The largest size with the proportions of @p size that fits @p box, at least one pixel each way.
QSize fitted(const QSize &size, const QSize &box)
{
    return size.scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

ShownPhoto readPhoto(const QString &fileName, const QSize &box)
{
    QImageReader reader(fileName);
    const QSize announced = reader.size(); // invalid where the format does not tell
    if (announced.isValid() && pixelCount(announced) > maxPhotoPixels)
        return {};
    const QSize shown = fitted(announced, box);
    if (announced.isValid() && pixelCount(announced) > pixelCount(shown)
        && reader.supportsOption(QImageIOHandler::ScaledSize))
        reader.setScaledSize(shown);

    const AllocationLimit limit(maxPhotoMegabytes);
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    return {image.scaled(box, Qt::KeepAspectRatio, Qt::FastTransformation),
            announced.isValid() ? announced : image.size()};
}
