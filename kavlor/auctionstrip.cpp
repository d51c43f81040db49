#include "auctionstrip.h"

#include "auctionrow.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>

namespace {

constexpr int titleLength = 60;
constexpr QRect titleBox(1, 1, 679, 27);
constexpr int marksTop = 28;

// Pictures as QImage and not QPixmap: they outlive the application object.
struct Resources
{
    const QColor titleColor{249, 167, 31};
    const QColor numberColor{25, 5, 10};
    const QFont titleFont{QStringLiteral("LargeSystemFont"), 21, QFont::Bold};
    const QFont numberFont{QStringLiteral("SmallSystemFont"), 14, QFont::DemiBold};
    const QImage viewed{QStringLiteral(":/viewed.png")};
    const QImage bidding{QStringLiteral(":/biddingOn.png")};
    const QImage reserveMet{QStringLiteral(":/reserveMet.png")};
    const QImage sold{QStringLiteral(":/sold.png")};
    const QImage soldSwapped = sold.rgbSwapped();
};

const Resources &resources()
{
    static const Resources all;
    return all;
}

void paintNumber(QPainter *painter, int number, int x, int width)
{
    // Both numbers stand at the height of the first mark's free space.
    const int markHeight = resources().viewed.height();
    const int quarter = markHeight / 4;
    const int twelfth = markHeight / 12;
    const int y = static_cast<int>(quarter + 28.3 - twelfth);
    painter->drawText(QRect(x, y, width, 2 * markHeight / 4), Qt::AlignCenter | Qt::TextSingleLine,
                      QString::number(number));
}

} // namespace

QPixmap paintAuctionStrip(const CAuctionRow &auction)
{
    const Resources &shared = resources();
    const int viewedWidth = shared.viewed.width();
    const int biddingWidth = shared.bidding.width();
    const int reserveWidth = shared.reserveMet.width();

    QPixmap strip(auctionStripSize);
    strip.fill(Qt::transparent);
    QPainter painter(&strip);

    painter.setFont(shared.titleFont);
    painter.setPen(shared.titleColor);
    painter.drawText(titleBox, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     auction.title.left(titleLength));

    painter.setFont(shared.numberFont);
    painter.setPen(shared.numberColor);
    painter.drawImage(1, marksTop, shared.viewed);
    paintNumber(&painter, auction.views, viewedWidth / 2 + 1 - viewedWidth / 10, viewedWidth / 2);
    painter.drawImage(viewedWidth + 2, marksTop, shared.bidding);
    paintNumber(&painter, auction.bids, viewedWidth + 1 + biddingWidth / 3, biddingWidth / 2);

    if (auction.item10 == auction.reservePrice)
        painter.drawImage(viewedWidth + 3 + biddingWidth, marksTop, shared.reserveMet);
    painter.drawImage(viewedWidth + 4 + biddingWidth + reserveWidth, marksTop,
                      auction.finished ? shared.soldSwapped : shared.sold);
    return strip;
}
