// SPDX-License-Identifier: MIT

#include "framearea.h"

#include <QChildEvent>

FrameArea::FrameArea(QWidget *parent)
    : QFrame(parent)
{
}

void FrameArea::childEvent(QChildEvent *event)
{
    // When it is added, since a child without a size would be given one when it is shown; and again
    // when it is polished, since by then its form has been built and may have set another size.
    if (event->type() == QEvent::ChildAdded || event->type() == QEvent::ChildPolished)
        fill(event->child());
    QFrame::childEvent(event);
}

void FrameArea::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    for (QObject *child : children())
        fill(child);
}

void FrameArea::fill(QObject *child)
{
    // A child that has just been added is a widget already, but not yet a frame. Dialogs, which
    // are windows, keep their own place.
    if (!child->isWidgetType())
        return;
    auto *widget = static_cast<QWidget *>(child);
    if (!widget->isWindow())
        widget->setGeometry(contentsRect());
}
