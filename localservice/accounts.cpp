#include "accounts.h"

#include "mailoutbox.h"
#include "passwords.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {

constexpr int maxPassword = 100;
constexpr qint64 linkSeconds = 60L * 60;

struct FieldRule
{
    const char *name;
    int limit;
    bool isMandatory;
    bool isAddress;
};

const FieldRule accountFields[] = {
    {"Username", 100, true, false},        {"Password1", maxPassword, true, false},
    {"FirstName", 50, false, false},       {"LastName", 50, false, false},
    {"EmailAddress", 80, true, true},      {"PaypalAddress", 80, false, true},
    {"CountryID", 2, false, false},        {"Gender", 1, false, false},
    {"Language", 2, false, false},         {"TwitterUsername", 50, false, false},
    {"TwitterPassword", 50, false, false},
};

// An empty text, or what is wrong with one field.
QString fault(const FieldRule &rule, const QString &value)
{
    static const QRegularExpression address(QStringLiteral("[\\w.]+@[\\w.]+"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    const QString name = QLatin1String(rule.name);
    if (value.size() > rule.limit)
        return QStringLiteral("%1 is longer than %2 characters").arg(name).arg(rule.limit);
    if (rule.isMandatory && value.isEmpty())
        return QStringLiteral("%1 is missing").arg(name);
    if (rule.isAddress && !value.isEmpty() && !address.match(value).hasMatch())
        return QStringLiteral("%1 is no e-mail address").arg(name);
    return {};
}

QString passwordFault(const QString &password1, const QString &password2)
{
    if (password1.isEmpty())
        return QStringLiteral("the password is missing");
    if (password1.size() > maxPassword)
        return QStringLiteral("the password is longer than %1 characters").arg(maxPassword);
    if (password1 != password2)
        return QStringLiteral("the two passwords differ");
    return {};
}

QString accountFault(const FormBody &form)
{
    for (const FieldRule &rule : accountFields) {
        const QString found = fault(rule, form.text(QLatin1String(rule.name)));
        if (!found.isEmpty())
            return found;
    }
    const QString gender = form.text(QStringLiteral("Gender"));
    if (!gender.isEmpty() && gender != QLatin1String("M") && gender != QLatin1String("F"))
        return QStringLiteral("Gender is neither M nor F");
    return passwordFault(form.text(QStringLiteral("Password1")),
                         form.text(QStringLiteral("Password2")));
}

QString notStored()
{
    return QStringLiteral("the service could not store this");
}

} // namespace

Accounts::Accounts(Database &database)
    : m_database(database)
{
}

qint64 Accounts::login(const QString &username, const QString &password)
{
    qint64 member = 0;
    QByteArray hash;
    {
        Database::Session session(m_database);
        QSqlQuery query = session.run(
            QStringLiteral("SELECT id, password_hash FROM members WHERE username = ?"), {username});
        if (query.next()) {
            member = query.value(0).toLongLong();
            hash = query.value(1).toByteArray();
        }
    }
    return isPassword(hash, password) ? member : 0;
}

Result<qint64> Accounts::create(const FormBody &form)
{
    const QString found = accountFault(form);
    if (!found.isEmpty())
        return Result<qint64>::failed(found);
    const QByteArray hash = hashPassword(form.text(QStringLiteral("Password1")));
    if (hash.isEmpty())
        return Result<qint64>::failed(notStored());

    const QString username = form.text(QStringLiteral("Username"));
    Database::Session session(m_database);
    QSqlQuery taken =
        session.run(QStringLiteral("SELECT id FROM members WHERE username = ?"), {username});
    if (taken.next())
        return Result<qint64>::failed(QStringLiteral("the user name is taken"));
    const QSqlQuery added = session.run(
        QStringLiteral("INSERT INTO members (username, password_hash, first_name, last_name, email,"
                       " paypal, country, gender, language, twitter_name)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        {username, QString::fromLatin1(hash), form.text(QStringLiteral("FirstName")),
         form.text(QStringLiteral("LastName")), form.text(QStringLiteral("EmailAddress")),
         form.text(QStringLiteral("PaypalAddress")), form.text(QStringLiteral("CountryID")),
         form.text(QStringLiteral("Gender")), form.text(QStringLiteral("Language")),
         form.text(QStringLiteral("TwitterUsername"))});
    const qint64 member = added.lastInsertId().toLongLong();
    return session.commit() ? Result<qint64>{member, {}} : Result<qint64>::failed(notStored());
}

Result<qint64> Accounts::modify(const FormBody &form)
{
    const qint64 member =
        login(form.text(QStringLiteral("Username")), form.text(QStringLiteral("Password")));
    if (member == 0)
        return Result<qint64>::failed(QStringLiteral("wrong user name or password"));
    const QString found = accountFault(form);
    if (!found.isEmpty())
        return Result<qint64>::failed(found);
    const QByteArray hash = hashPassword(form.text(QStringLiteral("Password1")));
    if (hash.isEmpty())
        return Result<qint64>::failed(notStored());

    Database::Session session(m_database);
    session.run(
        QStringLiteral("UPDATE members SET password_hash = ?, email = ?, paypal = ? WHERE id = ?"),
        {QString::fromLatin1(hash), form.text(QStringLiteral("EmailAddress")),
         form.text(QStringLiteral("PaypalAddress")), member});
    return session.commit() ? Result<qint64>{member, {}} : Result<qint64>::failed(notStored());
}

Accounts::AlertOptions Accounts::alertOptions(qint64 member)
{
    Database::Session session(m_database);
    QSqlQuery query = session.run(
        QStringLiteral("SELECT notify_bid, notify_end, notify_view, notify_question, email"
                       " FROM members WHERE id = ?"),
        {member});
    if (!query.next())
        return {};
    return {query.value(0).toBool(), query.value(1).toBool(), query.value(2).toBool(),
            query.value(3).toBool(), query.value(4).toString()};
}

bool Accounts::setAlertOptions(qint64 member, const AlertOptions &options)
{
    Database::Session session(m_database);
    session.run(QStringLiteral("UPDATE members SET notify_bid = ?, notify_end = ?, notify_view = ?,"
                               " notify_question = ? WHERE id = ?"),
                {int(options.onBid), int(options.onAuctionEnd), int(options.onView),
                 int(options.onBuyerQuestion), member});
    return session.commit();
}

void Accounts::mailPasswordLink(const QString &nameOrEmail, const QString &address)
{
    if (nameOrEmail.isEmpty())
        return;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    Database::Session session(m_database);
    session.run(QStringLiteral("DELETE FROM password_links WHERE expires <= ?"), {now});
    QSqlQuery members = session.run(
        QStringLiteral("SELECT id, username, email FROM members WHERE username = ? OR email = ?"),
        {nameOrEmail, nameOrEmail});
    while (members.next()) {
        const QByteArray secret = randomName();
        session.run(
            QStringLiteral("INSERT INTO password_links (secret, member, expires) VALUES (?, ?, ?)"),
            {QString::fromLatin1(fingerprint(secret)), members.value(0), now + linkSeconds});
        MailOutbox::send(
            session, members.value(2).toString(), QStringLiteral("Your new password"),
            QStringLiteral(
                "Hello %1,\n\nsomebody, probably you, asked for a new password. Choose one "
                "here within the hour:\n\n%2\n\nIf it was not you, nothing has changed and "
                "there is nothing to do.\n")
                .arg(members.value(1).toString(), address + QString::fromLatin1(secret)));
    }
    session.commit();
}

bool Accounts::isPasswordLink(const QByteArray &secret)
{
    Database::Session session(m_database);
    QSqlQuery link = session.run(
        QStringLiteral("SELECT member FROM password_links WHERE secret = ? AND expires > ?"),
        {QString::fromLatin1(fingerprint(secret)), QDateTime::currentSecsSinceEpoch()});
    return link.next();
}

QString Accounts::setPassword(const QByteArray &secret, const QString &password1,
                              const QString &password2)
{
    const QString found = passwordFault(password1, password2);
    if (!found.isEmpty())
        return found;
    const QByteArray hash = hashPassword(password1);
    if (hash.isEmpty())
        return notStored();

    Database::Session session(m_database);
    QSqlQuery link = session.run(
        QStringLiteral("SELECT member FROM password_links WHERE secret = ? AND expires > ?"),
        {QString::fromLatin1(fingerprint(secret)), QDateTime::currentSecsSinceEpoch()});
    if (!link.next())
        return QStringLiteral("this link has been used or is too old");
    const qint64 member = link.value(0).toLongLong();
    link.finish();
    session.run(QStringLiteral("UPDATE members SET password_hash = ? WHERE id = ?"),
                {QString::fromLatin1(hash), member});
    session.run(QStringLiteral("DELETE FROM password_links WHERE member = ?"), {member});
    return session.commit() ? QString() : notStored();
}
