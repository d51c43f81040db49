// SPDX-License-Identifier: MIT

#include "pictures.h"

#include "mediatypes.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int cacheBytes = 16 * 1024 * 1024;
constexpr qint64 mostPixels = 128L * 1024 * 1024;
constexpr int mostMegabytes = 64; // of a picture that cannot be read any smaller

QImage canvas(int edge, const QColor &top, const QColor &bottom)
{
    QImage image(edge, edge * 3 / 4, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, image.height());
    sky.setColorAt(0, top);
    sky.setColorAt(1, bottom);
    painter.fillRect(image.rect(), sky);
    return image;
}

// A strip of film with the sign for "play" on it.
QImage drawnClip(int edge)
{
    QImage image = canvas(edge, QColor(58, 74, 110), QColor(24, 30, 48));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const qreal unit = edge / 20.0;
    painter.setBrush(QColor(12, 15, 24));
    painter.drawRect(QRectF(0, 0, edge, 2 * unit));
    painter.drawRect(QRectF(0, image.height() - 2 * unit, edge, 2 * unit));
    painter.setBrush(QColor(226, 231, 242));
    for (int hole = 0; hole < 10; ++hole) {
        const qreal x = (2 * hole + 0.5) * unit;
        painter.drawRoundedRect(QRectF(x, 0.5 * unit, unit, unit), unit / 4, unit / 4);
        painter.drawRoundedRect(QRectF(x, image.height() - 1.5 * unit, unit, unit), unit / 4,
                                unit / 4);
    }
    const QPointF middle = QRectF(image.rect()).center();
    painter.setBrush(QColor(249, 167, 31));
    painter.drawEllipse(middle, 3.2 * unit, 3.2 * unit);
    painter.setBrush(Qt::white);
    painter.drawPolygon(QPolygonF{middle + QPointF(-1.1, -1.7) * unit,
                                  middle + QPointF(1.9, 0) * unit,
                                  middle + QPointF(-1.1, 1.7) * unit});
    return image;
}

// An empty picture frame, for a photo that cannot be read.
QImage drawnFrame(int edge)
{
    QImage image = canvas(edge, QColor(238, 240, 243), QColor(214, 218, 224));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal unit = edge / 20.0;
    painter.setPen(QPen(QColor(150, 158, 168), unit / 2));
    const QRectF frame = QRectF(image.rect()).adjusted(4 * unit, 3 * unit, -4 * unit, -3 * unit);
    painter.drawRect(frame);
    painter.drawEllipse(frame.topLeft() + QPointF(3, 2.5) * unit, unit, unit);
    painter.drawPolyline(QPolygonF{frame.bottomLeft(), frame.center() + QPointF(-1, 0) * unit,
                                   frame.center() + QPointF(1, 2) * unit,
                                   frame.center() + QPointF(3, -1) * unit, frame.bottomRight()});
    return image;
}

} // namespace

Pictures::Pictures(const DataFolder &folder)
    : m_folder(folder)
    , m_cache(cacheBytes)
{
    QImageReader::setAllocationLimit(mostMegabytes);
    // A progressive photo is unpacked whole by the reader of its format before it is scaled,
    // outside of that limit. What would be too large is not read then.
    qputenv("JPEGMEM", QByteArray::number(mostMegabytes) + 'M');
}

Pictures::Picture Pictures::thumbnail(const QString &media, int edge)
{
    const QString key = media + QLatin1Char('@') + QString::number(edge);
    std::optional<Picture> known = cached(key);
    if (known)
        return *known;
    // One picture at a time, since an unpacked one is large; somebody else may have made this one.
    const std::lock_guard<std::mutex> making(m_making);
    known = cached(key);
    if (known)
        return *known;
    const QImage image = scaled(media, edge);
    const bool needsPng = image.hasAlphaChannel();
    Picture picture{{}, needsPng ? QByteArray("image/png") : QByteArray("image/jpeg")};
    QBuffer buffer(&picture.bytes);
    image.save(&buffer, needsPng ? "PNG" : "JPEG", needsPng ? -1 : 85);

    const std::lock_guard<std::mutex> lock(m_mutex);
    m_cache.insert(key, new Picture(picture), int(picture.bytes.size()));
    return picture;
}

std::optional<Pictures::Picture> Pictures::cached(const QString &key)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Picture *const known = m_cache.object(key);
    return known ? std::optional<Picture>(*known) : std::nullopt;
}

QImage Pictures::scaled(const QString &media, int edge) const
{
    if (isVideo(media))
        return drawnClip(edge);
    // By its content: a name's ending may be wrong, and the reader of that ending would give up.
    QImageReader reader(m_folder.mediaPath(media));
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (qint64(size.width()) * size.height() > mostPixels)
        return drawnFrame(edge);
    const bool isLarge = size.width() > edge || size.height() > edge;
    if (isLarge)
        reader.setScaledSize(size.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo({1, 1}));
    QImage image = reader.read();
    if (image.isNull())
        return drawnFrame(edge);
    if (image.width() > edge || image.height() > edge)
        image = image.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return image;
}
