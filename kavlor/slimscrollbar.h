// SPDX-License-Identifier: MIT

#pragma once

#include <QScrollBar>

class QAbstractScrollArea;

/**
 * A narrow vertical scroll bar that lies over the right edge of a scroll area, which it is made a
 * child of, and takes no width from its contents. It shows itself while there is more than fits.
 * The area's own bar is switched off and goes on keeping the position.
 */
class SlimScrollBar : public QScrollBar
{
    Q_OBJECT

public:
    explicit SlimScrollBar(QAbstractScrollArea *area);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void followRange();
    void place();

    QAbstractScrollArea *m_area;
};
