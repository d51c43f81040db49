// SPDX-License-Identifier: MIT

#include "alerts.h"

Alert Alert::bid(const QString &bidder, qint64 amount)
{
    return {"notify_bid", QStringLiteral("A bid on your auction"),
            QStringLiteral("%1 bids USD %2 on your auction.").arg(bidder, QString::number(amount))};
}

Alert Alert::won(const QString &buyer, const QString &email, qint64 price)
{
    return {"notify_end", QStringLiteral("Your auction is won"),
            QStringLiteral("your auction is won: %1 (%2) buys it for USD %3.")
                .arg(buyer, email, QString::number(price))};
}

Alert Alert::endedWithoutBid()
{
    return {"notify_end", QStringLiteral("Your auction has ended"),
            QStringLiteral("your auction has ended without a bid.")};
}

Alert Alert::endedBelowReserve()
{
    return {"notify_end", QStringLiteral("Your auction has ended"),
            QStringLiteral("your auction has ended below its reserve price.")};
}

Alert Alert::viewed()
{
    return {"notify_view", QStringLiteral("Your auction has been viewed"),
            QStringLiteral("somebody is looking at your auction.")};
}

Alert Alert::question(const QString &asker, const QString &email, const QString &question)
{
    return {"notify_question", QStringLiteral("A question about your auction"),
            QStringLiteral("%1 (%2) asks:\n\n%3").arg(asker, email, question)};
}

QString Alert::mail(const QString &seller, qint64 auction, const QString &title) const
{
    return QStringLiteral("Hello %1,\n\n%2\n\nAuction %3: %4\n")
        .arg(seller, text, QString::number(auction), title);
}

QString PasswordMail::subject()
{
    return QStringLiteral("Your new password");
}

QString PasswordMail::text(const QString &username, const QString &link)
{
    return QStringLiteral(
               "Hello %1,\n\nsomebody, probably you, asked for a new password. Choose one "
               "here within the hour:\n\n%2\n\nIf it was not you, nothing has changed and "
               "there is nothing to do.\n")
        .arg(username, link);
}
