// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

namespace Ui {
class CUploadMediaConfirmation;
}

/** The wizard's last page: the upload succeeded. It is deleted with the wizard. */
class CUploadMediaConfirmation : public QFrame
{
    Q_OBJECT

public:
    explicit CUploadMediaConfirmation(QWidget *parent);
    ~CUploadMediaConfirmation() override;

signals:
    void nextClicked();

private:
    std::unique_ptr<Ui::CUploadMediaConfirmation> m_ui;
};
