#include "auctionstrip.h"

#include "auctionrow.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <QtMath>

namespace {

constexpr int titleLength = 60;
constexpr QRect titleBox(1, 1, 679, 27);
constexpr int marksTop = 28;
constexpr int largestNumber = 14; // points
constexpr int smallestNumber = 9;

// Pictures as QImage and not QPixmap: they outlive the application object.
struct Resources
{
    const QColor titleColor{249, 167, 31};
    const QColor numberColor{25, 5, 10};
    const QFont titleFont{QStringLiteral("LargeSystemFont"), 21, QFont::Bold};
    const QFont numberFont{QStringLiteral("SmallSystemFont"), largestNumber, QFont::DemiBold};
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

// Makes the font as small as the text needs for the width; false when that would be too small.
bool fitFont(QPainter *painter, const QString &text, int width)
{
    QFont font = resources().numberFont;
    for (int points = largestNumber; points >= smallestNumber; --points) {
        font.setPointSize(points);
        painter->setFont(font);
        if (painter->fontMetrics().horizontalAdvance(text) <= width)
            return true;
    }
    return false;
}

// A part of a number would read as another one, so it is shown whole or as being beyond what fits.
void paintNumber(QPainter *painter, int number, int x, int width)
{
    // Both numbers stand at the height of the first mark's free space.
    const int markHeight = resources().viewed.height();
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

// The title as far as it is shown; a character in two halves is not shown by one of them.
QString shownTitle(const QString &title)
{
    const QString shown = title.left(titleLength);
    return !shown.isEmpty() && shown.back().isHighSurrogate() ? shown.chopped(1) : shown;
}

// How far the text would stand out above the picture, in pixels.
int overhang(const QFont &font, const QString &text)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return 0;
    const qreal baseline = titleBox.center().y() - line.height() / 2 + line.ascent();
    // Its outlines, since the metrics of a font leave marks above marks out. On the screen they are
    // rounded, by a pixel at most.
    QPainterPath outlines;
    outlines.addText(0, baseline, font, text);
    return qMax(0, 1 - qFloor(outlines.boundingRect().top()));
}

void paintTitle(QPainter *painter, const QString &title)
{
    const QFont &font = resources().titleFont;
    painter->setFont(font);
    painter->setPen(resources().titleColor);
    // A high accent would be cut off where the picture ends.
    const QRect box = titleBox.translated(0, overhang(font, title));
    painter->drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                      title);
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

    painter.setPen(shared.numberColor);
    painter.drawImage(1, marksTop, shared.viewed);
    paintNumber(&painter, auction.views, viewedWidth / 2 + 1 - viewedWidth / 10, viewedWidth / 2);
    painter.drawImage(viewedWidth + 2, marksTop, shared.bidding);
    paintNumber(&painter, auction.bids, viewedWidth + 1 + biddingWidth / 3, biddingWidth / 2);

    if (auction.item10 == auction.reservePrice)
        painter.drawImage(viewedWidth + 3 + biddingWidth, marksTop, shared.reserveMet);
    painter.drawImage(viewedWidth + 4 + biddingWidth + reserveWidth, marksTop,
                      auction.finished ? shared.soldSwapped : shared.sold);
    // Over the marks, into which the tails of its letters may reach.
    paintTitle(&painter, shownTitle(auction.title));
    return strip;
}
