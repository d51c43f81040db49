// SPDX-License-Identifier: MIT

#pragma once

#include "accounts.h"
#include "auctions.h"
#include "datafolder.h"
#include "effort.h"
#include "fields.h"
#include "pictures.h"

#include <QByteArray>
#include <QString>

/**
 * The form operations of the service: what each is asked with, and the exact bytes it answers.
 *
 * A refusal is a text that begins "ERROR: "; no other text contains that word, since members'
 * devices look for it anywhere in a reply.
 */
class Operations
{
public:
    struct Reply
    {
        QByteArray body;
        QByteArray type = "text/plain";
        QString file;                      ///< when not empty, this file's content is the body
        std::chrono::milliseconds delay{}; ///< for how long it is not to be sent
    };

    Operations(Accounts &accounts, Auctions &auctions, Pictures &pictures,
               const DataFolder &folder);

    /** What is asked from @p address. */
    Reply answer(const QString &operation, const Fields &form, const QByteArray &address);
    /** What answer() will take. */
    Result<Effort> effort(const QString &operation, const Fields &form);

    static Reply refusal(const Failure &failure);
    /** The number alone, or the refusal. */
    static Reply number(const Result<qint64> &number);
    /** @p text as one item of a line: without commas, line ends and the word of a refusal. */
    static QByteArray item(const QString &text);

private:
    using Member = Reply (Operations::*)(qint64 member, const Fields &form);

    Reply validateLogin(const Fields &form, const QByteArray &address);
    Reply createAccount(const Fields &form);
    Reply modifyAccount(const Fields &form, const QByteArray &address);
    Result<qint64> login(const Fields &form, const QByteArray &address);
    Reply categories(qint64 member, const Fields &form);
    Reply notificationOptions(qint64 member, const Fields &form);
    Reply setNotificationOptions(qint64 member, const Fields &form);
    Reply myAuctions(qint64 member, const Fields &form);
    Reply modifyAuction(qint64 member, const Fields &form);
    Reply thumbnail(qint64 member, const Fields &form);
    Reply rawMedia(qint64 member, const Fields &form);

    /** The auction named by the form, if it is this member's. */
    Result<Auctions::Auction> ownAuction(qint64 member, const Fields &form);

    Accounts &m_accounts;
    Auctions &m_auctions;
    Pictures &m_pictures;
    const DataFolder &m_folder;
};
