// SPDX-License-Identifier: MIT

#include "auctionlist.h"

#include <QBuffer>
#include <QImage>

namespace {

QString header()
{
    return QStringLiteral("auctions\n");
}

} // namespace

QString AuctionLine::text() const
{
    return QStringLiteral("%1,%2,7,%3,%4,9,12/24/2026 18:30,%5,%6,%7,%8")
        .arg(QString::number(id), title, QString::number(reservePrice),
             QString::number(buyItNowPrice), finished ? QStringLiteral("1") : QStringLiteral("0"),
             QString::number(views), QString::number(bids), QString::number(item10));
}

QString auctionReply(int count)
{
    QString reply = header();
    for (int i = 1; i <= count; ++i) {
        AuctionLine line;
        line.id = static_cast<uint>(i);
        line.title = QStringLiteral("Auction %1").arg(i);
        line.views = i;
        reply += line.text() + QLatin1Char('\n');
    }
    return reply;
}

QString auctionReply(const AuctionLine &line)
{
    return header() + line.text() + QLatin1Char('\n');
}

QByteArray thumbnailBytes(const QColor &color, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}
