// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>

/**
 * An area of the root window that shows one frame at a time.
 *
 * Whatever frame is made its child is kept at the area's own size, hidden ones too, so that a
 * frame needs no layout above it and is right when it is shown again.
 */
class FrameArea : public QFrame
{
    Q_OBJECT

public:
    explicit FrameArea(QWidget *parent = nullptr);

protected:
    void childEvent(QChildEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void fill(QObject *child);
};
