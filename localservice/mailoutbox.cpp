#include "mailoutbox.h"

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
    session.run(
        QStringLiteral("INSERT INTO mails (recipient, subject, body, written) VALUES (?, ?, ?, ?)"),
        {recipient, subject, body, QDateTime::currentSecsSinceEpoch()});
    session.run(QStringLiteral("DELETE FROM mails WHERE id <= (SELECT max(id) FROM mails) - ?"),
                {keptMails});
}

QList<MailOutbox::Mail> MailOutbox::newest(int most)
{
    Database::Session session(m_database);
    QSqlQuery query = session.run(
        QStringLiteral(
            "SELECT id, recipient, subject, body, written FROM mails ORDER BY id DESC LIMIT ?"),
        {most});
    QList<Mail> mails;
    while (query.next()) {
        mails.append({query.value(0).toLongLong(), query.value(1).toString(),
                      query.value(2).toString(), query.value(3).toString(),
                      QDateTime::fromSecsSinceEpoch(query.value(4).toLongLong())});
    }
    return mails;
}
