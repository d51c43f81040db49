// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"
#include "testcase.h"
#include "testmain.h"
#include "webbrowser.h"

#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>

class tst_LocalServiceWeb : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void theAuctionsOnSaleAreShownWithTheirPictures();
    void aVisitorBids();
    void aBidThatIsTooLowIsNotSent();
    void aVisitorBuys();
    void aVisitorAsksAndTheSellerIsMailed();
    void aMemberSetsANewPassword();
    void aPostFromAnotherSiteIsRefused();

private:
    QString address(const QString &path) const;
    /** Opens the page of the auction with this title by a click on its card. */
    void openAuction(const QString &title);
    QVariant stored(const char *column, const QString &title) const;

    LocalServiceProcess m_service;
    WebBrowser m_browser;
};

#define VERIFY_DONE(operation) QVERIFY2(m_browser.operation, qPrintable(m_browser.error()))

void tst_LocalServiceWeb::initTestCase()
{
    QVERIFY(m_service.start({QStringLiteral("--seed")}));
    VERIFY_DONE(start());
}

void tst_LocalServiceWeb::cleanupTestCase()
{
    QCOMPARE(m_service.terminate(), 0);
    QCOMPARE(m_service.complaints(), QByteArray());
}

QString tst_LocalServiceWeb::address(const QString &path) const
{
    return QStringLiteral("http://localhost:%1%2").arg(m_service.port()).arg(path);
}

QVariant tst_LocalServiceWeb::stored(const char *column, const QString &title) const
{
    return m_service.value(
        QStringLiteral("SELECT %1 FROM auctions WHERE title = ?").arg(QLatin1String(column)),
        {title});
}

void tst_LocalServiceWeb::openAuction(const QString &title)
{
    VERIFY_DONE(open(address(QStringLiteral("/"))));
    const QString id = stored("id", title).toString();
    VERIFY_DONE(click(QStringLiteral("a.card[href='/auction?id=%1']").arg(id)));
    QTRY_COMPARE(m_browser.text(QStringLiteral("h1")), title);
}

void tst_LocalServiceWeb::theAuctionsOnSaleAreShownWithTheirPictures()
{
    VERIFY_DONE(open(address(QStringLiteral("/"))));
    QCOMPARE(m_browser.title(), QStringLiteral("Auctions - kavlor"));
    QCOMPARE(
        m_browser.count(QStringLiteral(".cards:first-of-type .card")),
        m_service.value(QStringLiteral("SELECT count(*) FROM auctions WHERE state = 'running'"))
            .toInt());
    QCOMPARE(m_browser.imageWidth(QStringLiteral(".card img")), 480);
    // The policy of the page lets its own style in: without it a card has no background.
    const QImage picture = QImage::fromData(m_browser.screenshot());
    QVERIFY(picture.width() >= 1000);
    const QColor bar = picture.pixelColor(picture.width() / 2, 5);
    QVERIFY2(bar.green() > bar.red() + 40, qPrintable(bar.name()));
}

void tst_LocalServiceWeb::aVisitorBids()
{
    const QString title = QStringLiteral("First light on the north face");
    const int views = stored("views", title).toInt();
    openAuction(title);
    QTRY_COMPARE(m_browser.text(QStringLiteral("#price")), QStringLiteral("USD 42"));
    QCOMPARE(stored("views", title).toInt(), views + 1);

    VERIFY_DONE(type(QStringLiteral("#bid-name"), QStringLiteral("Ada <i>")));
    VERIFY_DONE(type(QStringLiteral("#bid-email"), QStringLiteral("ada@example.org")));
    VERIFY_DONE(type(QStringLiteral("#bid-amount"), QStringLiteral("95")));
    VERIFY_DONE(click(QStringLiteral("#bid-submit")));
    QTRY_COMPARE(m_browser.text(QStringLiteral("#notice")),
                 QStringLiteral("Thank you, your bid has been placed."));
    QTRY_COMPARE(m_browser.text(QStringLiteral("#price")), QStringLiteral("USD 95"));
    QTRY_COMPARE(m_browser.text(QStringLiteral(".badge")), QStringLiteral("Reserve met"));
    QTRY_COMPARE(m_browser.text(QStringLiteral("table tr:nth-child(2) td")),
                 QStringLiteral("Ada <i>"));
    QCOMPARE(m_service
                 .value(QStringLiteral("SELECT max(amount) FROM bids WHERE auction = ?"),
                        {stored("id", title)})
                 .toInt(),
             95);
}

void tst_LocalServiceWeb::aBidThatIsTooLowIsNotSent()
{
    const QString title = QStringLiteral("Lightning over the fields");
    openAuction(title);
    VERIFY_DONE(type(QStringLiteral("#bid-name"), QStringLiteral("Ada")));
    VERIFY_DONE(type(QStringLiteral("#bid-email"), QStringLiteral("ada@example.org")));
    VERIFY_DONE(type(QStringLiteral("#bid-amount"), QStringLiteral("47")));
    VERIFY_DONE(click(QStringLiteral("#bid-submit")));
    QCOMPARE(m_browser.count(QStringLiteral("#notice")), 0);
    QCOMPARE(m_browser.count(QStringLiteral("#bid-amount:invalid")), 1);
    QCOMPARE(m_service
                 .value(QStringLiteral("SELECT count(*) FROM bids WHERE auction = ?"),
                        {stored("id", title)})
                 .toInt(),
             4);
}

void tst_LocalServiceWeb::aVisitorBuys()
{
    const QString title = QStringLiteral("A small sail on the big blue");
    openAuction(title);
    VERIFY_DONE(type(QStringLiteral("#buy-name"), QStringLiteral("Ada")));
    VERIFY_DONE(type(QStringLiteral("#buy-email"), QStringLiteral("ada@example.org")));
    VERIFY_DONE(click(QStringLiteral("#buy-submit")));
    QTRY_COMPARE(m_browser.text(QStringLiteral("#notice")),
                 QStringLiteral("Thank you, it is yours."));
    QTRY_COMPARE(m_browser.text(QStringLiteral(".badge.sold")), QStringLiteral("Sold"));
    QCOMPARE(m_browser.count(QStringLiteral("#bid-submit, #buy-submit")), 0);
    QCOMPARE(stored("state", title).toString(), QStringLiteral("sold"));
    QCOMPARE(stored("sold_price", title).toInt(), 25);

    // The seller sees it as one that can no longer be changed.
    const QByteArray list = m_service.post("GetMyAuctions", "Username=demo&Password=demo").body;
    const qsizetype line = list.indexOf(title.toLatin1());
    QVERIFY(line > 0);
    QCOMPARE(list.mid(line, list.indexOf('\n', line) - line).split(',').value(6), QByteArray("1"));
}

void tst_LocalServiceWeb::aVisitorAsksAndTheSellerIsMailed()
{
    openAuction(QStringLiteral("Evening at the bay"));
    VERIFY_DONE(type(QStringLiteral("#ask-name"), QStringLiteral("Ada")));
    VERIFY_DONE(type(QStringLiteral("#ask-email"), QStringLiteral("ada@example.org")));
    VERIFY_DONE(type(QStringLiteral("#ask-text"), QStringLiteral("Which bay is this?")));
    VERIFY_DONE(click(QStringLiteral("#ask-submit")));
    QTRY_COMPARE(m_browser.text(QStringLiteral("#notice")),
                 QStringLiteral("Thank you, your question has been sent."));

    VERIFY_DONE(open(address(QStringLiteral("/outbox"))));
    QTRY_COMPARE(m_browser.text(QStringLiteral(".mail strong")),
                 QStringLiteral("A question about your auction"));
    QVERIFY(
        m_browser.text(QStringLiteral(".mail pre")).contains(QLatin1String("Which bay is this?")));
}

void tst_LocalServiceWeb::aMemberSetsANewPassword()
{
    VERIFY_DONE(open(address(QStringLiteral("/index.php?do=forgotpass"))));
    VERIFY_DONE(type(QStringLiteral("#member"), QStringLiteral("demo@example.org")));
    VERIFY_DONE(click(QStringLiteral("#member-submit")));
    QTRY_VERIFY(m_browser.text(QStringLiteral("#message")).contains(QLatin1String("on its way")));

    VERIFY_DONE(open(address(QStringLiteral("/outbox"))));
    VERIFY_DONE(click(QStringLiteral(".mail pre a")));
    QTRY_COMPARE(m_browser.count(QStringLiteral("#password1")), 1);
    VERIFY_DONE(type(QStringLiteral("#password1"), QStringLiteral("new one")));
    VERIFY_DONE(type(QStringLiteral("#password2"), QStringLiteral("new one")));
    VERIFY_DONE(click(QStringLiteral("#password-submit")));
    QTRY_COMPARE(m_browser.text(QStringLiteral("h1")), QStringLiteral("Your new password is set"));
    QCOMPARE(m_service.post("ValidateLogin", "Username=demo&Password=new%20one").body,
             QByteArray("1"));
    QCOMPARE(m_service.post("ValidateLogin", "Username=demo&Password=demo").body, QByteArray("0"));
}

void tst_LocalServiceWeb::aPostFromAnotherSiteIsRefused()
{
    const QString title = QStringLiteral("Evening at the bay");
    openAuction(title); // the visitor holds a cookie and a token
    const QString token =
        m_browser.attribute(QStringLiteral("input[name=token]"), QStringLiteral("value"));
    QVERIFY(token.size() > 20);

    // Another site's page with a form that posts here, even one that found out the token.
    QTcpServer otherSite;
    QVERIFY(otherSite.listen(QHostAddress::LocalHost));
    const QByteArray form = "<form method=post action=\""
        + address(QStringLiteral("/auction/bid")).toLatin1()
        + "\"><input name=id value=" + stored("id", title).toByteArray()
        + "><input name=name value=Eve><input name=email value=eve@example.org>"
          "<input name=amount value=99><input name=token value="
        + token.toLatin1() + "><button id=go>Go</button></form>";
    connect(&otherSite, &QTcpServer::newConnection, this, [&otherSite, form] {
        QTcpSocket *socket = otherSite.nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [socket, form] {
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n"
                          "Content-Length: "
                          + QByteArray::number(form.size()) + "\r\n\r\n" + form);
            socket->disconnectFromHost();
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    VERIFY_DONE(open(QStringLiteral("http://127.0.0.1:%1/").arg(otherSite.serverPort())));
    QTRY_COMPARE(m_browser.count(QStringLiteral("#go")), 1);
    VERIFY_DONE(click(QStringLiteral("#go")));
    QTRY_COMPARE(m_browser.text(QStringLiteral("h1")), QStringLiteral("Please try again"));
    QCOMPARE(
        m_service.value(QStringLiteral("SELECT count(*) FROM bids WHERE bidder = 'Eve'")).toInt(),
        0);
}

KAVLOR_TEST_MAIN(tst_LocalServiceWeb)
#include "tst_localserviceweb.moc"
