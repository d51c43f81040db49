// SPDX-License-Identifier: MIT

#include "seedpictures.h"

#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>

#include <cmath>

namespace {

// Scenes are painted on a unit of 120 x 90, whatever the picture's size.
constexpr qreal wide = 120;
constexpr qreal high = 90;

void paintSky(QPainter &painter, const QColor &top, const QColor &bottom)
{
    QLinearGradient sky(0, 0, 0, high);
    sky.setColorAt(0, top);
    sky.setColorAt(0.75, bottom);
    painter.fillRect(QRectF(0, 0, wide, high), sky);
}

void paintGlow(QPainter &painter, const QPointF &middle, qreal radius, const QColor &color)
{
    QRadialGradient glow(middle, radius * 4);
    glow.setColorAt(0, color);
    QColor faded = color;
    faded.setAlpha(0);
    glow.setColorAt(1, faded);
    painter.setBrush(glow);
    painter.drawEllipse(middle, radius * 4, radius * 4);
    painter.setBrush(color.lighter(115));
    painter.drawEllipse(middle, radius, radius);
}

// A line of hills from edge to edge; a larger roughness makes mountains of them.
void paintHills(QPainter &painter, qreal base, qreal rise, qreal roughness, const QColor &color,
                quint32 seed)
{
    QRandomGenerator random(seed);
    const qreal phase = random.bounded(100) / 10.0;
    QPainterPath hills(QPointF(0, high));
    for (int x = 0; x <= int(wide); ++x) {
        const qreal wave = std::sin(x / 14.0 + phase) + 0.5 * std::sin(x / 6.3 + 2 * phase);
        const qreal jag = roughness * random.generateDouble();
        hills.lineTo(x, base - rise * (wave + 1.5) / 3 - jag);
    }
    hills.lineTo(wide, high);
    painter.setBrush(color);
    painter.drawPath(hills);
}

void paintWater(QPainter &painter, qreal from, const QColor &top, const QColor &bottom,
                quint32 seed)
{
    QLinearGradient water(0, from, 0, high);
    water.setColorAt(0, top);
    water.setColorAt(1, bottom);
    painter.fillRect(QRectF(0, from, wide, high - from), water);
    QRandomGenerator random(seed);
    painter.setBrush(QColor(255, 255, 255, 40));
    for (int wave = 0; wave < 60; ++wave) {
        const qreal y = from + random.generateDouble() * (high - from);
        painter.drawRect(QRectF(random.generateDouble() * wide, y, 4 + (y - from) / 5, 0.4));
    }
}

void paintTree(QPainter &painter, qreal x, qreal foot, qreal tall, const QColor &color)
{
    painter.setBrush(color);
    for (int tier = 0; tier < 3; ++tier) {
        const qreal top = foot - tall + tier * tall * 0.25;
        const qreal half = tall * (0.12 + 0.07 * tier);
        painter.drawPolygon(
            QPolygonF{{x, top}, {x - half, top + tall * 0.42}, {x + half, top + tall * 0.42}});
    }
}

void paintBalloon(QPainter &painter, const QPointF &middle, qreal radius, const QColor &color)
{
    painter.setBrush(color);
    painter.drawEllipse(middle, radius, radius * 1.15);
    painter.setBrush(color.lighter(130));
    painter.drawEllipse(middle, radius * 0.4, radius * 1.15);
    painter.setBrush(QColor(96, 62, 34));
    painter.drawRect(
        QRectF(middle.x() - radius * 0.2, middle.y() + radius * 1.5, radius * 0.4, radius * 0.35));
}

void paintSunset(QPainter &painter)
{
    paintSky(painter, QColor(66, 44, 110), QColor(255, 158, 84));
    paintGlow(painter, {74, 52}, 8, QColor(255, 214, 120));
    paintHills(painter, 60, 9, 0.3, QColor(58, 36, 74), 8);
    paintWater(painter, 58, QColor(226, 124, 88), QColor(44, 34, 78), 3);
}

void paintMountains(QPainter &painter)
{
    paintSky(painter, QColor(70, 136, 206), QColor(214, 232, 244));
    paintHills(painter, 52, 32, 3, QColor(156, 172, 196), 5);
    paintHills(painter, 66, 24, 2, QColor(98, 118, 146), 21);
    paintHills(painter, 80, 14, 0.6, QColor(66, 104, 72), 34);
    for (int tree = 0; tree < 26; ++tree)
        paintTree(painter, 2 + tree * 4.7, 86 - (tree * 7) % 5, 9 + (tree * 5) % 4,
                  QColor(34, 66, 46));
}

// A dark house down to the water, with light in a third of its windows.
void paintHouse(QPainter &painter, int x, int top, QRandomGenerator &random)
{
    painter.setBrush(QColor(22, 24, 44));
    painter.drawRect(QRectF(x, top, 6.4, high - top));
    painter.setBrush(QColor(255, 214, 122));
    for (int y = top + 2; y < 80; y += 3) {
        for (int window = 0; window < 3; ++window) {
            if (random.bounded(3) == 0)
                painter.drawRect(QRectF(x + 1 + window * 1.6, y, 0.9, 1.4));
        }
    }
}

void paintCityNight(QPainter &painter)
{
    paintSky(painter, QColor(10, 14, 40), QColor(66, 58, 110));
    paintGlow(painter, {24, 18}, 5, QColor(240, 240, 214));
    QRandomGenerator random(11);
    for (int house = 0; house < 18; ++house)
        paintHouse(painter, house * 7, 30 + random.bounded(34), random);
    paintWater(painter, 80, QColor(40, 40, 76), QColor(14, 16, 38), 12);
}

void paintStorm(QPainter &painter)
{
    paintSky(painter, QColor(40, 46, 58), QColor(142, 150, 150));
    QRandomGenerator random(17);
    for (int cloud = 0; cloud < 40; ++cloud) {
        const int shade = 52 + random.bounded(40);
        painter.setBrush(QColor(shade, shade + 4, shade + 14, 170));
        painter.drawEllipse(QPointF(random.bounded(120), random.bounded(30)), 13, 7);
    }
    painter.setPen(QPen(QColor(255, 252, 214), 0.9));
    painter.drawPolyline(QPolygonF{{78, 28}, {73, 42}, {79, 44}, {71, 66}});
    painter.setPen(Qt::NoPen);
    paintHills(painter, 74, 8, 0.4, QColor(74, 88, 62), 9);
    paintHills(painter, 86, 6, 0.4, QColor(104, 112, 64), 2);
}

void paintForest(QPainter &painter)
{
    paintSky(painter, QColor(206, 226, 214), QColor(244, 240, 206));
    for (int row = 0; row < 4; ++row) {
        const QColor color = QColor(120 - row * 28, 160 - row * 30, 130 - row * 26);
        for (int tree = 0; tree < 22; ++tree) {
            const qreal x = tree * 6 + (row * 37 + tree * 17) % 5;
            paintTree(painter, x, 58 + row * 11, 24 + row * 5 + (tree * 3) % 7, color);
        }
    }
}

void paintBalloons(QPainter &painter)
{
    paintSky(painter, QColor(92, 168, 224), QColor(252, 226, 186));
    paintHills(painter, 82, 10, 0.3, QColor(126, 160, 92), 14);
    paintBalloon(painter, {34, 34}, 12, QColor(214, 62, 56));
    paintBalloon(painter, {78, 24}, 9, QColor(242, 168, 38));
    paintBalloon(painter, {98, 46}, 6, QColor(66, 96, 188));
    paintBalloon(painter, {60, 54}, 5, QColor(92, 158, 84));
}

void paintBeach(QPainter &painter)
{
    paintSky(painter, QColor(60, 150, 222), QColor(206, 238, 248));
    paintGlow(painter, {96, 16}, 6, QColor(255, 244, 190));
    paintWater(painter, 44, QColor(46, 150, 178), QColor(120, 208, 206), 6);
    paintHills(painter, 84, 8, 0.1, QColor(238, 214, 158), 19);
    painter.setBrush(Qt::white);
    painter.drawPolygon(QPolygonF{{40, 28}, {40, 46}, {52, 46}});
    painter.setBrush(QColor(196, 62, 48));
    painter.drawPolygon(QPolygonF{{34, 48}, {56, 48}, {52, 52}, {38, 52}});
}

} // namespace

QImage seedPicture(SeedScene scene, const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(size.width() / wide, size.height() / high);
    switch (scene) {
    case SeedScene::Sunset:
        paintSunset(painter);
        break;
    case SeedScene::Mountains:
        paintMountains(painter);
        break;
    case SeedScene::CityNight:
        paintCityNight(painter);
        break;
    case SeedScene::Storm:
        paintStorm(painter);
        break;
    case SeedScene::Forest:
        paintForest(painter);
        break;
    case SeedScene::Balloons:
        paintBalloons(painter);
        break;
    case SeedScene::Beach:
        paintBeach(painter);
        break;
    }
    return image;
}
