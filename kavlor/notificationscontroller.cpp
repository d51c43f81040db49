// SPDX-License-Identifier: MIT

#include "notificationscontroller.h"

#include "httptolvex.h"
#include "kavlornotificationoptions.h"
#include "kavloruser.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "startfocus.h"
#include "ui_notificationscontroller.h"

#include <QEvent>

CNotificationsController::CNotificationsController(CKavlorUser *user,
                                                   CKavlorNotificationOptions *options,
                                                   QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CNotificationsController>())
    , m_options(options)
    , m_request(new CHttpTolvex(this))
    , m_user(user)
{
    m_ui->setupUi(this);
    new RoomScale(this, QSize(960, 480));
    new StartFocus(this, m_ui->checkBoxOnBid);
    for (QCheckBox *box : {m_ui->checkBoxOnBid, m_ui->checkBoxOnAuctionEnd, m_ui->checkBoxOnView,
                           m_ui->checkBoxBuyerQuestion}) {
        connect(box, &QCheckBox::clicked, this, &CNotificationsController::notificationChanged);
    }

    const CKavlorNotificationOptions::Flags flags = m_options->flags();
    m_ui->checkBoxOnBid->setChecked(flags.onBid);
    m_ui->checkBoxOnAuctionEnd->setChecked(flags.onAuctionEnd);
    m_ui->checkBoxOnView->setChecked(flags.onView);
    m_ui->checkBoxBuyerQuestion->setChecked(flags.onBuyerQuestion);
    m_ui->lineNotification->setText(m_user->field(CKavlorUser::EmailAddress));
    m_ui->lineNotification->setCursorPosition(0); // a long one is shown from its beginning

    connect(m_ui->pushButtonDone, &QPushButton::clicked, this,
            &CNotificationsController::doneClicked);
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &CNotificationsController::requestDone);

    sayTitle();
}

void CNotificationsController::sayTitle()
{
    if (RootViewController *root = RootViewController::of(this)) {
        root->setNavigationTextAndIcon(tr("Notification Options"),
                                       QStringLiteral(":/NotificationIcon.png"));
    }
}

CNotificationsController::~CNotificationsController() = default;

void CNotificationsController::notificationChanged()
{
    CKavlorNotificationOptions::Flags flags;
    flags.onBid = m_ui->checkBoxOnBid->isChecked();
    flags.onAuctionEnd = m_ui->checkBoxOnAuctionEnd->isChecked();
    flags.onView = m_ui->checkBoxOnView->isChecked();
    flags.onBuyerQuestion = m_ui->checkBoxBuyerQuestion->isChecked();
    m_options->setFlags(flags);
}

void CNotificationsController::doneClicked()
{
    // Before the request: it may wait for a connection, and this frame may be left meanwhile.
    m_ui->pushButtonDone->setEnabled(false);
    m_request->setNotificationOptions(m_user->field(CKavlorUser::Username),
                                      m_user->field(CKavlorUser::Password), *m_options);
}

void CNotificationsController::requestDone(const QString &aResponse, const QString &aError)
{
    // One result is the end of it; the request object may report a time-out after that.
    m_request->disconnect(this);
    if (aError.isEmpty() && aResponse.toInt() != 0)
        emit Done();
    else
        emit CancelOnError();
}

void CNotificationsController::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        if (!isHidden())
            sayTitle();
    }
    QFrame::changeEvent(event);
}
