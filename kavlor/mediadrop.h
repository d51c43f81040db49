// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

class QWidget;

/**
 * Takes the file that a member drags onto a window, wherever in it, also onto a field that would
 * take it for text. What is not one file of this device is left to what lies below.
 *
 * A child of the window. While a dialog is open over the window nothing is taken.
 */
class MediaDrop : public QObject
{
    Q_OBJECT

public:
    explicit MediaDrop(QWidget *window);

signals:
    void dropped(QString path);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isOverWindow(const QObject *watched) const;

    QWidget *m_window;
};
