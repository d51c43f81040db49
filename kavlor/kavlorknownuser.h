// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

namespace Ui {
class KavlorKnownUser;
}

/**
 * The home screen of a signed-in member: upload, my auctions, settings, sign out.
 *
 * A content frame of the root window; deletes itself when the next one is shown.
 */
class KavlorKnownUser : public QFrame
{
    Q_OBJECT

public:
    KavlorKnownUser(const QString &userName, const QString &password, QWidget *parent);
    ~KavlorKnownUser() override;

public slots:
    void uploadClick();
    void myKavlorClick();
    void settingsClick();
    /** Back to the welcome frame, nobody being signed in; the bar's "Sign out". */
    void logoutClick();

private:
    const QString m_userName;
    const QString m_password;
    std::unique_ptr<Ui::KavlorKnownUser> m_ui;
};
