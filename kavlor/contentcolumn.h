#pragma once

#include <QMargins>
#include <QObject>
#include <QSize>

/**
 * Keeps what a frame shows in a column of limited size in the middle of it, so that a large window
 * does not tear it apart.
 *
 * Made as a child of the frame once its layout is there; widens the layout's margins as the frame
 * grows.
 */
class ContentColumn : public QObject
{
    Q_OBJECT

public:
    /** @p largest is what the content takes at most, margins included, in pixels. */
    ContentColumn(QWidget *frame, const QSize &largest);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_frame;
    const QSize m_largest;
    const QMargins m_margins; // in a small window
};
