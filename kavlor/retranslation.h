// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

#include <functional>

class QWidget;

/**
 * Has a frame say its texts in the new language when that changes while the frame is there.
 *
 * Made as a child of the frame. What it calls sets the texts of the form, and after them those that
 * the frame has set itself; what the member has typed stays.
 */
class Retranslation : public QObject
{
    Q_OBJECT

public:
    using Say = std::function<void()>;

    Retranslation(QWidget *frame, Say say);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const Say m_say;
};
