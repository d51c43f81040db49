#include "framearea.h"

#include <QChildEvent>

FrameArea::FrameArea(QWidget *parent)
    : QFrame(parent)
{
}

void FrameArea::childEvent(QChildEvent *event)
{
    // Polished comes just before a child is first shown, when its form is built.
    if (event->type() == QEvent::ChildPolished)
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
    auto *frame = qobject_cast<QFrame *>(child);
    if (frame && !frame->isWindow())
        frame->setGeometry(contentsRect());
}
