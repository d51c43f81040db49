// SPDX-License-Identifier: MIT

#pragma once

#include "auctions.h"
#include "fields.h"
#include "mailoutbox.h"

#include <QByteArray>
#include <QList>
#include <QString>

/**
 * Writes the pages of the web site: plain HTML without scripts, every text of a member or visitor
 * escaped. A form carries the visitor's token, and what was typed when it comes back.
 */
class PageWriter
{
public:
    /** What a page says about the request that led to it; an empty text says nothing. */
    struct Notice
    {
        QString text;
        bool isError = false;
    };

    explicit PageWriter(const QByteArray &formToken);

    /** One page of what is on sale, as @p search found it, and the last ones that ended. */
    QByteArray auctions(const Auctions::Page &onSale, const Auctions::Search &search,
                        const QList<Auctions::Auction> &ended) const;
    QByteArray auction(const Auctions::Auction &auction, const QList<Auctions::Bid> &bids,
                       const Notice &notice, const Fields &typed) const;
    /** Links in the mails that begin with @p ownAddress can be clicked. */
    QByteArray outbox(const QList<MailOutbox::Mail> &mails, const QString &ownAddress) const;
    QByteArray forgottenPassword(const Notice &notice) const;
    QByteArray newPassword(const QByteArray &secret, const Notice &notice) const;
    QByteArray message(const QString &title, const QString &text) const;

private:
    QString bidForm(const Auctions::Auction &auction, const Fields &typed) const;
    QString buyForm(const Auctions::Auction &auction, const Fields &typed) const;
    QString questionForm(const Auctions::Auction &auction, const Fields &typed) const;
    QString formStart(const QString &action) const;

    QString m_token;
};
