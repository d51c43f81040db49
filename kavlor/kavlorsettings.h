// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <QPointer>
#include <memory>

#include "kavlornotificationoptions.h"

class CHttpTolvex;
class CKavlorUser;

namespace Ui {
class CKavlorSettings;
}

/**
 * The settings menu: to the account, and to the e-mail alerts.
 *
 * A content frame of the root window; deletes itself when it is left. It makes one child frame at
 * a time beside itself, hides while that is shown, and deletes it when it is done. Both records
 * are the root's live ones; the alerts change only once the service has accepted them.
 */
class CKavlorSettings : public QFrame
{
    Q_OBJECT

public:
    CKavlorSettings(CKavlorUser *user, CKavlorNotificationOptions *options, QWidget *parent);
    ~CKavlorSettings() override;

public slots:
    /** Opens the alerts; with @p byButton false they lead to the home frame, not to the menu. */
    void notificationsClicked(bool byButton);
    void notificationsClicked();
    void myAccountClicked();
    void myAccountChangesDone();
    void dataRequestDone(const QString &aData, const QString &aError);
    void notificationsChangesDone();
    /** From a child frame to the menu, from the menu to the home frame. */
    void backClicked();

private:
    enum OpenChild { NoChild = 0, AccountChild = 1, NotificationChild = 2 };

    void open(OpenChild kind, QFrame *child);
    void closeChild();
    void showMenu();

    std::unique_ptr<Ui::CKavlorSettings> m_ui;
    CHttpTolvex *m_request;
    CKavlorNotificationOptions *m_options;
    CKavlorUser *m_user;
    OpenChild m_openChild = NoChild;
    QPointer<QFrame> m_child;
    CKavlorNotificationOptions m_editedOptions;
    bool m_byButton = true;
};
