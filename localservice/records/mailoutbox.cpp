// SPDX-License-Identifier: MIT

#include "mailoutbox.h"

#include "localclock.h"

namespace {
constexpr int keptMails = 500;
}

MailOutbox::MailOutbox(Database &database)
    : m_database(database)
{
}

void MailOutbox::send(Database::Session &session, const QString &recipient, const QString &subject,
                      const QString &body)
{
    session.change(
        QStringLiteral("INSERT INTO mails (recipient, subject, body, written) VALUES (?, ?, ?, ?)"),
        {recipient, subject, body, LocalClock::now()});
    session.change(QStringLiteral("DELETE FROM mails WHERE id <= (SELECT max(id) FROM mails) - ?"),
                   {keptMails});
}

Result<QList<MailOutbox::Mail>> MailOutbox::newest(int most)
{
    const Result<Database::Rows> rows =
        Database::Session(m_database)
            .select(QStringLiteral("SELECT id, recipient, subject, body, written FROM mails"
                                   " ORDER BY id DESC LIMIT ?"),
                    {most});
    if (!rows.isOk())
        return rows.failure();
    QList<Mail> mails;
    for (const Database::Row &row : rows.value()) {
        mails.append({row.at(0).toLongLong(), row.at(1).toString(), row.at(2).toString(),
                      row.at(3).toString(), row.at(4).toLongLong()});
    }
    return mails;
}
