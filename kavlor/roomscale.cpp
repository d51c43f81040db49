// SPDX-License-Identifier: MIT

#include "roomscale.h"

#include "drawings.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

constexpr QSize smallestRoom(800, 424);
constexpr QSize largestRoom(1920, 1080);
constexpr qreal largestScale = 1.6;
constexpr int stepsPerWhole = 20;

// A hair's breadth stays one.
int times(int length, qreal scale)
{
    return length == 1 ? 1 : qRound(length * scale);
}

QMargins times(const QMargins &margins, qreal scale)
{
    return {times(margins.left(), scale), times(margins.top(), scale),
            times(margins.right(), scale), times(margins.bottom(), scale)};
}

// A limit that the form does not set stays unset.
QSize times(const QSize &size, qreal scale)
{
    const auto limit = [scale](int length) {
        return length >= QWIDGETSIZE_MAX ? QWIDGETSIZE_MAX : times(length, scale);
    };
    return {limit(size.width()), limit(size.height())};
}

// The style sheet with the larger drawings of its pictures.
QString withLargeDrawings(const QString &sheet)
{
    static const QRegularExpression picture(QStringLiteral("url\\(\"?(:[^\")]+)\"?\\)"));
    QString changed = sheet;
    for (auto each = picture.globalMatch(sheet); each.hasNext();) {
        const QString path = each.next().captured(1);
        changed.replace(path, largeDrawing(path));
    }
    return changed;
}

} // namespace

RoomScale::RoomScale(QWidget *frame, const QSize &largest)
    : QObject(frame)
    , m_frame(frame)
    , m_window(frame->window())
    , m_largest(largest)
{
    measure(frame);
    const QList<QWidget *> widgets = frame->findChildren<QWidget *>();
    for (QWidget *widget : widgets)
        measure(widget);
    const QList<QLayout *> layouts = frame->findChildren<QLayout *>();
    for (QLayout *layout : layouts)
        measure(layout);
    if (frame->layout())
        m_margins = frame->layout()->contentsMargins();

    m_window->installEventFilter(this);
    if (m_window != m_frame)
        m_frame->installEventFilter(this);
    follow();
}

qreal RoomScale::forWindow(const QSize &window)
{
    const QSize span = largestRoom - smallestRoom;
    const QSize more = window - smallestRoom;
    const qreal share = std::clamp<qreal>(
        std::min(qreal(more.width()) / span.width(), qreal(more.height()) / span.height()), 0, 1);
    return 1 + std::floor(share * (largestScale - 1) * stepsPerWhole + 1e-9) / stepsPerWhole;
}

qreal RoomScale::of(const QWidget *widget)
{
    return forWindow(widget->window()->size());
}

QString RoomScale::styleSheet(const QString &sheet, qreal scale)
{
    if (scale == 1)
        return sheet;
    static const QRegularExpression length(QStringLiteral("(\\d+(?:\\.\\d+)?)(px|pt)\\b"));
    QString scaled;
    qsizetype done = 0;
    for (auto each = length.globalMatch(sheet); each.hasNext();) {
        const QRegularExpressionMatch found = each.next();
        const qreal value = found.captured(1).toDouble();
        const bool isPixels = found.captured(2) == QLatin1String("px");
        scaled += QStringView(sheet).mid(done, found.capturedStart() - done);
        scaled += (isPixels ? QString::number(times(qRound(value), scale))
                            : QString::number(value * scale, 'f', 2))
            + found.captured(2);
        done = found.capturedEnd();
    }
    return withLargeDrawings(scaled + sheet.mid(done));
}

void RoomScale::apply(const Measure &measure)
{
    add(m_frame, measure);
    measure(m_scale);
}

void RoomScale::setPicture(QLabel *label, const QString &path, int height)
{
    const Measure show = [label, path, height](qreal scale) {
        const qreal ratio = label->devicePixelRatioF();
        QPixmap picture = drawingOfHeight(path, qRound(height * scale * ratio));
        picture.setDevicePixelRatio(ratio);
        label->setPixmap(picture);
    };
    m_pictures.insert(label, {label, show});
    show(m_scale);
}

void RoomScale::add(QObject *measured, const Measure &measure)
{
    m_steps.append({measured, measure});
}

void RoomScale::run(const Step &step) const
{
    if (step.measured)
        step.measure(m_scale);
}

void RoomScale::measure(QWidget *widget)
{
    const QString sheet = widget->styleSheet();
    if (!sheet.isEmpty()) {
        add(widget,
            [widget, sheet](qreal scale) { widget->setStyleSheet(styleSheet(sheet, scale)); });
    }
    const QSize least = widget->minimumSize();
    if (!least.isNull()) {
        add(widget, [widget, least](qreal scale) { widget->setMinimumSize(times(least, scale)); });
    }
    const QSize most = widget->maximumSize();
    if (most != QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)) {
        add(widget, [widget, most](qreal scale) { widget->setMaximumSize(times(most, scale)); });
    }
    auto *button = qobject_cast<QAbstractButton *>(widget);
    if (button && !button->icon().isNull()) {
        const QSize icon = button->iconSize();
        add(button, [button, icon](qreal scale) { button->setIconSize(times(icon, scale)); });
    }
}

void RoomScale::measure(QLayout *layout)
{
    if (layout->parent() != m_frame || layout != m_frame->layout()) {
        const QMargins margins = layout->contentsMargins();
        add(layout,
            [layout, margins](qreal scale) { layout->setContentsMargins(times(margins, scale)); });
    }
    if (auto *grid = qobject_cast<QGridLayout *>(layout)) {
        const QSize spacing(grid->horizontalSpacing(), grid->verticalSpacing());
        add(grid, [grid, spacing](qreal scale) {
            grid->setHorizontalSpacing(times(spacing.width(), scale));
            grid->setVerticalSpacing(times(spacing.height(), scale));
        });
    } else if (auto *box = qobject_cast<QBoxLayout *>(layout)) {
        const int spacing = box->spacing();
        add(box, [box, spacing](qreal scale) { box->setSpacing(times(spacing, scale)); });
    }
}

bool RoomScale::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        if (watched == m_window)
            follow();
        if (watched == m_frame)
            placeColumn();
    }
    return QObject::eventFilter(watched, event);
}

void RoomScale::follow()
{
    const qreal scale = forWindow(m_window->size());
    if (scale == m_scale)
        return;
    m_scale = scale;
    for (const Step &step : std::as_const(m_steps))
        run(step);
    for (const Step &step : std::as_const(m_pictures))
        run(step);
    placeColumn();
    // Its layout has already been told of the window's size, before this.
    if (m_frame->layout())
        m_frame->layout()->activate();
}

// The content's column stays in the middle of a frame that has more room.
void RoomScale::placeColumn()
{
    if (!m_frame->layout())
        return;
    const QSize spare = (m_frame->size() - times(m_largest, m_scale)).expandedTo(QSize(0, 0)) / 2;
    const QMargins around(spare.width(), spare.height(), spare.width(), spare.height());
    m_frame->layout()->setContentsMargins(times(m_margins, m_scale) + around);
}
