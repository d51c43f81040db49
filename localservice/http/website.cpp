// SPDX-License-Identifier: MIT

#include "website.h"

#include "categories.h"
#include "mediatypes.h"
#include "pagewriter.h"

#include <QHash>

#include <algorithm>
#include <limits>

namespace {

constexpr int cardEdge = 480;
constexpr int largeEdge = 1200;
constexpr int endedShown = 12;
constexpr int mailsShown = 100;
constexpr int wordsRead = 200;
constexpr int lastPage = 1000000;

qint64 idIn(const Fields &form)
{
    return form.number(QStringLiteral("id"), std::numeric_limits<qint32>::max());
}

Auctions::Buyer buyerIn(const Fields &form)
{
    return {form.text(QStringLiteral("name")).simplified(),
            form.text(QStringLiteral("email")).trimmed()};
}

WebSite::Reply page(const QByteArray &body, int status = 200)
{
    WebSite::Reply reply;
    reply.status = status;
    reply.body = body;
    return reply;
}

WebSite::Reply messagePage(int status, const QString &title, const QString &text)
{
    return page(PageWriter({}).message(title, text), status);
}

QString asSentence(const QString &reason)
{
    return reason.left(1).toUpper() + reason.mid(1) + QLatin1Char('.');
}

WebSite::Reply notFound()
{
    return messagePage(404, QStringLiteral("Not found"), QStringLiteral("There is nothing here."));
}

WebSite::Reply brokenPage(const Failure &failure)
{
    return messagePage(500, QStringLiteral("Something went wrong"), asSentence(failure.reason));
}

WebSite::Reply notFromHere()
{
    return messagePage(403, QStringLiteral("Please try again"),
                       QStringLiteral("This form is out of date or does not come from this site. "
                                      "Nothing was done. Please open the page again."));
}

QString ownAddress(const QByteArray &host)
{
    return QStringLiteral("http://") + QString::fromLatin1(host) + QLatin1Char('/');
}

PageWriter::Notice thanks(const QString &done)
{
    static const QHash<QString, QString> texts{
        {QStringLiteral("bid"), QStringLiteral("Thank you, your bid has been placed.")},
        {QStringLiteral("buy"), QStringLiteral("Thank you, it is yours.")},
        {QStringLiteral("question"), QStringLiteral("Thank you, your question has been sent.")},
    };
    return {texts.value(done), false};
}

} // namespace

WebSite::WebSite(Accounts &accounts, Auctions &auctions, MailOutbox &outbox, Pictures &pictures,
                 const DataFolder &folder)
    : m_accounts(accounts)
    , m_auctions(auctions)
    , m_outbox(outbox)
    , m_pictures(pictures)
    , m_folder(folder)
{
}

WebSite::Reply WebSite::answer(const Request &request)
{
    if (request.asker == OwnAddress::ForeignHost) {
        return messagePage(403, QStringLiteral("Not here"),
                           QStringLiteral("This site is reached as localhost only."));
    }
    if (request.asker == OwnAddress::ForeignOrigin)
        return notFromHere();
    const bool isRead = request.method == "GET" || request.method == "HEAD";
    if (!isRead && request.method != "POST") {
        return messagePage(405, QStringLiteral("Not like this"),
                           QStringLiteral("This site is read and sent forms to, no more."));
    }
    const VisitorToken visitor = VisitorToken::fromCookies(request.cookies);
    Reply reply = isRead ? get(request, visitor) : post(request, visitor);
    if (reply.type.startsWith("text/html"))
        reply.cookie = visitor.newCookie();
    return reply;
}

Effort WebSite::effort(const QByteArray &method, const QString &path)
{
    if (path == QLatin1String("/thumbnail"))
        return Effort::Picturing;
    // Opening an auction's page counts a view.
    const bool changes = method == "POST" || path == QLatin1String("/auction");
    return changes ? Effort::Changing : Effort::Reading;
}

WebSite::Reply WebSite::get(const Request &request, const VisitorToken &visitor)
{
    if (request.path == QLatin1String("/"))
        return frontPage(request, visitor);
    if (request.path == QLatin1String("/auction"))
        return auctionPage(request, visitor);
    if (request.path == QLatin1String("/thumbnail"))
        return thumbnail(request);
    if (request.path == QLatin1String("/media"))
        return media(request);
    if (request.path == QLatin1String("/index.php"))
        return passwordPage(request, visitor);
    if (request.path == QLatin1String("/outbox"))
        return outboxPage(request, visitor);
    return notFound();
}

WebSite::Reply WebSite::post(const Request &request, const VisitorToken &visitor)
{
    if (!visitor.isOwnForm(request.form.text(QStringLiteral("token")).toLatin1()))
        return notFromHere();
    if (request.path == QLatin1String("/auction/bid"))
        return placeBid(request, visitor);
    if (request.path == QLatin1String("/auction/buy"))
        return buyNow(request, visitor);
    if (request.path == QLatin1String("/auction/question"))
        return ask(request, visitor);
    const QString action = request.query.text(QStringLiteral("do"));
    if (request.path == QLatin1String("/index.php") && action == QLatin1String("forgotpass"))
        return sendPasswordLink(request);
    if (request.path == QLatin1String("/index.php") && action == QLatin1String("newpass"))
        return setPassword(request, visitor);
    return notFound();
}

WebSite::Reply WebSite::frontPage(const Request &request, const VisitorToken &visitor)
{
    Auctions::Search search;
    search.words = request.query.text(QStringLiteral("words")).left(wordsRead).simplified();
    search.category =
        request.query.number(QStringLiteral("category"), std::numeric_limits<qint32>::max());
    if (!isCategory(search.category))
        search.category = 0;
    search.page = int(std::max<qint64>(1, request.query.number(QStringLiteral("page"), lastPage)));
    const Result<Auctions::Page> onSale = m_auctions.onSale(search);
    if (!onSale.isOk())
        return brokenPage(onSale.failure());
    const bool isPlain = search.words.isEmpty() && search.category == 0 && search.page == 1;
    const Result<QList<Auctions::Auction>> ended =
        isPlain ? m_auctions.recentlyEnded(endedShown) : QList<Auctions::Auction>();
    if (!ended.isOk())
        return brokenPage(ended.failure());
    return page(PageWriter(visitor.formToken()).auctions(onSale.value(), search, ended.value()));
}

WebSite::Reply WebSite::outboxPage(const Request &request, const VisitorToken &visitor)
{
    const Result<QList<MailOutbox::Mail>> mails = m_outbox.newest(mailsShown);
    if (!mails.isOk())
        return brokenPage(mails.failure());
    return page(PageWriter(visitor.formToken()).outbox(mails.value(), ownAddress(request.host)));
}

WebSite::Reply WebSite::auctionPage(const Request &request, const VisitorToken &visitor)
{
    const qint64 id = idIn(request.query);
    // Coming back from a form is no new view, and a view that cannot be noted hides no auction.
    const QString done = request.query.text(QStringLiteral("done"));
    if (done.isEmpty() && request.method == "GET")
        (void)m_auctions.countView(id);
    return auctionReply(id, visitor, thanks(done), Fields(), 200);
}

WebSite::Reply WebSite::auctionReply(qint64 id, const VisitorToken &visitor,
                                     const PageWriter::Notice &notice, const Fields &typed,
                                     int status)
{
    const Result<Auctions::Auction> auction = m_auctions.auction(id);
    if (!auction.isOk())
        return brokenPage(auction.failure());
    if (auction.value().id == 0)
        return notFound();
    const Result<QList<Auctions::Bid>> bids = m_auctions.bids(id);
    if (!bids.isOk())
        return brokenPage(bids.failure());
    return page(
        PageWriter(visitor.formToken()).auction(auction.value(), bids.value(), notice, typed),
        status);
}

WebSite::Reply WebSite::passwordPage(const Request &request, const VisitorToken &visitor)
{
    const PageWriter writer(visitor.formToken());
    const QString action = request.query.text(QStringLiteral("do"));
    if (action == QLatin1String("forgotpass"))
        return page(writer.forgottenPassword({}));
    if (action != QLatin1String("newpass"))
        return notFound();
    const QByteArray secret = request.query.text(QStringLiteral("secret")).toLatin1();
    const Result<bool> isGood = m_accounts.isPasswordLink(secret);
    if (!isGood.isOk())
        return brokenPage(isGood.failure());
    if (!isGood.value()) {
        return messagePage(404, QStringLiteral("This link is over"),
                           QStringLiteral("This link has been used or is too old."));
    }
    return page(writer.newPassword(secret, {}));
}

WebSite::Reply WebSite::thumbnail(const Request &request)
{
    const Result<Auctions::Auction> auction = m_auctions.auction(idIn(request.query));
    if (!auction.isOk())
        return brokenPage(auction.failure());
    if (auction.value().id == 0)
        return notFound();
    const bool isLarge = request.query.has(QStringLiteral("large"));
    const Pictures::Picture picture =
        m_pictures.thumbnail(auction.value().media, isLarge ? largeEdge : cardEdge);
    Reply reply;
    reply.type = picture.type;
    reply.body = picture.bytes;
    return reply;
}

WebSite::Reply WebSite::media(const Request &request)
{
    const Result<Auctions::Auction> auction = m_auctions.auction(idIn(request.query));
    if (!auction.isOk())
        return brokenPage(auction.failure());
    if (auction.value().id == 0)
        return notFound();
    Reply reply;
    reply.type = mediaType(auction.value().media);
    reply.file = m_folder.mediaPath(auction.value().media);
    return reply;
}

WebSite::Reply WebSite::placeBid(const Request &request, const VisitorToken &visitor)
{
    return afterPost(
        request, visitor, "bid",
        m_auctions.bid(idIn(request.form), buyerIn(request.form),
                       request.form.number(QStringLiteral("amount"), Auctions::maxPrice)));
}

WebSite::Reply WebSite::buyNow(const Request &request, const VisitorToken &visitor)
{
    return afterPost(request, visitor, "buy",
                     m_auctions.buyNow(idIn(request.form), buyerIn(request.form)));
}

WebSite::Reply WebSite::ask(const Request &request, const VisitorToken &visitor)
{
    return afterPost(request, visitor, "question",
                     m_auctions.ask(idIn(request.form), buyerIn(request.form),
                                    request.form.text(QStringLiteral("question"))));
}

WebSite::Reply WebSite::afterPost(const Request &request, const VisitorToken &visitor,
                                  const QByteArray &done, const Result<void> &result)
{
    const qint64 id = idIn(request.form);
    if (result.isOk()) {
        Reply reply;
        reply.status = 303;
        reply.location = "/auction?id=" + QByteArray::number(id) + "&done=" + done;
        return reply;
    }
    if (result.failure().kind == Failure::Broken)
        return brokenPage(result.failure());
    return auctionReply(id, visitor, {asSentence(result.failure().reason), true}, request.form,
                        422);
}

WebSite::Reply WebSite::sendPasswordLink(const Request &request)
{
    const Result<void> mailed = m_accounts.mailPasswordLink(
        request.form.text(QStringLiteral("member")).trimmed(),
        ownAddress(request.host) + QStringLiteral("index.php?do=newpass&secret="));
    if (!mailed.isOk())
        return brokenPage(mailed.failure());
    return messagePage(200, QStringLiteral("Look into your mail"),
                       QStringLiteral("If we know this member, a link for a new password is on its "
                                      "way. It works for an hour."));
}

WebSite::Reply WebSite::setPassword(const Request &request, const VisitorToken &visitor)
{
    const QByteArray secret = request.form.text(QStringLiteral("secret")).toLatin1();
    const Result<void> set =
        m_accounts.setPassword(secret, request.form.text(QStringLiteral("password1")),
                               request.form.text(QStringLiteral("password2")));
    if (set.isOk()) {
        return messagePage(200, QStringLiteral("Your new password is set"),
                           QStringLiteral("You can log in with it now."));
    }
    if (set.failure().kind == Failure::Broken)
        return brokenPage(set.failure());
    return page(PageWriter(visitor.formToken())
                    .newPassword(secret, {asSentence(set.failure().reason), true}),
                422);
}
