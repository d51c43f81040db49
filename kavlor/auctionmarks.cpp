// SPDX-License-Identifier: MIT

#include "auctionmarks.h"

#include "auctionrow.h"
#include "drawings.h"
#include "liststyle.h"

#include <QImage>
#include <QPainter>

namespace {

constexpr int marksTop = 28;
constexpr int smallestNumber = 9; // points

// A mark in both of its drawings. As QImage and not QPixmap: they outlive the application object.
struct Mark
{
    explicit Mark(const QString &path)
        : plain(path)
        , large(largeDrawing(path))
    {
    }

    Mark rgbSwapped() const
    {
        Mark swapped = *this;
        swapped.plain = plain.rgbSwapped();
        swapped.large = large.rgbSwapped();
        return swapped;
    }
    void paint(QPainter *painter, int x, int y) const
    {
        const bool isEnlarged = painter->device()->devicePixelRatioF() > 1;
        painter->drawImage(QRect(QPoint(x, y), plain.size()), isEnlarged ? large : plain);
    }

    QImage plain;
    QImage large;
};

struct Pictures
{
    const Mark viewed{QStringLiteral(":/viewed.png")};
    const Mark bidding{QStringLiteral(":/biddingOn.png")};
    const Mark reserveMet{QStringLiteral(":/reserveMet.png")};
    const Mark sold{QStringLiteral(":/sold.png")};
    const Mark soldSwapped = sold.rgbSwapped();
};

const Pictures &pictures()
{
    static const Pictures all;
    return all;
}

// Makes the font as small as the text needs for the width; false when that would be too small.
bool fitFont(QPainter *painter, const QString &text, int width)
{
    QFont font = listStyle().numberFont;
    for (int points = ListStyle::numberPoints; points >= smallestNumber; --points) {
        font.setPointSizeF(listPoints(points));
        painter->setFont(font);
        if (painter->fontMetrics().horizontalAdvance(text) <= width)
            return true;
    }
    return false;
}

// Paints the whole number, in smaller letters where it must; one that does not fit even so is shown
// as "99999+", because a clipped number would read as another number.
void paintNumber(QPainter *painter, int number, int x, int width)
{
    // Both numbers stand at the same height, that of the empty area in the picture for views.
    const int markHeight = pictures().viewed.plain.height();
    const int quarter = markHeight / 4;
    const int twelfth = markHeight / 12;
    const int y = static_cast<int>(quarter + 28.3 - twelfth);
    QString text = QString::number(number);
    if (!fitFont(painter, text, width)) {
        text = number < 0 ? QStringLiteral("-99999+") : QStringLiteral("99999+");
        fitFont(painter, text, width);
    }
    painter->drawText(QRect(x, y, width, 2 * markHeight / 4),
                      Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, text);
}

} // namespace

void paintAuctionMarks(QPainter *painter, const CAuctionRow &auction)
{
    const Pictures &all = pictures();
    const int viewedWidth = all.viewed.plain.width();
    const int biddingWidth = all.bidding.plain.width();
    const int reserveWidth = all.reserveMet.plain.width();

    painter->setPen(listStyle().numberColor);
    all.viewed.paint(painter, 1, marksTop);
    paintNumber(painter, auction.views, viewedWidth / 2 + 1 - viewedWidth / 10, viewedWidth / 2);
    all.bidding.paint(painter, viewedWidth + 2, marksTop);
    paintNumber(painter, auction.bids, viewedWidth + 1 + biddingWidth / 3, biddingWidth / 2);

    if (auction.item10 == auction.reservePrice)
        all.reserveMet.paint(painter, viewedWidth + 3 + biddingWidth, marksTop);
    const Mark &sale = auction.finished ? all.soldSwapped : all.sold;
    sale.paint(painter, viewedWidth + 4 + biddingWidth + reserveWidth, marksTop);
}
