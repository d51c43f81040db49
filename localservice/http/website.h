// SPDX-License-Identifier: MIT

#pragma once

#include "accounts.h"
#include "auctions.h"
#include "datafolder.h"
#include "effort.h"
#include "fields.h"
#include "mailoutbox.h"
#include "ownaddress.h"
#include "pagewriter.h"
#include "pictures.h"
#include "visitortoken.h"

#include <QByteArray>
#include <QString>

/**
 * The web site for buyers, and for members who forgot their password: what each request is
 * answered. A post is heeded only when it comes from a form that this site showed the visitor.
 */
class WebSite
{
public:
    struct Request
    {
        QByteArray method; ///< "GET", "HEAD" or "POST"
        QString path;
        Fields query;
        Fields form;
        QByteArray cookies;
        QByteArray host;
        OwnAddress::Asker asker = OwnAddress::ForeignHost;
    };

    struct Reply
    {
        int status = 200;
        QByteArray type = "text/html; charset=utf-8";
        QByteArray body;
        QString file;        ///< when not empty, this file's content is the body
        QByteArray location; ///< where a browser is sent
        QByteArray cookie;   ///< a Set-Cookie header
    };

    WebSite(Accounts &accounts, Auctions &auctions, MailOutbox &outbox, Pictures &pictures,
            const DataFolder &folder);

    Reply answer(const Request &request);
    /** What answer() will take for a request of this kind. */
    static Effort effort(const QByteArray &method, const QString &path);

private:
    Reply get(const Request &request, const VisitorToken &visitor);
    Reply post(const Request &request, const VisitorToken &visitor);

    Reply frontPage(const Request &request, const VisitorToken &visitor);
    Reply auctionPage(const Request &request, const VisitorToken &visitor);
    /** The page of an auction, with what was typed into its forms. */
    Reply auctionReply(qint64 id, const VisitorToken &visitor, const PageWriter::Notice &notice,
                       const Fields &typed, int status);
    Reply outboxPage(const Request &request, const VisitorToken &visitor);
    Reply passwordPage(const Request &request, const VisitorToken &visitor);
    Reply thumbnail(const Request &request);
    Reply media(const Request &request);

    Reply placeBid(const Request &request, const VisitorToken &visitor);
    Reply buyNow(const Request &request, const VisitorToken &visitor);
    Reply ask(const Request &request, const VisitorToken &visitor);
    /** Back to the auction's page: with thanks after @p done, or with the refusal and the form. */
    Reply afterPost(const Request &request, const VisitorToken &visitor, const QByteArray &done,
                    const Result<void> &result);
    Reply sendPasswordLink(const Request &request);
    Reply setPassword(const Request &request, const VisitorToken &visitor);

    Accounts &m_accounts;
    Auctions &m_auctions;
    MailOutbox &m_outbox;
    Pictures &m_pictures;
    const DataFolder &m_folder;
};
