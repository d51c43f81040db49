// SPDX-License-Identifier: MIT

#include "uploadmediaconfirmation.h"

#include "retranslation.h"
#include "roomscale.h"
#include "startfocus.h"
#include "ui_uploadmediaconfirmation.h"

CUploadMediaConfirmation::CUploadMediaConfirmation(QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CUploadMediaConfirmation>())
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] {
        m_ui->retranslateUi(this);
        m_ui->buttonOk->setAccessibleDescription(m_ui->alertLabel->text());
    });
    new RoomScale(this);
    new StartFocus(this, m_ui->buttonOk);
    m_ui->buttonOk->setAccessibleDescription(m_ui->alertLabel->text());
    connect(m_ui->buttonOk, &QPushButton::clicked, this, &CUploadMediaConfirmation::nextClicked);
}

CUploadMediaConfirmation::~CUploadMediaConfirmation() = default;
