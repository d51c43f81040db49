// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

// Every mail that the service writes, and to whom it goes: here and nowhere else stand their texts.

/** What a seller hears of one auction. */
struct Alert
{
    /** What a seller has to have chosen to get it: a column of the members' table. */
    const char *option;
    QString subject;
    QString text;

    static Alert bid(const QString &bidder, qint64 amount);
    static Alert won(const QString &buyer, const QString &email, qint64 price);
    static Alert endedWithoutBid();
    static Alert endedBelowReserve();
    static Alert viewed();
    static Alert question(const QString &asker, const QString &email, const QString &question);

    /** The whole mail to @p seller about the auction with this number and title. */
    QString mail(const QString &seller, qint64 auction, const QString &title) const;
};

/** What somebody gets who asked for a new password. */
struct PasswordMail
{
    static QString subject();
    static QString text(const QString &username, const QString &link);
};
