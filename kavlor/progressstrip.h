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

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
};
