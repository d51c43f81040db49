// SPDX-License-Identifier: MIT

#include "multipartbody.h"

#include "auctionrecord.h"
#include "kavloruser.h"

#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QPair>

#include <cstdlib>
#include <limits>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace {

QByteArray textPart(const QByteArray &boundary, const QString &name, const QString &value)
{
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + name.toLatin1()
        + "\"\r\n\r\n" + value.toLatin1() + "\r\n";
}

QByteArray textParts(const QByteArray &boundary, const CKavlorUser &user,
                     const CAuctionRecord &auction)
{
    const QString noReserve = QStringLiteral("1");
    const QList<QPair<QString, QString>> parts{
        {QStringLiteral("Username"), user.field(CKavlorUser::Username)},
        {QStringLiteral("Password"), user.field(CKavlorUser::Password)},
        {QStringLiteral("CategoryID"), QString::number(auction.category)},
        {QStringLiteral("LongDescription"), auction.description},
        {QStringLiteral("Description"), auction.caption},
        {QStringLiteral("CaptureLatitude"), QString()},
        {QStringLiteral("CaptureLongitude"), QString()},
        {QStringLiteral("CaptureDate"),
         auction.captureDate.toLocalTime().toString(QStringLiteral("yyyyMMddhhmmss"))},
        {QStringLiteral("ReservePrice"),
         auction.reservePrice == 0 ? noReserve : QString::number(auction.reservePrice)},
        {QStringLiteral("BuyItNowPrice"),
         auction.buyItNowPrice == 0 ? QString() : QString::number(auction.buyItNowPrice)},
        {QStringLiteral("StartPrice"), QString::number(auction.startPrice)},
        {QStringLiteral("SUBMIT"), QStringLiteral("submit")},
    };
    QByteArray bytes;
    for (const auto &[name, value] : parts)
        bytes += textPart(boundary, name, value);
    return bytes;
}

// The head of the media part. The service learns the kind of media from the extension alone.
QByteArray mediaHead(const QByteArray &boundary, const QString &path, qint64 size)
{
    const QString extension = path.right(path.length() - path.lastIndexOf(QLatin1Char('.')));
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"MediaFile\"; filename=\"1"
        + extension.toLocal8Bit() + "\"\r\nContent-length: " + QByteArray::number(size)
        + "\r\nContent-Type: application/octet-stream\r\n\r\n";
}

// Asks for large pages, of which fewer have to be got one by one as the file is read into them.
void useLargePages([[maybe_unused]] QByteArray *bytes)
{
#ifdef MADV_HUGEPAGE
    const auto page = static_cast<qsizetype>(sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<quintptr>(bytes->data());
    const auto skipped = page - static_cast<qsizetype>(address % static_cast<quintptr>(page));
    if (bytes->capacity() > skipped)
        madvise(bytes->data() + skipped, static_cast<size_t>(bytes->capacity() - skipped),
                MADV_HUGEPAGE);
#endif
}

// Takes the memory for so many bytes, when there is as much. A clip may well be larger than a
// device's memory, and that must not be the end of the program.
bool reserve(QByteArray *bytes, qint64 size)
{
    if (size > std::numeric_limits<qsizetype>::max())
        return false;
    try {
        bytes->reserve(static_cast<qsizetype>(size));
    } catch (const std::bad_alloc &) {
        return false;
    }
    useLargePages(bytes);
    return true;
}

// Appends the file, which must have as many bytes as announced: neither a failing card nor a file
// that is being written may put half a photo on auction.
bool appendFile(QByteArray *bytes, QFile *file, qint64 size)
{
    const qsizetype start = bytes->size();
    bytes->resize(start + static_cast<qsizetype>(size));
    qint64 done = 0;
    while (done < size) {
        const qint64 count = file->read(bytes->data() + start + done, size - done);
        if (count <= 0)
            return false;
        done += count;
    }
    char more = 0;
    return file->read(&more, 1) == 0;
}

} // namespace

QByteArray makeBoundary()
{
    QByteArray bytes(16, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(std::rand() & 0xff);
    return bytes.toHex();
}

QString multipartType(const QByteArray &boundary)
{
    // The service is sent a comma where a semicolon is usual.
    return QStringLiteral("multipart/form-data, boundary=") + QString::fromLatin1(boundary);
}

std::optional<QByteArray> multipartBody(const QByteArray &boundary, const CKavlorUser &user,
                                        const CAuctionRecord &auction)
{
    const QString &mediaPath = auction.mediaPath;
    const qint64 size = QFileInfo(mediaPath).size();
    const QByteArray head =
        textParts(boundary, user, auction) + mediaHead(boundary, mediaPath, size);
    const QByteArray tail = "\r\n--" + boundary + "--\r\n";
    // Of the right size from the start, so that the file is in memory once.
    std::optional<QByteArray> body(std::in_place);
    QFile media(mediaPath);
    if (!media.open(QIODevice::ReadOnly) || !reserve(&*body, head.size() + size + tail.size())
        || !appendFile(&body->append(head), &media, size))
        return std::nullopt;
    *body += tail;
    return body;
}
