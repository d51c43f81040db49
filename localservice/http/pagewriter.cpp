// SPDX-License-Identifier: MIT

#include "pagewriter.h"

#include "categories.h"
#include "localclock.h"
#include "mediatypes.h"

#include <QFile>
#include <QLocale>

namespace {

QString styleSheet()
{
    QFile file(QStringLiteral(":/localservice/http/page.css"));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

QString usd(qint64 amount)
{
    return QStringLiteral("USD ") + QLocale(QLocale::English).toString(amount);
}

QString counted(qint64 count, const char *noun)
{
    return QString::number(count) + QLatin1Char(' ') + QLatin1String(noun)
        + (count == 1 ? QString() : QStringLiteral("s"));
}

QString timeLeft(qint64 ends)
{
    const qint64 minutes = (ends - LocalClock::now()) / 60;
    const qint64 hours = minutes / 60;
    const qint64 days = hours / 24;
    if (days > 0)
        return counted(days, "day") + QLatin1Char(' ') + counted(hours % 24, "hour");
    if (hours > 0)
        return counted(hours, "hour") + QLatin1Char(' ') + counted(minutes % 60, "minute");
    return minutes > 0 ? counted(minutes, "minute") : QStringLiteral("less than a minute");
}

QString minuteText(const LocalClock &clock, qint64 moment)
{
    return QString::fromLatin1(clock.text(moment, "%Y-%m-%d %H:%M"));
}

QString timeText(qint64 ends, Auctions::State state)
{
    return state == Auctions::Running ? timeLeft(ends) + QStringLiteral(" left")
                                      : QStringLiteral("ended");
}

QString badges(const Auctions::Auction &auction)
{
    if (auction.state == Auctions::Sold)
        return QStringLiteral("<span class=\"badge sold\">Sold</span>");
    if (auction.state == Auctions::Unsold)
        return QStringLiteral("<span class=\"badge\">Ended without a sale</span>");
    if (auction.isReserveMet())
        return QStringLiteral("<span class=\"badge good\">Reserve met</span>");
    if (auction.reservePrice > 0)
        return QStringLiteral("<span class=\"badge\">Reserve not met</span>");
    return {};
}

QString priceLabel(const Auctions::Auction &auction)
{
    if (auction.state == Auctions::Sold)
        return QStringLiteral("Sold for");
    return auction.highestBid > 0 ? QStringLiteral("Highest bid") : QStringLiteral("Start price");
}

QString price(const Auctions::Auction &auction)
{
    return usd(auction.currentPrice() > 0 ? auction.currentPrice() : auction.startPrice);
}

QString card(const Auctions::Auction &auction)
{
    const QString buyNow = auction.isBuyable()
        ? QStringLiteral("<span class=\"muted\">Buy it now: %1</span>").arg(usd(auction.buyPrice))
        : QString();
    return QStringLiteral(
               R"(<a class="card" href="/auction?id=%1"><img src="/thumbnail?id=%1" alt="">
<span class="text"><span class="title">%2</span><span class="muted">%3</span>
<span><span class="muted">%4</span> <span class="price">%5</span></span>%6 %7
<span class="foot muted"><span>%8</span><span>%9</span></span></span></a>
)")
        .arg(QString::number(auction.id), auction.title.toHtmlEscaped(),
             categoryPath(auction.category).toHtmlEscaped(), priceLabel(auction), price(auction),
             buyNow, badges(auction), counted(auction.bids, "bid"),
             timeText(auction.ends, auction.state));
}

QString cards(const QList<Auctions::Auction> &auctions)
{
    QString all = QStringLiteral("<div class=\"cards\">\n");
    for (const Auctions::Auction &auction : auctions)
        all += card(auction);
    return all + QStringLiteral("</div>\n");
}

// All of them, written once, since they never change.
QString categoryOptions()
{
    QString options = QStringLiteral("<option value=\"0\">All categories</option>\n");
    for (const qint64 top : topCategories()) {
        for (const qint64 id : categoryWithAllBelow(top)) {
            options += QStringLiteral("<option value=\"%1\">%2</option>\n")
                           .arg(QString::number(id), categoryPath(id).toHtmlEscaped());
        }
    }
    return options;
}

QString searchForm(const Auctions::Search &search)
{
    static const QString all = categoryOptions();
    QString options = all;
    if (search.category != 0) {
        const QString value = QStringLiteral(" value=\"%1\"").arg(search.category);
        options.replace(value, value + QStringLiteral(" selected"));
    }
    return QStringLiteral("<form class=\"search\" method=\"get\" action=\"/\" role=\"search\">\n"
                          "<label for=\"words\">Words</label>\n"
                          "<input id=\"words\" name=\"words\" type=\"search\" maxlength=\"200\" "
                          "value=\"%1\">\n<label for=\"category\">Category</label>\n"
                          "<select id=\"category\" name=\"category\">\n%2</select>\n"
                          "<button id=\"search-submit\" type=\"submit\">Search</button>\n</form>\n")
        .arg(search.words.toHtmlEscaped(), options);
}

QString pageLink(const Auctions::Search &search, int page, const QString &relation,
                 const QString &text)
{
    return QStringLiteral("<a rel=\"%1\" href=\"/?words=%2&amp;category=%3&amp;page=%4\">%5</a>\n")
        .arg(relation, QString::fromLatin1(search.words.toUtf8().toPercentEncoding()),
             QString::number(search.category), QString::number(page), text);
}

QString pageLinks(const Auctions::Page &onSale, const Auctions::Search &search)
{
    if (search.page == 1 && !onSale.hasNext)
        return {};
    QString links = QStringLiteral("<nav class=\"pages\" aria-label=\"Pages\">\n");
    if (search.page > 1)
        links += pageLink(search, search.page - 1, QStringLiteral("prev"),
                          QStringLiteral("Ending sooner"));
    links += QStringLiteral("<span>Page %1</span>\n").arg(search.page);
    if (onSale.hasNext)
        links += pageLink(search, search.page + 1, QStringLiteral("next"),
                          QStringLiteral("Ending later"));
    return links + QStringLiteral("</nav>\n");
}

QString noticeBox(const PageWriter::Notice &notice)
{
    if (notice.text.isEmpty())
        return {};
    return QStringLiteral("<p class=\"notice%1\" id=\"notice\" role=\"status\">%2</p>\n")
        .arg(notice.isError ? QStringLiteral(" error") : QString(), notice.text.toHtmlEscaped());
}

// A labelled line to type into.
QString input(const QString &id, const QString &label, const QString &attributes,
              const QString &value = {})
{
    return QStringLiteral(
               "<label for=\"%1\">%2</label>\n<input id=\"%1\" %3 value=\"%4\" required>\n")
        .arg(id, label, attributes, value.toHtmlEscaped());
}

QString visitorInputs(const QString &form, const Fields &typed)
{
    return input(form + QStringLiteral("-name"), QStringLiteral("Your name"),
                 QStringLiteral("name=\"name\" maxlength=\"100\" autocomplete=\"name\""),
                 typed.text(QStringLiteral("name")))
        + input(form + QStringLiteral("-email"), QStringLiteral("Your e-mail address"),
                QStringLiteral(
                    "name=\"email\" type=\"email\" maxlength=\"80\" autocomplete=\"email\""),
                typed.text(QStringLiteral("email")));
}

QString auctionInput(const Auctions::Auction &auction)
{
    return QStringLiteral("<input type=\"hidden\" name=\"id\" value=\"%1\">\n").arg(auction.id);
}

QString button(const QString &id, const QString &text)
{
    return QStringLiteral("<button id=\"%1\" type=\"submit\">%2</button>\n</form>\n").arg(id, text);
}

QString mediaPanel(const Auctions::Auction &auction)
{
    const QString id = QString::number(auction.id);
    const QString shown = isVideo(auction.media)
        ? QStringLiteral("<video controls preload=\"none\" poster=\"/thumbnail?id=%1&amp;large=1\" "
                         "src=\"/media?id=%1\"></video>")
        : QStringLiteral("<a href=\"/media?id=%1\"><img src=\"/thumbnail?id=%1&amp;large=1\" "
                         "alt=\"The photo on auction\"></a>");
    return QStringLiteral("<div class=\"panel media\">%1</div>\n").arg(shown.arg(id));
}

QString factsPanel(const Auctions::Auction &auction)
{
    const QString shown = badges(auction);
    const QString badge = shown.isEmpty() ? QString() : QStringLiteral("<div>%1</div>").arg(shown);
    return QStringLiteral(R"(<div class="panel"><div class="muted">%1</div>
<div class="price" id="price">%2</div>%3
<p class="muted"><span id="bids">%4</span> &middot; <span id="views">%5</span> &middot; %6</p></div>
)")
        .arg(priceLabel(auction), price(auction), badge, counted(auction.bids, "bid"),
             counted(auction.views, "view"), timeText(auction.ends, auction.state));
}

QString bidTable(const QList<Auctions::Bid> &bids)
{
    if (bids.isEmpty())
        return {};
    const LocalClock clock;
    QString rows;
    for (const Auctions::Bid &bid : bids) {
        rows +=
            QStringLiteral("<tr><td>%1</td><td>%2</td><td class=\"number\">%3</td></tr>\n")
                .arg(bid.bidder.toHtmlEscaped(), minuteText(clock, bid.placed), usd(bid.amount));
    }
    return QStringLiteral("<div class=\"panel\"><h2>Bids</h2><table>"
                          "<tr><th>Bidder</th><th>Time</th><th class=\"number\">Bid</th></tr>\n%1"
                          "</table></div>\n")
        .arg(rows);
}

// A line that is nothing but a link into this site can be clicked.
QString mailText(const QString &body, const QString &ownAddress)
{
    QStringList lines = body.split(QLatin1Char('\n'));
    for (QString &line : lines) {
        const bool isLink = line.startsWith(ownAddress);
        line = line.toHtmlEscaped();
        if (isLink)
            line = QStringLiteral("<a href=\"%1\">%1</a>").arg(line);
    }
    return lines.join(QLatin1Char('\n'));
}

QByteArray page(const QString &title, const QString &content)
{
    static const QString style = QLatin1Char('\n') + styleSheet();
    const QString text = QStringLiteral(R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>%1 - kavlor</title>
<meta name="viewport" content="width=device-width, initial-scale=1">
<style>%2</style></head>
<body><header><div><a class="brand" href="/">kavlor</a><a href="/">Auctions</a>
<a href="/outbox">Mails</a></div></header>
<main>
%3</main>
</body></html>
)")
                             .arg(title.toHtmlEscaped(), style, content);
    return text.toUtf8();
}

} // namespace

PageWriter::PageWriter(const QByteArray &formToken)
    : m_token(QString::fromLatin1(formToken))
{
}

QByteArray PageWriter::auctions(const Auctions::Page &onSale, const Auctions::Search &search,
                                const QList<Auctions::Auction> &ended) const
{
    QString content =
        QStringLiteral("<h1>Photos and clips on auction</h1>\n"
                       "<p class=\"muted\">Taken by our members. Prices are in whole US "
                       "dollars.</p>\n")
        + searchForm(search);
    const bool isPlain = search.words.isEmpty() && search.category == 0 && search.page == 1;
    if (!onSale.auctions.isEmpty())
        content += cards(onSale.auctions) + pageLinks(onSale, search);
    else if (isPlain)
        content += QStringLiteral("<p class=\"panel\">Nothing is on auction at the moment.</p>\n");
    else
        content += QStringLiteral("<p class=\"panel\" id=\"nothing\">Nothing on auction fits "
                                  "this.</p>\n");
    if (!ended.isEmpty())
        content += QStringLiteral("<h2>Ended lately</h2>\n") + cards(ended);
    return page(QStringLiteral("Auctions"), content);
}

QByteArray PageWriter::auction(const Auctions::Auction &auction, const QList<Auctions::Bid> &bids,
                               const Notice &notice, const Fields &typed) const
{
    const QString description = auction.description.isEmpty()
        ? QString()
        : QStringLiteral("<div class=\"panel description\">%1</div>\n")
              .arg(auction.description.toHtmlEscaped());
    QString forms;
    if (auction.state == Auctions::Running)
        forms += bidForm(auction, typed);
    if (auction.isBuyable())
        forms += buyForm(auction, typed);
    const QString content =
        QStringLiteral("%1<h1>%2</h1>\n<p class=\"muted\">%3 &middot; offered by %4</p>\n"
                       "<div class=\"columns\"><div>\n%5</div><div class=\"side\">\n%6</div>"
                       "<div>\n%7%8%9</div></div>\n")
            .arg(noticeBox(notice), auction.title.toHtmlEscaped(),
                 categoryPath(auction.category).toHtmlEscaped(), auction.seller.toHtmlEscaped(),
                 mediaPanel(auction), factsPanel(auction) + forms, description, bidTable(bids),
                 questionForm(auction, typed));
    return page(auction.title, content);
}

QString PageWriter::formStart(const QString &action) const
{
    return QStringLiteral("<form method=\"post\" action=\"%1\">\n"
                          "<input type=\"hidden\" name=\"token\" value=\"%2\">\n")
        .arg(action, m_token);
}

QString PageWriter::bidForm(const Auctions::Auction &auction, const Fields &typed) const
{
    const QString amount =
        QStringLiteral("name=\"amount\" type=\"number\" min=\"%1\" max=\"%2\" step=\"1\"")
            .arg(auction.lowestNextBid())
            .arg(Auctions::maxPrice);
    return QStringLiteral("<div class=\"panel\"><strong>Place a bid</strong>\n")
        + formStart(QStringLiteral("/auction/bid")) + auctionInput(auction)
        + visitorInputs(QStringLiteral("bid"), typed)
        + input(QStringLiteral("bid-amount"),
                QStringLiteral("Your bid, at least %1").arg(usd(auction.lowestNextBid())), amount,
                typed.text(QStringLiteral("amount")))
        + button(QStringLiteral("bid-submit"), QStringLiteral("Place bid"))
        + QStringLiteral("</div>\n");
}

QString PageWriter::buyForm(const Auctions::Auction &auction, const Fields &typed) const
{
    return QStringLiteral("<div class=\"panel\"><strong>Buy it now for %1</strong>\n")
               .arg(usd(auction.buyPrice))
        + formStart(QStringLiteral("/auction/buy")) + auctionInput(auction)
        + visitorInputs(QStringLiteral("buy"), typed)
        + button(QStringLiteral("buy-submit"), QStringLiteral("Buy it now"))
        + QStringLiteral("</div>\n");
}

QString PageWriter::questionForm(const Auctions::Auction &auction, const Fields &typed) const
{
    return QStringLiteral("<div class=\"panel\"><strong>Ask the seller a question</strong>\n")
        + formStart(QStringLiteral("/auction/question")) + auctionInput(auction)
        + visitorInputs(QStringLiteral("ask"), typed)
        + QStringLiteral("<label for=\"ask-text\">Your question</label>\n<textarea id=\"ask-text\" "
                         "name=\"question\" rows=\"3\" maxlength=\"2000\" required>%1</textarea>\n")
              .arg(typed.text(QStringLiteral("question")).toHtmlEscaped())
        + button(QStringLiteral("ask-submit"), QStringLiteral("Send question"))
        + QStringLiteral("</div>\n");
}

QByteArray PageWriter::outbox(const QList<MailOutbox::Mail> &mails, const QString &ownAddress) const
{
    QString content =
        QStringLiteral("<h1>Mails</h1>\n<p class=\"muted\">What the service would have "
                       "sent, the newest first.</p>\n");
    if (mails.isEmpty())
        content += QStringLiteral("<p class=\"panel\">No mail has been written yet.</p>\n");
    const LocalClock clock;
    for (const MailOutbox::Mail &mail : mails) {
        content +=
            QStringLiteral("<div class=\"panel mail\"><strong>%1</strong>\n"
                           "<div class=\"muted\">To %2 &middot; %3</div>\n<pre>%4</pre></div>\n")
                .arg(mail.subject.toHtmlEscaped(), mail.recipient.toHtmlEscaped(),
                     minuteText(clock, mail.written), mailText(mail.body, ownAddress));
    }
    return page(QStringLiteral("Mails"), content);
}

QByteArray PageWriter::forgottenPassword(const Notice &notice) const
{
    const QString content =
        QStringLiteral("<div class=\"narrow\">%1<div class=\"panel\">\n"
                       "<h1>Forgotten your password?</h1>\n<p>We mail you a link with which you "
                       "choose a new one.</p>\n%2%3%4</div></div>\n")
            .arg(noticeBox(notice), formStart(QStringLiteral("/index.php?do=forgotpass")),
                 input(
                     QStringLiteral("member"), QStringLiteral("User name or e-mail address"),
                     QStringLiteral("name=\"member\" maxlength=\"100\" autocomplete=\"username\"")),
                 button(QStringLiteral("member-submit"), QStringLiteral("Send me the link")));
    return page(QStringLiteral("Forgotten password"), content);
}

QByteArray PageWriter::newPassword(const QByteArray &secret, const Notice &notice) const
{
    const QString attributes = QStringLiteral(
        "name=\"%1\" type=\"password\" maxlength=\"100\" autocomplete=\"new-password\"");
    const QString content =
        QStringLiteral(
            "<div class=\"narrow\">%1<div class=\"panel\">\n<h1>Choose a new password</h1>\n"
            "%2<input type=\"hidden\" name=\"secret\" value=\"%3\">\n%4%5%6</div></div>\n")
            .arg(noticeBox(notice), formStart(QStringLiteral("/index.php?do=newpass")),
                 QString::fromLatin1(secret).toHtmlEscaped(),
                 input(QStringLiteral("password1"), QStringLiteral("New password"),
                       attributes.arg(QStringLiteral("password1"))),
                 input(QStringLiteral("password2"), QStringLiteral("The same again"),
                       attributes.arg(QStringLiteral("password2"))),
                 button(QStringLiteral("password-submit"), QStringLiteral("Set password")));
    return page(QStringLiteral("New password"), content);
}

QByteArray PageWriter::message(const QString &title, const QString &text) const
{
    return page(title,
                QStringLiteral("<div class=\"panel narrow\"><h1>%1</h1><p id=\"message\">%2</p>"
                               "<p><a href=\"/\">To the auctions</a></p></div>\n")
                    .arg(title.toHtmlEscaped(), text.toHtmlEscaped()));
}
