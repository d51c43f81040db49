// SPDX-License-Identifier: MIT

#include "mediadrop.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace {

// The path of the one local file in @p data; empty when it holds something else.
QString fileIn(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    return urls.size() == 1 ? urls.constFirst().toLocalFile() : QString();
}

} // namespace

MediaDrop::MediaDrop(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    m_window->setAcceptDrops(true);
    qApp->installEventFilter(this);
}

bool MediaDrop::isOverWindow(const QObject *watched) const
{
    if (!watched->isWidgetType() || QApplication::activeModalWidget())
        return false;
    const auto *widget = static_cast<const QWidget *>(watched);
    return widget == m_window || m_window->isAncestorOf(widget);
}

bool MediaDrop::eventFilter(QObject *watched, QEvent *event)
{
    const bool isDrop = event->type() == QEvent::Drop;
    if (!isDrop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove)
        return false;
    if (!isOverWindow(watched))
        return false;
    auto *drop = static_cast<QDropEvent *>(event); // the others are derived from it
    const QString path = fileIn(drop->mimeData());
    if (path.isEmpty())
        return false;
    // A copy, whatever was proposed: the file stays where it is.
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (isDrop)
        emit dropped(path);
    return true;
}
