// SPDX-License-Identifier: MIT

#include "kavlorknownuser.h"

#include "leaveframe.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "sharedicon.h"
#include "startfocus.h"
#include "ui_kavlorknownuser.h"

KavlorKnownUser::KavlorKnownUser(const QString &userName, const QString &password, QWidget *parent)
    : QFrame(parent)
    , m_userName(userName)
    , m_password(password)
    , m_ui(std::make_unique<Ui::KavlorKnownUser>())
{
    m_ui->setupUi(this);
    m_ui->buttonUpload->setIcon(sharedIcon(QStringLiteral(":/UploadIcon.png")));
    m_ui->buttonMyKavlor->setIcon(sharedIcon(QStringLiteral(":/myKavlor.png")));
    m_ui->buttonSettings->setIcon(sharedIcon(QStringLiteral(":/MySettingsIcon.png")));
    new Retranslation(this, [this] { m_ui->retranslateUi(this); });
    auto *scale = new RoomScale(this, QSize(1120, 380));
    scale->setPicture(m_ui->labelUserIcon, QStringLiteral(":/UserIcon.png"), 128);
    new StartFocus(this, m_ui->buttonUpload);
    m_ui->labelWelcome->setText(m_userName);
    connect(m_ui->buttonMyKavlor, &QPushButton::clicked, this, &KavlorKnownUser::myKavlorClick);
    connect(m_ui->buttonSettings, &QPushButton::clicked, this, &KavlorKnownUser::settingsClick);
    connect(m_ui->buttonUpload, &QPushButton::clicked, this, &KavlorKnownUser::uploadClick);
}

KavlorKnownUser::~KavlorKnownUser() = default;

void KavlorKnownUser::uploadClick()
{
    if (RootViewController *root = RootViewController::of(this))
        root->ShowUploadOptions();
    leaveFrame(this);
}

void KavlorKnownUser::myKavlorClick()
{
    if (RootViewController *root = RootViewController::of(this))
        root->ShowMyKavlorOptions();
    leaveFrame(this);
}

void KavlorKnownUser::settingsClick()
{
    if (RootViewController *root = RootViewController::of(this))
        root->ShowSettingsOptions(m_userName, m_password, 0);
    leaveFrame(this);
}

void KavlorKnownUser::logoutClick()
{
    if (RootViewController *root = RootViewController::of(this))
        root->ShowLoginOptions(QString(), QString(), false);
    leaveFrame(this);
}
