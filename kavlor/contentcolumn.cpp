#include "contentcolumn.h"

#include <QEvent>
#include <QLayout>
#include <QWidget>

ContentColumn::ContentColumn(QWidget *frame, const QSize &largest)
    : QObject(frame)
    , m_frame(frame)
    , m_largest(largest)
    , m_margins(frame->layout()->contentsMargins())
{
    frame->installEventFilter(this);
}

bool ContentColumn::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_frame && event->type() == QEvent::Resize) {
        const QSize spare = (m_frame->size() - m_largest).expandedTo(QSize(0, 0)) / 2;
        const QMargins around(spare.width(), spare.height(), spare.width(), spare.height());
        m_frame->layout()->setContentsMargins(m_margins + around);
    }
    return QObject::eventFilter(watched, event);
}
