// SPDX-License-Identifier: MIT

#include "focusring.h"

#include "contrast.h"
#include "keyboard.h"

#include <QApplication>
#include <QImage>
#include <QStringList>
#include <QTabBar>
#include <QTableView>

namespace {

constexpr int mostStops = 20;
constexpr int mostSteps = 5; // of the tab key within a stop

// What the ring goes around, in a picture of its window.
QRect placeOfFocus(const QWidget *control)
{
    QRect place = control->rect();
    const QWidget *area = control;
    if (const auto *table = qobject_cast<const QTableView *>(control)) {
        area = table->viewport();
        place = table->visualRect(table->currentIndex()) & area->rect();
    } else if (const auto *tabs = qobject_cast<const QTabBar *>(control)) {
        place = tabs->tabRect(tabs->currentIndex());
    }
    const qreal ratio = control->devicePixelRatioF();
    return {area->mapTo(control->window(), place.topLeft()) * ratio, place.size() * ratio};
}

// How many pixels in that place are of another colour with the focus than without it.
int standsOut(const QImage &with, const QImage &without, const QRect &place)
{
    int pixels = 0;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x)
            pixels += contrast(with.pixelColor(x, y), without.pixelColor(x, y)) >= 3 ? 1 : 0;
    }
    return pixels;
}

// Leaves @p stop by the tab key, and says what was wrong with its ring.
QString leave(QWidget *stop)
{
    const QRect place = placeOfFocus(stop);
    const QImage with = stop->window()->grab().toImage();
    // A link in a label is a step of its own.
    for (int step = 0; step < mostSteps && QApplication::focusWidget() == stop; ++step)
        Keyboard::press(Qt::Key_Tab);
    const int seen = standsOut(with, stop->window()->grab().toImage(), place);
    const int needed = 2 * (place.width() + place.height()) * 9 / 10;
    if (seen >= needed)
        return {};
    return QStringLiteral("%1: %2 of %3 pixels").arg(stop->objectName()).arg(seen).arg(needed);
}

} // namespace

QString unseenFocus()
{
    QStringList faults;
    const QWidget *first = QApplication::focusWidget();
    QWidget *stop = QApplication::focusWidget();
    for (int stops = 0; stop && stops < mostStops; ++stops) {
        faults.append(leave(stop));
        stop = QApplication::focusWidget();
        if (stop == first) {
            faults.removeAll(QString());
            return faults.join(QStringLiteral("; "));
        }
    }
    return QStringLiteral("the tab key does not lead back");
}
