// SPDX-License-Identifier: MIT

#include "framewelcomekavlor.h"

#include "framecreateaccount.h"
#include "kavlorlogin.h"
#include "leaveframe.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "startfocus.h"
#include "ui_framewelcomekavlor.h"

FrameWelcomeKavlor::FrameWelcomeKavlor(QSettings *settings, QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::FrameWelcomeKavlor>())
    , m_settings(settings)
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { m_ui->retranslateUi(this); });
    new RoomScale(this, QSize(960, 480));
    new StartFocus(this, m_ui->createAccountButton);
    connect(m_ui->createAccountButton, &QPushButton::clicked, this,
            &FrameWelcomeKavlor::showCreateAccountFrame);
    connect(m_ui->loginButton, &QPushButton::clicked, this, &FrameWelcomeKavlor::showLoginFrame);
}

FrameWelcomeKavlor::~FrameWelcomeKavlor() = default;

void FrameWelcomeKavlor::showCreateAccountFrame()
{
    emit CreateAccountClicked();
    RootViewController *root = RootViewController::of(this);
    auto *creation =
        new FrameCreateAccount(m_settings, root ? root->user() : nullptr, parentWidget());
    if (root)
        root->setNavigationTextAndIcon(tr("Create account "), QString(), true, creation);
    creation->show();
    leaveFrame(this);
}

void FrameWelcomeKavlor::showLoginFrame()
{
    emit LoginClicked();
    auto *login = new KavlorLogin(m_settings, parentWidget());
    if (RootViewController *root = RootViewController::of(this))
        root->setNavigationTextAndIcon(tr("Please login to "), QString(), true, login);
    login->show();
    leaveFrame(this);
}
