// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

class CHttpTolvex;
class CKavlorUser;
class QSettings;

namespace Ui {
class FrameCreateAccount;
}

/**
 * A new member enters a name, a password and an e-mail address, accepts the terms of service and
 * has the account created; that leads to the home frame.
 *
 * A content frame of the root window; deletes itself when it is left. The live record belongs to
 * the root and follows the form with every keystroke. The settings are not owned.
 */
class FrameCreateAccount : public QFrame
{
    Q_OBJECT

public:
    /** Without a @p user, where there is no root, it keeps a record of its own. */
    FrameCreateAccount(QSettings *settings, CKavlorUser *user, QWidget *parent);
    ~FrameCreateAccount() override;

public slots:
    /** Takes the form over into the live record and says in a tool tip what is still missing. */
    void UserChanged();
    void TermsClicked();
    /** Sends the record to the service if nothing is wrong with it, else says what is. */
    void Submit();
    /** The service has answered with the terms, or with the new member's number. */
    void ResponseReceived(const QString &aResponse, const QString &aError);
    /** Back to the welcome frame; the bar's cancel button calls it by name. */
    void lower();

private:
    enum RequestKind {
        NothingRequested = 0,
        Ignored = 1,
        TermsRequested = 2,
        AccountRequested = 3
    };

    void retranslate();
    void setUpTerms();
    void fetchTerms();
    void showTerms();
    void takeFormOver();
    QString validate(int level);
    QString faultBeforeSending();
    void showFault(const QString &message);
    void setProgressRunning(bool running);
    void setFormEnabled(bool enabled);
    void accountAnswered(const QString &response, const QString &error);
    void accountCreated(const QString &response);
    void accountRefused(const QString &response, const QString &error);

    std::unique_ptr<Ui::FrameCreateAccount> m_ui;
    RequestKind m_requestKind = NothingRequested;
    CHttpTolvex *m_request;
    CKavlorUser *m_user;
    bool m_termsAccepted = false;
    bool m_formValid = false;
    QString m_termsText;
    QSettings *m_settings;
};
