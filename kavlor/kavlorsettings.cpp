// SPDX-License-Identifier: MIT

#include "kavlorsettings.h"

#include "httptolvex.h"
#include "kavloruser.h"
#include "leaveframe.h"
#include "modifyaccountcontroller.h"
#include "notificationscontroller.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "sharedicon.h"
#include "startfocus.h"
#include "ui_kavlorsettings.h"

CKavlorSettings::CKavlorSettings(CKavlorUser *user, CKavlorNotificationOptions *options,
                                 QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CKavlorSettings>())
    , m_request(new CHttpTolvex(this))
    , m_options(options)
    , m_user(user)
{
    m_ui->setupUi(this);
    m_ui->pushButtonMyAccount->setIcon(sharedIcon(QStringLiteral(":/MyAccountIcon.png")));
    m_ui->pushButtonNotifications->setIcon(sharedIcon(QStringLiteral(":/NotificationIcon.png")));
    new Retranslation(this, [this] { m_ui->retranslateUi(this); });
    new RoomScale(this, QSize(1040, 480));
    new StartFocus(this, m_ui->pushButtonMyAccount);
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &CKavlorSettings::dataRequestDone);
    connect(m_ui->pushButtonNotifications, &QPushButton::clicked, this,
            qOverload<>(&CKavlorSettings::notificationsClicked));
    connect(m_ui->pushButtonMyAccount, &QPushButton::clicked, this,
            &CKavlorSettings::myAccountClicked);
}

CKavlorSettings::~CKavlorSettings()
{
    closeChild();
}

void CKavlorSettings::open(OpenChild kind, QFrame *child)
{
    m_openChild = kind;
    m_child = child;
    child->show();
    hide();
}

// Not deleted at once: mostly it is a signal of the child that ends it.
void CKavlorSettings::closeChild()
{
    m_openChild = NoChild;
    if (!m_child)
        return;
    leaveFrame(m_child);
    m_child.clear();
}

void CKavlorSettings::showMenu()
{
    closeChild();
    show();
    if (RootViewController *root = RootViewController::of(this)) {
        root->setNavigationTextAndIcon(tr("Settings"), QStringLiteral(":/MySettingsIcon.png"));
    }
}

void CKavlorSettings::myAccountClicked()
{
    if (m_openChild != NoChild)
        return;
    auto *child = new CModifyAccountController(m_user, parentWidget());
    connect(child, &CModifyAccountController::Done, this, &CKavlorSettings::myAccountChangesDone);
    connect(child, &CModifyAccountController::CancelOnError, this, &CKavlorSettings::backClicked);
    open(AccountChild, child);
}

void CKavlorSettings::notificationsClicked()
{
    notificationsClicked(true);
}

void CKavlorSettings::notificationsClicked(bool byButton)
{
    if (m_openChild != NoChild)
        return;
    m_editedOptions = *m_options;
    m_byButton = byButton;
    auto *child = new CNotificationsController(m_user, &m_editedOptions, parentWidget());
    connect(child, &CNotificationsController::Done, this,
            &CKavlorSettings::notificationsChangesDone);
    connect(child, &CNotificationsController::CancelOnError, this, &CKavlorSettings::backClicked);
    open(NotificationChild, child);
}

void CKavlorSettings::backClicked()
{
    if (m_openChild == NoChild)
        myAccountChangesDone();
    else
        showMenu();
}

void CKavlorSettings::notificationsChangesDone()
{
    *m_options = m_editedOptions;
    if (m_byButton) {
        showMenu();
    } else {
        m_openChild = NoChild;
        myAccountChangesDone();
    }
}

void CKavlorSettings::myAccountChangesDone()
{
    const bool toHome = m_openChild == NoChild || (m_openChild == NotificationChild && !m_byButton);
    RootViewController *root = RootViewController::of(this);
    if (!toHome || !root) {
        showMenu();
        return;
    }
    closeChild();
    root->ShowLoginOptions(m_user->field(CKavlorUser::Username),
                           m_user->field(CKavlorUser::Password), true);
    leaveFrame(this);
}

void CKavlorSettings::dataRequestDone(const QString &aData, const QString &aError)
{
    Q_UNUSED(aData)
    Q_UNUSED(aError)
}
