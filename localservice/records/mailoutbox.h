// SPDX-License-Identifier: MIT

#pragma once

#include "database.h"

#include <QList>
#include <QString>

/**
 * The mails that a service on the open net would send. Here they are only written down, for the
 * outbox page to show; the newest few hundred are kept.
 */
class MailOutbox
{
public:
    struct Mail
    {
        qint64 id = 0;
        QString recipient;
        QString subject;
        QString body;
        qint64 written = 0; ///< when, in seconds since 1970
    };

    explicit MailOutbox(Database &database);

    /** Writes a mail as part of @p session: it is sent only if the session is committed. */
    static void send(Database::Session &session, const QString &recipient, const QString &subject,
                     const QString &body);
    /** The newest mails, the newest first. */
    Result<QList<Mail>> newest(int most);

private:
    Database &m_database;
};
