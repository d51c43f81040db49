// SPDX-License-Identifier: MIT

#pragma once

#include "database.h"
#include "fields.h"
#include "loginbrake.h"
#include "loginmemory.h"
#include "result.h"

#include <mutex>

/**
 * The members: their accounts, logins and alert options.
 *
 * A member is known by a number from 1 on. Passwords are kept only as hashes. With a failure
 * nothing was changed.
 */
class Accounts
{
public:
    struct AlertOptions
    {
        bool onBid = true;
        bool onAuctionEnd = true;
        bool onView = false;
        bool onBuyerQuestion = true;
        QString email; ///< where the alerts go
    };

    explicit Accounts(Database &database);

    /**
     * The member whose user name and password these are, or a failure of the kind Stranger, which
     * is held back when there have been many from @p address. What was found right is remembered
     * for some minutes and then answered at once.
     */
    Result<qint64> login(const QString &username, const QString &password,
                         const QByteArray &address);
    /** Whether login() would say yes at once. */
    Result<bool> isRemembered(const QString &username, const QString &password);

    /** A new member from the fields of an account form; the member's number. */
    Result<qint64> create(const Fields &form);
    /** New e-mail, payment address and password for the member who logs in with the form. */
    Result<qint64> modify(const Fields &form, const QByteArray &address);

    Result<AlertOptions> alertOptions(qint64 member);
    Result<void> setAlertOptions(qint64 member, const AlertOptions &options);

    /**
     * Mails a link for a new password to the members with this user name or e-mail address; the
     * link is @p address followed by its secret. What comes back does not tell whether there are
     * any.
     */
    Result<void> mailPasswordLink(const QString &nameOrEmail, const QString &address);
    /** Whether a link's secret would be taken now. */
    Result<bool> isPasswordLink(const QByteArray &secret);
    /** Sets a password by a link's secret, which is then used up. */
    Result<void> setPassword(const QByteArray &secret, const QString &password1,
                             const QString &password2);

private:
    struct Stored
    {
        qint64 member = 0; ///< 0 = there is none of this name
        QByteArray hash;
    };
    Result<Stored> stored(const QString &username);

    Database &m_database;
    LoginMemory m_remembered;
    LoginBrake m_brake;
    std::mutex m_checking; // one password at a time
};
