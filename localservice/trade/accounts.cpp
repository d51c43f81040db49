// SPDX-License-Identifier: MIT

#include "accounts.h"

#include "alerts.h"
#include "localclock.h"
#include "mailoutbox.h"
#include "passwords.h"

#include <QRegularExpression>

namespace {

constexpr int maxPassword = 100;
constexpr std::chrono::minutes rememberedFor{5};
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

Result<void> checkField(const FieldRule &rule, const QString &value)
{
    static const QRegularExpression address(QStringLiteral("[\\w.]+@[\\w.]+"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    const QString name = QLatin1String(rule.name);
    if (value.size() > rule.limit)
        return refused(QStringLiteral("%1 is longer than %2 characters").arg(name).arg(rule.limit));
    if (rule.isMandatory && value.isEmpty())
        return refused(QStringLiteral("%1 is missing").arg(name));
    if (rule.isAddress && !value.isEmpty() && !address.match(value).hasMatch())
        return refused(QStringLiteral("%1 is no e-mail address").arg(name));
    return {};
}

Result<void> checkPasswords(const QString &password1, const QString &password2)
{
    if (password1.isEmpty())
        return refused(QStringLiteral("the password is missing"));
    if (password1.size() > maxPassword) {
        return refused(
            QStringLiteral("the password is longer than %1 characters").arg(maxPassword));
    }
    if (password1 != password2)
        return refused(QStringLiteral("the two passwords differ"));
    return {};
}

Result<void> checkAccount(const Fields &form)
{
    for (const FieldRule &rule : accountFields) {
        const Result<void> checked = checkField(rule, form.text(QLatin1String(rule.name)));
        if (!checked.isOk())
            return checked;
    }
    const QString gender = form.text(QStringLiteral("Gender"));
    if (!gender.isEmpty() && gender != QLatin1String("M") && gender != QLatin1String("F"))
        return refused(QStringLiteral("Gender is neither M nor F"));
    return checkPasswords(form.text(QStringLiteral("Password1")),
                          form.text(QStringLiteral("Password2")));
}

// Whom a link that is still good belongs to; 0 = it is not.
Result<qint64> memberOfLink(Database::Session &session, const QByteArray &secret)
{
    const Result<Database::Rows> found = session.select(
        QStringLiteral("SELECT member FROM password_links WHERE secret = ? AND expires > ?"),
        {QString::fromLatin1(fingerprint(secret)), LocalClock::now()});
    if (!found.isOk())
        return found.failure();
    return found.value().value(0).value(0).toLongLong();
}

} // namespace

Accounts::Accounts(Database &database)
    : m_database(database)
    , m_remembered(rememberedFor)
{
}

Result<Accounts::Stored> Accounts::stored(const QString &username)
{
    const Result<Database::Rows> found = Database::Session(m_database)
                                             .select(QStringLiteral("SELECT id, password_hash FROM "
                                                                    "members WHERE username = ?"),
                                                     {username});
    if (!found.isOk())
        return found.failure();
    const Database::Row row = found.value().value(0);
    return Stored{row.value(0).toLongLong(), row.value(1).toByteArray()};
}

Result<bool> Accounts::isRemembered(const QString &username, const QString &password)
{
    const Result<Stored> found = stored(username);
    if (!found.isOk())
        return found.failure();
    return m_remembered.isKnown(found.value().hash, password);
}

Result<qint64> Accounts::login(const QString &username, const QString &password,
                               const QByteArray &address)
{
    const Result<Stored> found = stored(username);
    if (!found.isOk())
        return found.failure();
    const auto [member, hash] = found.value();
    if (m_remembered.isKnown(hash, password))
        return member;
    // Of many requests that come at once the first one finds out for all.
    const std::lock_guard<std::mutex> lock(m_checking);
    if (m_remembered.isKnown(hash, password))
        return member;
    const Result<bool> isRight = isPassword(hash, password);
    if (!isRight.isOk())
        return isRight.failure();
    if (!isRight.value()) {
        return Failure{QStringLiteral("wrong user name or password"), Failure::Stranger,
                       m_brake.wrong(username, address)};
    }
    m_brake.right(username, address);
    m_remembered.remember(hash, password);
    return member;
}

Result<qint64> Accounts::create(const Fields &form)
{
    const Result<void> checked = checkAccount(form);
    if (!checked.isOk())
        return checked.failure();
    const Result<QByteArray> hash = hashPassword(form.text(QStringLiteral("Password1")));
    if (!hash.isOk())
        return hash.failure();

    const QString username = form.text(QStringLiteral("Username"));
    Database::Session session(m_database, Database::Writing);
    const Result<Database::Rows> taken =
        session.select(QStringLiteral("SELECT id FROM members WHERE username = ?"), {username});
    if (!taken.isOk())
        return taken.failure();
    if (!taken.value().isEmpty())
        return refused(QStringLiteral("the user name is taken"));
    session.change(
        QStringLiteral("INSERT INTO members (username, password_hash, first_name, last_name, email,"
                       " paypal, country, gender, language, twitter_name)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        {username, QString::fromLatin1(hash.value()), form.text(QStringLiteral("FirstName")),
         form.text(QStringLiteral("LastName")), form.text(QStringLiteral("EmailAddress")),
         form.text(QStringLiteral("PaypalAddress")), form.text(QStringLiteral("CountryID")),
         form.text(QStringLiteral("Gender")), form.text(QStringLiteral("Language")),
         form.text(QStringLiteral("TwitterUsername"))});
    const qint64 member = session.addedRow();
    const Result<void> stored = session.commit();
    return stored.isOk() ? Result<qint64>(member) : stored.failure();
}

Result<qint64> Accounts::modify(const Fields &form, const QByteArray &address)
{
    const Result<qint64> member = login(form.text(QStringLiteral("Username")),
                                        form.text(QStringLiteral("Password")), address);
    if (!member.isOk())
        return member;
    const Result<void> checked = checkAccount(form);
    if (!checked.isOk())
        return checked.failure();
    const Result<QByteArray> hash = hashPassword(form.text(QStringLiteral("Password1")));
    if (!hash.isOk())
        return hash.failure();

    Database::Session session(m_database, Database::Writing);
    session.change(
        QStringLiteral("UPDATE members SET password_hash = ?, email = ?, paypal = ? WHERE id = ?"),
        {QString::fromLatin1(hash.value()), form.text(QStringLiteral("EmailAddress")),
         form.text(QStringLiteral("PaypalAddress")), member.value()});
    const Result<void> stored = session.commit();
    return stored.isOk() ? member : stored.failure();
}

Result<Accounts::AlertOptions> Accounts::alertOptions(qint64 member)
{
    const Result<Database::Rows> found =
        Database::Session(m_database)
            .select(QStringLiteral("SELECT notify_bid, notify_end, notify_view, notify_question,"
                                   " email FROM members WHERE id = ?"),
                    {member});
    if (!found.isOk())
        return found.failure();
    if (found.value().isEmpty())
        return refused(QStringLiteral("there is no such member"));
    const Database::Row row = found.value().first();
    return AlertOptions{row.at(0).toBool(), row.at(1).toBool(), row.at(2).toBool(),
                        row.at(3).toBool(), row.at(4).toString()};
}

Result<void> Accounts::setAlertOptions(qint64 member, const AlertOptions &options)
{
    Database::Session session(m_database, Database::Writing);
    session.change(
        QStringLiteral("UPDATE members SET notify_bid = ?, notify_end = ?, notify_view = ?,"
                       " notify_question = ? WHERE id = ?"),
        {int(options.onBid), int(options.onAuctionEnd), int(options.onView),
         int(options.onBuyerQuestion), member});
    return session.commit();
}

Result<void> Accounts::mailPasswordLink(const QString &nameOrEmail, const QString &address)
{
    if (nameOrEmail.isEmpty())
        return {};
    const qint64 now = LocalClock::now();
    Database::Session session(m_database, Database::Writing);
    session.change(QStringLiteral("DELETE FROM password_links WHERE expires <= ?"), {now});
    const Result<Database::Rows> members = session.select(
        QStringLiteral("SELECT id, username, email FROM members WHERE username = ? OR email = ?"),
        {nameOrEmail, nameOrEmail});
    if (!members.isOk())
        return members.failure();
    for (const Database::Row &member : members.value()) {
        const QByteArray secret = randomName();
        session.change(
            QStringLiteral("INSERT INTO password_links (secret, member, expires) VALUES (?, ?, ?)"),
            {QString::fromLatin1(fingerprint(secret)), member.at(0), now + linkSeconds});
        MailOutbox::send(
            session, member.at(2).toString(), PasswordMail::subject(),
            PasswordMail::text(member.at(1).toString(), address + QString::fromLatin1(secret)));
    }
    return session.commit();
}

Result<bool> Accounts::isPasswordLink(const QByteArray &secret)
{
    Database::Session session(m_database);
    const Result<qint64> member = memberOfLink(session, secret);
    return member.isOk() ? Result<bool>(member.value() != 0) : member.failure();
}

Result<void> Accounts::setPassword(const QByteArray &secret, const QString &password1,
                                   const QString &password2)
{
    const Result<void> checked = checkPasswords(password1, password2);
    if (!checked.isOk())
        return checked;
    const Result<QByteArray> hash = hashPassword(password1);
    if (!hash.isOk())
        return hash.failure();

    Database::Session session(m_database, Database::Writing);
    const Result<qint64> member = memberOfLink(session, secret);
    if (!member.isOk())
        return member.failure();
    if (member.value() == 0)
        return refused(QStringLiteral("this link has been used or is too old"));
    session.change(QStringLiteral("UPDATE members SET password_hash = ? WHERE id = ?"),
                   {QString::fromLatin1(hash.value()), member.value()});
    session.change(QStringLiteral("DELETE FROM password_links WHERE member = ?"), {member.value()});
    return session.commit();
}
