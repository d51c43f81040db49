// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

class CHttpTolvex;
class QSettings;

namespace Ui {
class KavlorLogin;
}

/**
 * User name and password, checked by the service; a right pair leads to the home frame.
 *
 * A content frame of the root window; deletes itself when it is left. The settings are not owned.
 */
class KavlorLogin : public QFrame
{
    Q_OBJECT

public:
    KavlorLogin(QSettings *settings, QWidget *parent);
    ~KavlorLogin() override;

public slots:
    /** The service has answered: "1" means that the pair is right. */
    void ValidationDone(const QString &aUnoOnSuccess, const QString &aError);
    void loginClick();
    void UserChanged();
    /** Back to the welcome frame; the bar's cancel button calls it by name. */
    void lower();

private:
    void sayForgotten();
    void retranslate();
    void setFormEnabled(bool enabled);

    CHttpTolvex *m_request;
    std::unique_ptr<Ui::KavlorLogin> m_ui;
    QSettings *m_settings;
};
