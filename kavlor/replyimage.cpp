// SPDX-License-Identifier: MIT

#include "replyimage.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QSize>
#include <QtEndian>

#include <array>

#include <zlib.h>

namespace {

constexpr QSize shownBounds(220, 220);
constexpr qint64 maxReplyBytes = 64LL * 1024 * 1024;

// What the image takes once it is unpacked.
qint64 unpackedBytes(const QImageReader &reader)
{
    const QSize size = reader.size();
    if (!size.isValid())
        return 0;
    // A format may not tell its depth before it is read, or anything at all, as that of a JPEG
    // whose header is broken; and fewer bits may become 32 a pixel.
    const QImage::Format format = reader.imageFormat();
    const bool isKnown = format > QImage::Format_Invalid && format < QImage::NImageFormats;
    const int depth = isKnown ? qMax<int>(32, QImage::toPixelFormat(format).bitsPerPixel()) : 32;
    return static_cast<qint64>(size.width()) * size.height() * depth / 8;
}

// What the compressed data takes once it is unpacked, looked at up to the limit and a little more.
qint64 inflatedBytes(QByteArrayView data, qint64 limit)
{
    z_stream stream = {};
    stream.next_in = const_cast<Bytef *>(reinterpret_cast<const Bytef *>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    if (inflateInit(&stream) != Z_OK)
        return 0;
    std::array<Bytef, 65536> page;
    qint64 bytes = 0;
    int result = Z_OK;
    while (result == Z_OK && bytes <= limit) {
        stream.next_out = page.data();
        stream.avail_out = static_cast<uInt>(page.size());
        result = inflate(&stream, Z_NO_FLUSH);
        bytes += static_cast<qint64>(page.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    return bytes;
}

// The bytes from @p place to the end; none when @p place is beyond the end.
QByteArrayView from(QByteArrayView bytes, qsizetype place)
{
    return bytes.sliced(qMin(place, bytes.size()));
}

// How many bytes a chunk of a PNG with a text or a colour profile takes once it is unpacked. Such a
// chunk begins with a name and a zero byte.
qint64 chunkBytes(QByteArrayView type, QByteArrayView data, qint64 limit)
{
    const qsizetype name = data.indexOf('\0') + 1;
    if (type == "zTXt" || type == "iCCP")
        return inflatedBytes(from(data, name + 1), limit); // one byte names the method
    const bool isCompressed = type == "iTXt" && from(data, name).startsWith('\1');
    if (!isCompressed)
        return data.size();
    // A flag and the method, then the language and the translated name, each with a zero byte.
    const qsizetype language = data.indexOf('\0', name + 2) + 1;
    return inflatedBytes(from(data, data.indexOf('\0', language) + 1), limit);
}

// The file without its text chunks, which nobody reads. @p textBytes receives what they and the
// colour profile would take unpacked.
QByteArray withoutTexts(const QByteArray &file, qint64 *textBytes)
{
    const QByteArray signature("\x89PNG\r\n\x1a\n");
    *textBytes = 0;
    if (!file.startsWith(signature))
        return file;
    constexpr qint64 frame = 12; // length, type and check sum
    QByteArray picture = signature;
    qsizetype place = signature.size();
    while (place + frame <= file.size() && *textBytes <= maxReplyBytes) {
        const qint64 length = qFromBigEndian<quint32>(file.constData() + place);
        const qsizetype size = static_cast<qsizetype>(qMin(frame + length, file.size() - place));
        const QByteArrayView type = QByteArrayView(file).sliced(place + 4, 4);
        const bool isText = type == "tEXt" || type == "zTXt" || type == "iTXt";
        if (isText || type == "iCCP") {
            const QByteArrayView data =
                QByteArrayView(file).sliced(place + 8, size - static_cast<qsizetype>(frame));
            *textBytes += chunkBytes(type, data, maxReplyBytes - *textBytes);
        }
        if (!isText)
            picture.append(file.constData() + place, size);
        place += size;
    }
    picture.append(file.constData() + place, file.size() - place);
    return picture;
}

} // namespace

QImage readReplyImage(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxReplyBytes)
        return {};
    qint64 textBytes = 0;
    QByteArray picture = withoutTexts(file.readAll(), &textBytes);
    if (textBytes > maxReplyBytes)
        return {};

    QBuffer buffer(&picture);
    QImageReader reader(&buffer);
    if (unpackedBytes(reader) + textBytes > maxReplyBytes)
        return {};
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    return image.scaled(shownBounds, Qt::KeepAspectRatio, Qt::FastTransformation);
}
