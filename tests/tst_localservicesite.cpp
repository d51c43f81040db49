// SPDX-License-Identifier: MIT

#include "contrast.h"
#include "localserviceprocess.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadrequest.h"
#include "webvisitor.h"

#include <QProcess>
#include <QRegularExpression>
#include <QSet>

class tst_LocalServiceSite : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void pagesCarrySecurityHeaders_data();
    void pagesCarrySecurityHeaders();
    void unknownPagesAreNotFound_data();
    void unknownPagesAreNotFound();
    void otherHostNamesAreRefused_data();
    void otherHostNamesAreRefused();
    void theFrontPageIsPaged();
    void aPageIsFoundByAnIndex_data();
    void aPageIsFoundByAnIndex();
    void visitorsSearchByWordsAndCategory_data();
    void visitorsSearchByWordsAndCategory();
    void theBidFormComesBeforeTheQuestion();
    void everyTextCanBeRead_data();
    void everyTextCanBeRead();
    void pagesAreValidHtml_data();
    void pagesAreValidHtml();
    void everyTextIsEscaped();
    void anAuctionsPageCountsAView();
    void bidsAreTaken();
    void bidsRefused_data();
    void bidsRefused();
    void buyingNowSells();
    void anAuctionEndsSoldOrUnsold_data();
    void anAuctionEndsSoldOrUnsold();
    void forgedPostsAreRefused_data();
    void forgedPostsAreRefused();
    void sellersGetTheMailsTheyChose();
    void mediaIsServedInParts();

    void aForgottenPasswordIsReplacedOnce();
    void passwordLinksTellNobodyWhoIsAMember();
    void badNewPasswordsAreRefused_data();
    void badNewPasswordsAreRefused();
    void oldPasswordLinksAreRefused();

private:
    qint64 newAuction(const UploadRequest &upload = {}) const;
    QString state(qint64 auction) const;
    QStringList mailSubjects() const;
    QByteArray newestLink() const;
    QByteArray askForLink(const QByteArray &member);

    LocalServiceProcess m_service;
};

void tst_LocalServiceSite::initTestCase()
{
    QVERIFY(m_service.start());
    QCOMPARE(m_service
                 .post("CreateAccount",
                       "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org")
                 .body,
             QByteArray("1"));
}

void tst_LocalServiceSite::cleanupTestCase()
{
    QCOMPARE(m_service.terminate(), 0);
    QCOMPARE(m_service.complaints(), QByteArray());
}

qint64 tst_LocalServiceSite::newAuction(const UploadRequest &upload) const
{
    return m_service.send(upload.bytes(m_service.host())).body.toLongLong();
}

QString tst_LocalServiceSite::state(qint64 auction) const
{
    return m_service.value(QStringLiteral("SELECT state FROM auctions WHERE id = ?"), {auction})
        .toString();
}

QStringList tst_LocalServiceSite::mailSubjects() const
{
    QStringList subjects;
    const QList<QVariantList> rows =
        m_service.query(QStringLiteral("SELECT subject FROM mails ORDER BY id"));
    for (const QVariantList &row : rows)
        subjects.append(row.first().toString());
    return subjects;
}

void tst_LocalServiceSite::pagesCarrySecurityHeaders_data()
{
    QTest::addColumn<QByteArray>("path");

    for (const char *path : {"/", "/outbox", "/index.php?do=forgotpass", "/nowhere"})
        QTest::newRow(path) << QByteArray(path);
}

void tst_LocalServiceSite::pagesCarrySecurityHeaders()
{
    QFETCH(QByteArray, path);

    const LocalServiceProcess::Reply reply = m_service.get(path);
    const QByteArray policy = LocalServiceProcess::headerValue(reply, "Content-Security-Policy");
    QVERIFY(policy.contains("default-src 'self'"));
    QVERIFY(policy.contains("script-src 'none'"));
    QVERIFY(policy.contains("frame-ancestors 'none'"));
    QCOMPARE(LocalServiceProcess::headerValue(reply, "X-Content-Type-Options"),
             QByteArray("nosniff"));
    const QByteArray cookie = LocalServiceProcess::headerValue(reply, "Set-Cookie");
    QVERIFY2(cookie.contains("HttpOnly") && cookie.contains("SameSite=Strict"), cookie.constData());
    QVERIFY(!reply.body.contains("<script"));
    QVERIFY(!reply.body.contains("http://") && !reply.body.contains("https://"));
}

void tst_LocalServiceSite::unknownPagesAreNotFound_data()
{
    QTest::addColumn<QByteArray>("path");

    for (const char *path :
         {"/nowhere", "/auction", "/auction?id=999999", "/auction?id=-1",
          "/auction?id=1%20OR%201=1", "/thumbnail?id=999999", "/media?id=999999",
          "/media?id=../service.sqlite", "/index.php", "/index.php?do=newpass&secret=0123",
          "/tolvex/GetMyAuctions/", "/../service.sqlite"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void tst_LocalServiceSite::unknownPagesAreNotFound()
{
    QFETCH(QByteArray, path);

    QCOMPARE(m_service.get(path).status, 404);
}

void tst_LocalServiceSite::otherHostNamesAreRefused_data()
{
    QTest::addColumn<QByteArray>("host"); // the port is put in for %1
    QTest::addColumn<QByteArray>("origin");
    QTest::addColumn<bool>("isOwn");

    const auto row = [](const char *host, const char *origin, bool isOwn) {
        QTest::addRow("%s from '%s'", host, origin)
            << QByteArray(host) << QByteArray(origin) << isOwn;
    };
    row("localhost:%1", "", true);
    row("127.0.0.1:%1", "", true);
    row("localhost:%1", "http://localhost:%1", true);
    row("auctions.example.org", "", false);
    row("auctions.example.org:%1", "", false);
    row("localhost.example.org:%1", "", false);
    row("localhost:%1@example.org", "", false);
    row("localhost:80@example.org", "", false);
    row("localhost:1", "", false);
    row("localhost", "", false);
    row("localhost:", "", false);
    row("localhost:%1\r\nHost: example.org", "", false);
    row("", "", false);
    row("localhost:%1", "http://example.org", false);
    row("localhost:%1", "http://localhost:1", false);
    row("localhost:%1", "https://localhost:%1", false);
    row("localhost:%1", "null", false);
}

void tst_LocalServiceSite::otherHostNamesAreRefused()
{
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, origin);
    QFETCH(bool, isOwn);

    const QByteArray port = QByteArray::number(m_service.port());
    QByteArray lines = "Host: " + host + "\r\n";
    if (!origin.isEmpty())
        lines += "Origin: " + origin + "\r\n";
    lines.replace("%1", port);

    const auto members = [this] {
        return m_service.value(QStringLiteral("SELECT count(*) FROM members")).toInt();
    };
    const int before = members();
    QCOMPARE(m_service.send("GET /outbox HTTP/1.1\r\n" + lines + "\r\n").status, isOwn ? 200 : 403);
    const QByteArray form = "Username=h" + QByteArray::number(before)
        + "&Password1=x&Password2=x&EmailAddress=x@example.org";
    const LocalServiceProcess::Reply reply =
        m_service.send("POST /tolvex/CreateAccount/ HTTP/1.1\r\n" + lines
                       + "Content-Length: " + QByteArray::number(form.size()) + "\r\n\r\n" + form);
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.body.startsWith("ERROR: "), !isOwn);
    QCOMPARE(members(), before + (isOwn ? 1 : 0));
}

void tst_LocalServiceSite::theFrontPageIsPaged()
{
    LocalServiceProcess service;
    QVERIFY(service.start());
    QVERIFY(service
                .post("CreateAccount",
                      "Username=m1&Password1=x&Password2=x&EmailAddress=m1@example.org")
                .body.toInt()
            > 0);
    // The worst that a title can be.
    service.execute(QStringLiteral(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000)"
        " INSERT INTO auctions (member, category, title, description, captured, media,"
        " start_price, reserve_price, buy_price, created, ends, state) SELECT 1, 400,"
        " replace(hex(zeroblob(250)), '0', '\"'), '', '', i || '.jpg', 1, 0, 0, 1,"
        " 4000000000 + i, CASE i % 10 WHEN 0 THEN 'sold' ELSE 'running' END FROM n"));
    WebVisitor visitor(service);
    QByteArray path = "/";
    QSet<QString> seen;
    static const QRegularExpression card(QStringLiteral("class=\"card\" href=\"([^\"]+)\""));
    static const QRegularExpression next(QStringLiteral("rel=\"next\" href=\"([^\"]+)\""));
    for (int page = 1; page <= 3; ++page) {
        const LocalServiceProcess::Reply reply = visitor.open(path);
        QCOMPARE(reply.status, 200);
        QVERIFY2(reply.body.size() < 200000, QByteArray::number(reply.body.size()));
        const QString html = QString::fromUtf8(reply.body);
        QRegularExpressionMatchIterator cards =
            card.globalMatch(html.section(QStringLiteral("Ended lately"), 0, 0));
        while (cards.hasNext())
            seen.insert(cards.next().captured(1));
        QCOMPARE(seen.size(), page * 24);
        QCOMPARE(html.contains(QStringLiteral("Ended lately")), page == 1);
        QCOMPARE(html.contains(QStringLiteral("rel=\"prev\"")), page > 1);
        path = next.match(html)
                   .captured(1)
                   .replace(QStringLiteral("&amp;"), QStringLiteral("&"))
                   .toLatin1();
    }
    const QByteArray last = visitor.open("/?page=375").body;
    QVERIFY(last.contains("class=\"card\"") && !last.contains("rel=\"next\""));
    QVERIFY(visitor.open("/?page=376").body.contains("id=\"nothing\""));
    for (const char *odd : {"/?page=0", "/?page=-1", "/?page=x", "/?page=99999999999999999999"})
        QVERIFY(visitor.open(odd).body.contains("Page 1<"));
}

void tst_LocalServiceSite::aPageIsFoundByAnIndex_data()
{
    QTest::addColumn<QString>("conditions");
    QTest::addColumn<QString>("index");

    QTest::newRow("on sale") << QStringLiteral("state = 'running' ORDER BY ends, id")
                             << QStringLiteral("auctions_by_end");
    QTest::newRow("sold") << QStringLiteral("state = 'sold' ORDER BY ends DESC, id DESC")
                          << QStringLiteral("auctions_by_end");
    QTest::newRow("due") << QStringLiteral("state = 'running' AND ends <= 1")
                         << QStringLiteral("auctions_by_end");
    QTest::newRow("a category") << QStringLiteral(
        "state = 'running' AND category = 400 ORDER BY ends, id")
                                << QStringLiteral("auctions_by_category");
}

void tst_LocalServiceSite::aPageIsFoundByAnIndex()
{
    QFETCH(QString, conditions);
    QFETCH(QString, index);

    const QList<QVariantList> steps = m_service.query(
        QStringLiteral("EXPLAIN QUERY PLAN SELECT id FROM auctions WHERE %1 LIMIT 25")
            .arg(conditions));
    QCOMPARE(steps.size(), 1); // nothing is sorted afterwards
    QVERIFY2(
        steps.first().at(3).toString().contains(QStringLiteral("USING COVERING INDEX ") + index),
        qPrintable(steps.first().at(3).toString()));
}

void tst_LocalServiceSite::visitorsSearchByWordsAndCategory_data()
{
    QTest::addColumn<QByteArray>("search");
    QTest::addColumn<QByteArrayList>("found");

    const QByteArray goal = "Goal in Z\xc3\xbcrich";
    const QByteArray snow = "Snow on the roofs";
    const auto row = [](const char *search, const QByteArrayList &found) {
        QTest::newRow(search) << QByteArray(search) << found;
    };
    row("words=z%C3%BCrich", {goal});
    row("words=ZURICH", {goal});
    row("words=zur", {goal});
    row("words=rich", {});
    row("words=roofs+snow", {snow});
    row("words=snow+goal", {});
    row("words=evening", {goal, snow});
    row("words=evening&category=4", {goal});
    row("words=evening&category=400", {goal});
    row("words=evening&category=22", {snow});
    row("words=evening&category=5", {});
    row("words=evening&category=0", {goal, snow});
    row("words=evening&category=x", {goal, snow});
    row("words=%22+OR+1", {});
    row("words=title%3Asnow", {});
    row("words=snow*", {snow});
    row("words=%27%22%28%29", {});
}

void tst_LocalServiceSite::visitorsSearchByWordsAndCategory()
{
    QFETCH(QByteArray, search);
    QFETCH(QByteArrayList, found);

    if (m_service.value(QStringLiteral("SELECT count(*) FROM auctions WHERE title LIKE 'Snow%'"))
            .toInt()
        == 0) {
        UploadRequest upload;
        upload.set("Description", "Goal in Z\xfcrich");
        upload.set("LongDescription", "On an evening.");
        newAuction(upload);
        upload.set("Description", "Snow on the roofs");
        upload.set("CategoryID", "222");
        newAuction(upload);
    }
    const LocalServiceProcess::Reply reply = m_service.get("/?" + search);
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.body.count("class=\"card\""), found.size());
    for (const QByteArray &title : found)
        QVERIFY2(reply.body.contains(title), title.constData());
    QCOMPARE(reply.body.contains("id=\"nothing\""), found.isEmpty());
}

void tst_LocalServiceSite::theBidFormComesBeforeTheQuestion()
{
    const QByteArray page = m_service.get("/auction?id=" + QByteArray::number(newAuction())).body;
    const qsizetype bid = page.indexOf("id=\"bid-submit\"");
    QVERIFY(bid > 0 && bid < page.indexOf("id=\"ask-submit\""));
    // On a narrow screen they stand below each other as they are written.
    QVERIFY(page.contains("@media(max-width:800px){.columns"));
}

void tst_LocalServiceSite::everyTextCanBeRead_data()
{
    QTest::addColumn<QString>("text");       // whose colour
    QTest::addColumn<QString>("background"); // on whose

    const auto row = [](const char *text, const char *background) {
        QTest::addRow("%s on %s", text, background)
            << QString::fromLatin1(text) << QString::fromLatin1(background);
    };
    row("body", "body");
    row("body", ".panel");
    row("a", "body");
    row("a", ".panel");
    row("header", "header");
    row("header a", "header");
    row(".muted,footer", "body");
    row(".muted,footer", ".panel");
    row(".card .title", ".card");
    row(".badge", ".badge");
    row(".badge.good", ".badge.good");
    row(".badge.sold", ".badge.sold");
    row(".notice", ".notice");
    row(".notice.error", ".notice.error");
    row("button", "button");
    row("button:hover", "button");
}

void tst_LocalServiceSite::everyTextCanBeRead()
{
    QFETCH(QString, text);
    QFETCH(QString, background);

    const QString page = QString::fromUtf8(m_service.get("/").body);
    // The colours of a rule's property, both ends of a gradient.
    const auto colours = [&page](const QString &selector, const QString &property) {
        const QRegularExpression rule(
            QStringLiteral("\\n%1\\{([^}]*)\\}").arg(QRegularExpression::escape(selector)));
        QList<QColor> found;
        const QStringList declarations = rule.match(page).captured(1).split(QLatin1Char(';'));
        for (const QString &declaration : declarations) {
            static const QRegularExpression colour(QStringLiteral("#[0-9a-f]+"));
            if (declaration.trimmed().section(QLatin1Char(':'), 0, 0) != property)
                continue;
            QRegularExpressionMatchIterator all = colour.globalMatch(declaration);
            while (all.hasNext())
                found.append(QColor(all.next().captured()));
        }
        return found;
    };
    const QList<QColor> above = colours(text, QStringLiteral("color"));
    const QList<QColor> below = colours(background, QStringLiteral("background"));
    QVERIFY2(!above.isEmpty() && !below.isEmpty(), qPrintable(text + background));
    for (const QColor &one : above) {
        for (const QColor &other : below)
            QVERIFY2(contrast(one, other) >= 4.5, qPrintable(one.name() + other.name()));
    }
}

void tst_LocalServiceSite::pagesAreValidHtml_data()
{
    QTest::addColumn<QByteArray>("path");

    for (const char *path :
         {"/", "/?words=%22x%22%26&category=400", "/?page=9", "/auction?id=1", "/outbox",
          "/index.php?do=forgotpass", "/index.php?do=newpass&secret=0", "/nowhere"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void tst_LocalServiceSite::pagesAreValidHtml()
{
    QFETCH(QByteArray, path);

    UploadRequest upload;
    upload.set("Description", "\"<Goal> & 'win'");
    upload.set("BuyItNowPrice", "50");
    const qint64 id = newAuction(upload);
    WebVisitor(m_service).bid(id, 7);
    if (path.startsWith("/auction"))
        path = "/auction?id=" + QByteArray::number(id);
    QProcess tidy;
    tidy.start(QStringLiteral("tidy"),
               {QStringLiteral("-quiet"), QStringLiteral("-errors"), QStringLiteral("-utf8")});
    QVERIFY2(tidy.waitForStarted(), "script/bootstrap installs tidy");
    tidy.write(m_service.get(path).body);
    tidy.closeWriteChannel();
    QVERIFY(tidy.waitForFinished());
    QCOMPARE(tidy.readAllStandardError(), QByteArray());
    QCOMPARE(tidy.exitCode(), 0);
}

void tst_LocalServiceSite::everyTextIsEscaped()
{
    const QByteArray evil = "<script>alert('1')</script>\"onload=\"x";
    UploadRequest upload;
    upload.set("Description", evil + " title");
    upload.set("LongDescription", evil + " text %1 %2");
    const qint64 id = newAuction(upload);
    WebVisitor visitor(m_service);
    const QByteArray page = "/auction?id=" + QByteArray::number(id);
    visitor.open(page);
    const WebVisitor::Form form{{"id", QByteArray::number(id)},
                                {"name", evil},
                                {"email", "ines@example.org"},
                                {"amount", "7"},
                                {"question", evil + " question"}};
    QCOMPARE(visitor.submit("/auction/bid", form).status, 303);
    QCOMPARE(visitor.submit("/auction/question", form).status, 303);

    const LocalServiceProcess::Reply typedAgain = visitor.submit("/auction/bid", form);
    QCOMPARE(typedAgain.status, 422);
    for (const QByteArray &body : {visitor.open("/").body, visitor.open(page).body,
                                   visitor.open("/outbox").body, typedAgain.body}) {
        QVERIFY(body.contains("&lt;script&gt;alert("));
        QVERIFY(!body.contains("<script"));
        QVERIFY(!body.contains("\"onload=\""));
    }
    QVERIFY(visitor.open(page).body.contains("text %1 %2"));
}

void tst_LocalServiceSite::anAuctionsPageCountsAView()
{
    const qint64 id = newAuction();
    const QByteArray page = "/auction?id=" + QByteArray::number(id);
    const auto views = [this, id] {
        return m_service.value(QStringLiteral("SELECT views FROM auctions WHERE id = ?"), {id})
            .toInt();
    };
    WebVisitor visitor(m_service);
    visitor.open(page);
    visitor.open(page);
    QCOMPARE(views(), 2);
    visitor.open("/");
    visitor.open("/thumbnail?id=" + QByteArray::number(id));
    visitor.open(page + "&done=bid");
    m_service.send("HEAD " + page + " HTTP/1.1\r\nHost: " + m_service.host().toLatin1()
                   + "\r\n\r\n");
    QCOMPARE(views(), 2);
}

void tst_LocalServiceSite::bidsAreTaken()
{
    const qint64 id = newAuction();
    WebVisitor visitor(m_service);
    const LocalServiceProcess::Reply reply = visitor.bid(id, 5);
    QCOMPARE(reply.status, 303);
    const QByteArray back = LocalServiceProcess::headerValue(reply, "Location");
    QCOMPARE(back, "/auction?id=" + QByteArray::number(id) + "&done=bid");
    const QByteArray page = visitor.open(back).body;
    QVERIFY(page.contains("your bid has been placed"));
    QVERIFY(page.contains("USD 5"));
    QCOMPARE(visitor.bid(id, 5).status, 422);
    QCOMPARE(visitor.bid(id, 6).status, 303);
    QCOMPARE(
        m_service.query(QStringLiteral("SELECT bidder, email, amount FROM bids WHERE auction = ?"
                                       " ORDER BY id"),
                        {id}),
        (QList<QVariantList>{{QStringLiteral("Ines"), QStringLiteral("ines@example.org"), 5},
                             {QStringLiteral("Ines"), QStringLiteral("ines@example.org"), 6}}));
}

void tst_LocalServiceSite::bidsRefused_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("says");

    const auto row = [](const char *name, const QByteArray &field, const QByteArray &value,
                        const QByteArray &says) { QTest::newRow(name) << field << value << says; };
    row("below the start", "amount", "4", "at least USD 5");
    row("no amount", "amount", "", "at least USD 5");
    row("cents", "amount", "7.50", "whole US dollars");
    row("negative", "amount", "-7", "at least USD 5");
    row("beyond all prices", "amount", "1000000000", "at least USD 5");
    row("no name", "name", "", "your name");
    row("blank name", "name", "  ", "your name");
    row("name too long", "name", QByteArray(101, 'n'), "your name");
    row("no e-mail", "email", "", "e-mail address");
    row("no e-mail address", "email", "ines", "e-mail address");
    row("two lines of e-mail", "email", "a@b\nBcc: c@d", "e-mail address");
}

void tst_LocalServiceSite::bidsRefused()
{
    QFETCH(QByteArray, field);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, says);

    const qint64 id = newAuction();
    WebVisitor visitor(m_service);
    visitor.open("/auction?id=" + QByteArray::number(id));
    WebVisitor::Form form{{"id", QByteArray::number(id)},
                          {"name", "Ines"},
                          {"email", "ines@example.org"},
                          {"amount", "7"}};
    for (auto &pair : form) {
        if (pair.first == field)
            pair.second = value;
    }
    const LocalServiceProcess::Reply reply = visitor.submit("/auction/bid", form);
    QCOMPARE(reply.status, 422);
    QVERIFY2(reply.body.contains(says), reply.body.constData());
    QCOMPARE(m_service.value(QStringLiteral("SELECT count(*) FROM bids WHERE auction = ?"), {id})
                 .toInt(),
             0);
}

void tst_LocalServiceSite::buyingNowSells()
{
    UploadRequest upload;
    upload.set("BuyItNowPrice", "50");
    const qint64 id = newAuction(upload);
    const QByteArray page = "/auction?id=" + QByteArray::number(id);
    WebVisitor visitor(m_service);
    QVERIFY(visitor.open(page).body.contains("id=\"buy-submit\""));
    QCOMPARE(visitor.buy(id).status, 303);
    QCOMPARE(state(id), QStringLiteral("sold"));

    const QByteArray sold = visitor.open(page).body;
    QVERIFY(sold.contains("badge sold"));
    QVERIFY(!sold.contains("id=\"buy-submit\"") && !sold.contains("id=\"bid-submit\""));
    QCOMPARE(visitor.buy(id).status, 422);
    QCOMPARE(visitor.bid(id, 100).status, 422);

    // Not offered without a price, and no more once a bid has reached it.
    const qint64 priceless = newAuction();
    QVERIFY(
        !visitor.open("/auction?id=" + QByteArray::number(priceless)).body.contains("buy-submit"));
    QCOMPARE(visitor.buy(priceless).status, 422);
    const qint64 overtaken = newAuction(upload);
    QCOMPARE(visitor.bid(overtaken, 50).status, 303);
    QCOMPARE(visitor.buy(overtaken).status, 422);
    QCOMPARE(state(overtaken), QStringLiteral("running"));
}

void tst_LocalServiceSite::anAuctionEndsSoldOrUnsold_data()
{
    QTest::addColumn<QByteArray>("reserve");
    QTest::addColumn<int>("bid");
    QTest::addColumn<QString>("ending");

    QTest::newRow("no bid") << QByteArray("1") << 0 << "unsold";
    QTest::newRow("a bid and no reserve") << QByteArray("1") << 5 << "sold";
    QTest::newRow("below the reserve") << QByteArray("20") << 19 << "unsold";
    QTest::newRow("reserve met") << QByteArray("20") << 20 << "sold";
}

void tst_LocalServiceSite::anAuctionEndsSoldOrUnsold()
{
    QFETCH(QByteArray, reserve);
    QFETCH(int, bid);
    QFETCH(QString, ending);

    UploadRequest upload;
    upload.set("ReservePrice", reserve);
    const qint64 id = newAuction(upload);
    WebVisitor visitor(m_service);
    if (bid > 0)
        QCOMPARE(visitor.bid(id, bid).status, 303);
    m_service.execute(QStringLiteral("UPDATE auctions SET ends = 1 WHERE id = ?"), {id});
    visitor.open("/");
    QCOMPARE(state(id), ending);
    QCOMPARE(m_service.value(QStringLiteral("SELECT sold_price FROM auctions WHERE id = ?"), {id})
                 .toInt(),
             ending == QLatin1String("sold") ? bid : 0);
    const QByteArray page = visitor.open("/auction?id=" + QByteArray::number(id)).body;
    QCOMPARE(page.contains("badge sold"), ending == QLatin1String("sold"));
    QCOMPARE(visitor.bid(id, 100).status, 422);
}

void tst_LocalServiceSite::forgedPostsAreRefused_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("token"); // "own" = the visitor's
    QTest::addColumn<bool>("hasCookie");
    QTest::addColumn<QByteArray>("origin");

    for (const char *path :
         {"/auction/bid", "/auction/buy", "/auction/question", "/index.php?do=forgotpass"}) {
        QTest::addRow("no token: %s", path)
            << QByteArray(path) << QByteArray() << true << QByteArray();
        QTest::addRow("guessed token: %s", path)
            << QByteArray(path) << QByteArray(64, '0') << true << QByteArray();
        QTest::addRow("no cookie: %s", path)
            << QByteArray(path) << QByteArray("own") << false << QByteArray();
        QTest::addRow("other site: %s", path)
            << QByteArray(path) << QByteArray("own") << true << QByteArray("http://example.org");
        QTest::addRow("site without a name: %s", path)
            << QByteArray(path) << QByteArray("own") << true << QByteArray("null");
        QTest::addRow("other port: %s", path)
            << QByteArray(path) << QByteArray("own") << true << QByteArray("http://localhost:1");
    }
}

void tst_LocalServiceSite::forgedPostsAreRefused()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, token);
    QFETCH(bool, hasCookie);
    QFETCH(QByteArray, origin);

    UploadRequest upload;
    upload.set("BuyItNowPrice", "50");
    const qint64 id = newAuction(upload);
    WebVisitor visitor(m_service);
    visitor.open("/auction?id=" + QByteArray::number(id));
    const int mails = int(mailSubjects().size());
    const QByteArray body = "id=" + QByteArray::number(id)
        + "&name=Ines&email=ines@example.org&amount=7&question=What&member=m1&token="
        + (token == "own" ? visitor.token() : token);
    const QByteArray originLine = origin.isEmpty() ? QByteArray() : "Origin: " + origin + "\r\n";
    WebVisitor stranger(m_service);
    const LocalServiceProcess::Reply reply =
        (hasCookie ? visitor : stranger).post(path, body, originLine);
    QCOMPARE(reply.status, 403);
    QCOMPARE(state(id), QStringLiteral("running"));
    QCOMPARE(m_service.value(QStringLiteral("SELECT count(*) FROM bids WHERE auction = ?"), {id})
                 .toInt(),
             0);
    QCOMPARE(int(mailSubjects().size()), mails);

    // The very same post from the site's own page is heeded.
    const QByteArray ownOrigin =
        "Origin: http://localhost:" + QByteArray::number(m_service.port()) + "\r\n";
    const QByteArray ownBody = body.left(body.lastIndexOf('=') + 1) + visitor.token();
    QVERIFY(visitor.post(path, ownBody, ownOrigin).status < 400);
}

void tst_LocalServiceSite::sellersGetTheMailsTheyChose()
{
    const auto choose = [this](const QByteArray &flag) {
        return m_service
            .post("SetNotificationOptions",
                  "Username=m1&Password=secret&NotifyOnBid=" + flag + "&NotifyOnAuctionEnd=" + flag
                      + "&NotifyOnView=" + flag + "&NotifyOnBuyerQuestion=" + flag)
            .body;
    };
    UploadRequest upload;
    upload.set("BuyItNowPrice", "50");
    const auto visit = [this, &upload] {
        const qint64 id = newAuction(upload);
        WebVisitor visitor(m_service);
        visitor.bid(id, 7);
        visitor.submit("/auction/question",
                       {{"id", QByteArray::number(id)},
                        {"name", "Ines"},
                        {"email", "ines@example.org"},
                        {"question", "Which lens was it?"}});
        visitor.submit(
            "/auction/buy",
            {{"id", QByteArray::number(id)}, {"name", "Ines"}, {"email", "ines@example.org"}});
        return state(id);
    };
    m_service.execute(QStringLiteral("DELETE FROM mails"));
    QCOMPARE(choose("0"), QByteArray("1"));
    QCOMPARE(visit(), QStringLiteral("sold"));
    QCOMPARE(mailSubjects(), QStringList());

    QCOMPARE(choose("1"), QByteArray("1"));
    QCOMPARE(visit(), QStringLiteral("sold"));
    QCOMPARE(mailSubjects(),
             (QStringList{QStringLiteral("Your auction has been viewed"),
                          QStringLiteral("A bid on your auction"),
                          QStringLiteral("A question about your auction"),
                          QStringLiteral("Your auction is won")}));
    const QByteArray outbox = m_service.get("/outbox").body;
    QVERIFY(outbox.contains("To m1@example.org"));
    QVERIFY(outbox.contains("Which lens was it?"));
    QVERIFY(outbox.contains("Ines bids USD 7"));
    QVERIFY(outbox.contains("buys it for USD 50"));
}

void tst_LocalServiceSite::mediaIsServedInParts()
{
    UploadRequest upload;
    upload.mediaName = "1.mp4";
    upload.media = "0123456789";
    const QByteArray path = "/media?id=" + QByteArray::number(newAuction(upload));
    const LocalServiceProcess::Reply whole = m_service.get(path);
    QCOMPARE(whole.status, 200);
    QCOMPARE(whole.type, QByteArray("video/mp4"));
    QCOMPARE(whole.body, upload.media);
    const LocalServiceProcess::Reply part = m_service.get(path, "Range: bytes=3-5\r\n");
    QCOMPARE(part.status, 206);
    QCOMPARE(part.body, QByteArray("345"));
}

QByteArray tst_LocalServiceSite::askForLink(const QByteArray &member)
{
    WebVisitor visitor(m_service);
    visitor.open("/index.php?do=forgotpass");
    return visitor.submit("/index.php?do=forgotpass", {{"member", member}}).body;
}

// The path of the link in the newest mail.
QByteArray tst_LocalServiceSite::newestLink() const
{
    const QString mail =
        m_service.value(QStringLiteral("SELECT body FROM mails ORDER BY id DESC LIMIT 1"))
            .toString();
    static const QRegularExpression link(QStringLiteral("http://localhost:\\d+(/index\\.php\\S+)"));
    return link.match(mail).captured(1).toLatin1();
}

void tst_LocalServiceSite::aForgottenPasswordIsReplacedOnce()
{
    QVERIFY(m_service
                .post("CreateAccount",
                      "Username=f1&Password1=old&Password2=old&EmailAddress=f1@example.org")
                .body.toInt()
            > 0);
    for (const char *member : {"f1", "f1@example.org"}) {
        askForLink(member);
        const QByteArray link = newestLink();
        const QByteArray secret = link.mid(link.lastIndexOf('=') + 1);
        QCOMPARE(secret.size(), 32);
        QVERIFY(m_service
                    .query(QStringLiteral("SELECT 1 FROM password_links WHERE secret = ?"),
                           {QString::fromLatin1(secret)})
                    .isEmpty());

        WebVisitor visitor(m_service);
        QCOMPARE(visitor.open(link).status, 200);
        const WebVisitor::Form form{
            {"secret", secret}, {"password1", member}, {"password2", member}};
        QCOMPARE(visitor.submit("/index.php?do=newpass", form).status, 200);
        QCOMPARE(m_service.post("ValidateLogin", "Username=f1&Password=" + QByteArray(member)).body,
                 QByteArray("1"));
        QCOMPARE(m_service.post("ValidateLogin", "Username=f1&Password=old").body, QByteArray("0"));

        QCOMPARE(visitor.open(link).status, 404);
        const WebVisitor::Form again{{"secret", secret}, {"password1", "x"}, {"password2", "x"}};
        QCOMPARE(visitor.submit("/index.php?do=newpass", again).status, 422);
        QCOMPARE(m_service.post("ValidateLogin", "Username=f1&Password=x").body, QByteArray("0"));
    }
}

void tst_LocalServiceSite::passwordLinksTellNobodyWhoIsAMember()
{
    const int mails = int(mailSubjects().size());
    const QByteArray known = askForLink("m1");
    QCOMPARE(int(mailSubjects().size()), mails + 1);
    for (const char *stranger : {"nobody", "nobody@example.org", "", "' OR 1=1 --", "%"})
        QCOMPARE(askForLink(stranger), known);
    QCOMPARE(int(mailSubjects().size()), mails + 1);
}

void tst_LocalServiceSite::badNewPasswordsAreRefused_data()
{
    QTest::addColumn<QByteArray>("password1");
    QTest::addColumn<QByteArray>("password2");

    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("differ") << QByteArray("a") << QByteArray("b");
    QTest::newRow("too long") << QByteArray(101, 'p') << QByteArray(101, 'p');
}

void tst_LocalServiceSite::badNewPasswordsAreRefused()
{
    QFETCH(QByteArray, password1);
    QFETCH(QByteArray, password2);

    askForLink("m1");
    const QByteArray link = newestLink();
    const QByteArray secret = link.mid(link.lastIndexOf('=') + 1);
    WebVisitor visitor(m_service);
    visitor.open(link);
    const WebVisitor::Form form{
        {"secret", secret}, {"password1", password1}, {"password2", password2}};
    const LocalServiceProcess::Reply reply = visitor.submit("/index.php?do=newpass", form);
    QCOMPARE(reply.status, 422);
    QVERIFY(reply.body.contains("id=\"password-submit\""));
    QCOMPARE(m_service.post("ValidateLogin", "Username=m1&Password=secret").body, QByteArray("1"));
    QCOMPARE(visitor.open(link).status, 200);
}

void tst_LocalServiceSite::oldPasswordLinksAreRefused()
{
    askForLink("m1");
    const QByteArray link = newestLink();
    m_service.execute(QStringLiteral("UPDATE password_links SET expires = 1"));
    WebVisitor visitor(m_service);
    QCOMPARE(visitor.open(link).status, 404);
}

KAVLOR_TEST_MAIN(tst_LocalServiceSite)
#include "tst_localservicesite.moc"
