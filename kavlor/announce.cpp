// SPDX-License-Identifier: MIT

#include "announce.h"

#include <QAccessible>
#include <QWidget>

void announce(QWidget *widget)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    const QAccessibleInterface *access = QAccessible::queryAccessibleInterface(widget);
    QAccessibleAnnouncementEvent said(widget, access->text(QAccessible::Name));
    QAccessible::updateAccessibility(&said);
#endif
    // Some screen readers follow the one, some the other.
    for (const QAccessible::Event kind : {QAccessible::NameChanged, QAccessible::Alert}) {
        QAccessibleEvent event(widget, kind);
        QAccessible::updateAccessibility(&event);
    }
}
