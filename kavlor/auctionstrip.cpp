// SPDX-License-Identifier: MIT

#include "auctionstrip.h"

#include "auctionmarks.h"
#include "auctionrow.h"
#include "liststyle.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <QtMath>

#include <algorithm>

namespace {

constexpr int titleLength = 60;
constexpr QRect titleBox(1, 1, 679, 27);

// The title as far as it is shown; a character in two halves is not shown by one of them.
QString shownTitle(const QString &title)
{
    const QString shown = title.left(titleLength);
    return !shown.isEmpty() && shown.back().isHighSurrogate() ? shown.chopped(1) : shown;
}

// From the first to the last of the letters, digits and signs without accents.
constexpr char16_t firstPlain = u' ';
constexpr char16_t lastPlain = u'~';

bool isPlain(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character >= QChar(firstPlain) && character <= QChar(lastPlain);
    });
}

QString everythingPlain()
{
    QString text;
    for (char16_t character = firstPlain; character <= lastPlain; ++character)
        text.append(QChar(character));
    return text;
}

// How far the text would stand out above the picture, in pixels. The outlines that this takes cost
// twice as much as the painting.
int overhang(const QFont &font, const QString &text)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return 0;
    const qreal baseline = titleBox.center().y() - line.height() / 2 + line.ascent();
    // From the outlines of the letters, since the metrics of a font leave out accents upon accents.
    // The painted letters may differ from them by one pixel.
    QPainterPath outlines;
    outlines.addText(0, baseline, font, text);
    return qMax(0, 1 - qFloor(outlines.boundingRect().top()));
}

int titleOverhang(const QString &title)
{
    const QFont &font = listStyle().titleFont;
    static const bool plainFits = overhang(font, everythingPlain()) == 0;
    return plainFits && isPlain(title) ? 0 : overhang(font, title);
}

void paintTitle(QPainter *painter, const QString &title)
{
    painter->setFont(listStyle().titleFont);
    painter->setPen(listStyle().titleColor);
    // A high accent would be cut off where the picture ends.
    const QRect box = titleBox.translated(0, titleOverhang(title));
    painter->drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                      title);
}

} // namespace

QPixmap paintAuctionStrip(const CAuctionRow &auction, qreal pixelRatio)
{
    QPixmap strip(auctionStripSize * pixelRatio);
    strip.setDevicePixelRatio(pixelRatio);
    strip.fill(Qt::transparent);
    QPainter painter(&strip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, pixelRatio != 1);
    paintAuctionMarks(&painter, auction);
    // Over the marks, into which the tails of its letters may reach.
    paintTitle(&painter, shownTitle(auction.title));
    return strip;
}
