// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QTimer>

class QWidget;

/**
 * Tells once when a widget has been painted for the first time, so that what can wait does not keep
 * the member from seeing it.
 *
 * Made as a child of the widget, before it is shown, and gone after it has told.
 */
class FirstPaint : public QObject
{
    Q_OBJECT

public:
    explicit FirstPaint(QWidget *widget);

signals:
    /**
     * From the event loop, and also when the widget is not painted at all, since it may be shown
     * where nobody looks.
     */
    void painted();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void tell();

    QTimer m_patience;
};
