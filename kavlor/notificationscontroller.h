// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

class CHttpTolvex;
class CKavlorNotificationOptions;
class CKavlorUser;

namespace Ui {
class CNotificationsController;
}

/**
 * The member chooses which e-mail alerts the service sends.
 *
 * The settings menu makes it, deletes it and owns the options that it edits; the user record is
 * the live one. It sends once at most, and tells the end by one of its signals.
 */
class CNotificationsController : public QFrame
{
    Q_OBJECT

public:
    CNotificationsController(CKavlorUser *user, CKavlorNotificationOptions *options,
                             QWidget *parent);
    ~CNotificationsController() override;

signals:
    /** The service has accepted the choices. */
    void Done();
    /** It has refused them, or could not be reached. Nothing has been shown to the member. */
    void CancelOnError();

public slots:
    void notificationChanged();
    void doneClicked();
    void requestDone(const QString &aResponse, const QString &aError);

protected:
    void changeEvent(QEvent *event) override;

private:
    void sayTitle();

    std::unique_ptr<Ui::CNotificationsController> m_ui;
    CKavlorNotificationOptions *m_options;
    CHttpTolvex *m_request;
    CKavlorUser *m_user;
};
