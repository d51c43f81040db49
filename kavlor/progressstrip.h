// SPDX-License-Identifier: MIT

#pragma once

#include <QTableView>

class CProgressiveModel;

/**
 * Shows a CProgressiveModel as a bare row of pictures, just large enough for them.
 */
class ProgressStrip : public QTableView
{
    Q_OBJECT

public:
    explicit ProgressStrip(QWidget *parent = nullptr);

    /** Shows @p model, which is not owned, and repaints whenever its light moves. */
    void setProgress(CProgressiveModel *model);

    /** Shows the pictures larger by this factor; 1 is their own size. */
    void setScale(qreal scale);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void fitCells();

    qreal m_scale = 1;
};
