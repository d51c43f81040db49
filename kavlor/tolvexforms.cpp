// SPDX-License-Identifier: MIT

#include "tolvexforms.h"

#include "kavlornotificationoptions.h"
#include "kavloruser.h"

#include <QByteArrayList>
#include <QList>
#include <QStringList>

namespace {

struct AccountKey
{
    const char *name;
    CKavlorUser::Field field;
};
using AccountKeys = QList<AccountKey>;

const AccountKeys &newAccountKeys()
{
    static const AccountKeys keys{
        {"Username", CKavlorUser::Username},
        {"Password1", CKavlorUser::Password},
        {"FirstName", CKavlorUser::FirstName},
        {"LastName", CKavlorUser::LastName},
        {"EmailAddress", CKavlorUser::EmailAddress},
        {"PaypalAddress", CKavlorUser::PaypalAddress},
        {"CountryID", CKavlorUser::CountryID},
        {"Gender", CKavlorUser::Gender},
        {"Language", CKavlorUser::Language},
        {"TwitterUsername", CKavlorUser::TwitterUsername},
        {"TwitterPassword", CKavlorUser::TwitterPassword},
    };
    return keys;
}

const AccountKeys &changedAccountKeys()
{
    // The service is sent two ampersands before each of these.
    static const AccountKeys keys{
        {"&Username", CKavlorUser::Username},
        {"&Password1", CKavlorUser::Password},
        {"&Password2", CKavlorUser::Password},
        {"&EmailAddress", CKavlorUser::EmailAddress},
        {"&PaypalAddress", CKavlorUser::PaypalAddress},
    };
    return keys;
}

QByteArray submit()
{
    return QByteArrayLiteral("SUBMIT=Submit");
}

// One field of a form with the ampersand that parts it from the next.
QByteArray field(const QByteArray &name, const QByteArray &value)
{
    return name + '=' + value.toPercentEncoding("@.") + '&';
}

QByteArray field(const QByteArray &name, const QString &value)
{
    return field(name, value.toLocal8Bit());
}

QByteArray field(const QByteArray &name, quint32 value)
{
    return field(name, QByteArray::number(value));
}

QByteArray credentials(const QString &userName, const QString &password)
{
    return field("Username", userName) + field("Password", password);
}

QByteArray accountFields(const AccountKeys &keys, const CKavlorUser &user)
{
    QByteArray fields;
    for (const AccountKey &key : keys)
        fields += field(key.name, user.field(key.field));
    return fields;
}

} // namespace

namespace TolvexForms {

QByteArray empty()
{
    return submit();
}

QByteArray login(const QString &userName, const QString &password)
{
    return credentials(userName, password) + submit();
}

QByteArray auction(const QString &userName, const QString &password, quint32 auctionId)
{
    return credentials(userName, password) + field("AuctionID", auctionId) + submit();
}

QByteArray prices(const QString &userName, const QString &password, quint32 auctionId,
                  quint32 reservePrice, quint32 buyItNowPrice)
{
    return credentials(userName, password) + field("AuctionID", auctionId)
        + field("ReservePrice", reservePrice) + field("BuyItNowPrice", buyItNowPrice) + submit();
}

QByteArray alerts(const QString &userName, const QString &password,
                  const CKavlorNotificationOptions &options)
{
    static const QByteArrayList names{"NotifyOnBid", "NotifyOnAuctionEnd", "NotifyOnView",
                                      "NotifyOnBuyerQuestion"};
    const QStringList items = options.toText().split(QLatin1Char(','));
    if (items.size() < names.size())
        qFatal("The alert options have fewer than four items.");
    QByteArray body = credentials(userName, password);
    for (qsizetype i = 0; i < names.size(); ++i)
        body += field(names.at(i), items.at(i).toLatin1());
    return body + submit();
}

QByteArray newAccount(const CKavlorUser &user)
{
    return field("Password2", user.field(CKavlorUser::Password))
        + accountFields(newAccountKeys(), user) + submit();
}

QByteArray changedAccount(const CKavlorUser &current, const CKavlorUser &edited)
{
    return field("Password", current.field(CKavlorUser::Password))
        + accountFields(changedAccountKeys(), edited) + submit();
}

} // namespace TolvexForms
