// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

#include "kavloruser.h"

class CHttpTolvex;
class QCheckBox;
class QLineEdit;

namespace Ui {
class CModifyAccountController;
}

/**
 * The member changes the e-mail address, the password or the PayPal address, each behind a lock.
 *
 * The settings menu makes it and deletes it. The live record belongs to the root; it is changed
 * and saved only when the service has accepted the change. Sends once at most.
 */
class CModifyAccountController : public QFrame
{
    Q_OBJECT

public:
    CModifyAccountController(CKavlorUser *user, QWidget *parent);
    ~CModifyAccountController() override;

signals:
    /** The service has accepted the change, and the live record holds it. */
    void Done();
    /** It has refused it, or could not be reached. Nothing has been shown to the member. */
    void CancelOnError();

public slots:
    void checkboxPasswordClicked();
    void checkboxEmailClicked();
    void checkboxPaypalClicked();
    void doneClicked();
    void requestDone(const QString &aResponse, const QString &aError);
    /** The cursor of the e-mail line has moved to @p aNew: addresses begin in lower case. */
    void emailPosChanged(int aOld = 0, int aNew = 0);

private:
    void sayTitle();
    QString fault() const;
    void retranslate();
    void takeFormOver();
    void lockClicked(const QCheckBox *box, QLineEdit *line, CKavlorUser::Field field);

    std::unique_ptr<Ui::CModifyAccountController> m_ui;
    CHttpTolvex *m_request;
    CKavlorUser *m_user;
    CKavlorUser *m_edited;
    bool m_requestPending = false;
};
