// SPDX-License-Identifier: MIT

#include "leaveframe.h"

#include "httptolvex.h"

#include <QList>
#include <QWidget>

void leaveFrame(QWidget *frame)
{
    // Deaf and out of sight at once: neither a second click nor a late reply must find it. Out of
    // sight first, since then the focus goes on to what is left; in a deaf one it would be lost.
    frame->hide();
    frame->setEnabled(false);
    const QList<CHttpTolvex *> requests =
        frame->findChildren<CHttpTolvex *>(QString(), Qt::FindDirectChildrenOnly);
    for (CHttpTolvex *request : requests)
        request->disconnect(frame);
    frame->deleteLater();
}
