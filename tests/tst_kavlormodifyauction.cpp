// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "auctionrow.h"
#include "dialoganswers.h"
#include "kavlormodifyauction.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "resultlog.h"
#include "roomscale.h"
#include "scriptedservice.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "theme.h"

#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTimer>

namespace {

constexpr int auctionId = 4711;

CKavlorUser::Fields memberFields()
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = QStringLiteral("m1");
    fields[CKavlorUser::Password] = QStringLiteral("secret");
    return fields;
}

CAuctionRow runningAuction()
{
    CAuctionRow auction;
    auction.title = QStringLiteral("Sunset");
    auction.reservePrice = 30;
    auction.buyItNowPrice = 90;
    return auction;
}

QByteArray body(int reserve, int buyItNow)
{
    return "Username=m1&Password=secret&AuctionID=4711&ReservePrice=" + QByteArray::number(reserve)
        + "&BuyItNowPrice=" + QByteArray::number(buyItNow) + "&SUBMIT=Submit";
}

QString failureText(const QString &response, const QString &error)
{
    return QStringLiteral("One or more errors occured while updating auction.\n"
                          "Please find more info below.\n")
        + response + QLatin1Char('\n') + error;
}

} // namespace

class tst_KavlorModifyAuction : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formAsLaidOut();
    void valuesComeFromTheRow();
    void pricesOutsideTheRangeAreBroughtIntoIt();
    void thumbnailKeepsItsShape_data();
    void thumbnailKeepsItsShape();
    void thumbnailGrowsWithTheWindow_data();
    void thumbnailGrowsWithTheWindow();
    void thumbnailIsScaledFast();
    void withoutThumbnailTheTextStays();
    void aFinishedAuctionIsRefusedAtOnce();

    void newPricesAreSentAndReported();
    void bothPricesZeroAreSentAsZeroAndZero();
    void theHighestPricesAreSent();
    void noCheckBetweenThePrices();
    void secondPressWhileWaitingIsImpossible();
    void failureShowsTheReplyAboveTheError_data();
    void failureShowsTheReplyAboveTheError();
    void transportErrorIsAFailure();
    void afterAFailureThePricesCanBeCorrected();
    void aTimeOutIsAFailure();
    void theSecondResultOfATimeOutIsNoSuccess();
    void noConnectionIsAFailureAndTheButtonComesBack();
    void anEmptyReplyIsASuccess();
    void leftWhileTheSuccessBoxIsOpen();
    void leftWhileWaiting();

    void fits_data();
    void fits();
    void tabOrderIsReadingOrder();
    void namesForAssistiveTechnology();

private:
    void open(const CAuctionRow &auction = runningAuction());
    QSpinBox *reserve() const
    {
        return m_frame->findChild<QSpinBox *>(QStringLiteral("reservedPrice"));
    }
    QSpinBox *buyItNow() const
    {
        return m_frame->findChild<QSpinBox *>(QStringLiteral("buyItNowPrice"));
    }
    QPushButton *button() const
    {
        return m_frame->findChild<QPushButton *>(QStringLiteral("done"));
    }
    QLabel *label(const char *name) const
    {
        return m_frame->findChild<QLabel *>(QLatin1String(name));
    }
    static void type(QSpinBox *box, const QString &digits);
    void press();

    CKavlorUser m_user{nullptr, nullptr, true, memberFields()};
    std::unique_ptr<OnlineConnector> m_connector;
    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<DialogAnswers> m_dialogs;
    QWidget m_area;
    QPointer<CKavlorModifyAuction> m_frame;
};

void tst_KavlorModifyAuction::init()
{
    TestCase::init();
    m_connector = std::make_unique<OnlineConnector>();
    m_service = std::make_unique<ScriptedService>();
    m_dialogs = std::make_unique<DialogAnswers>();
    m_area.resize(800, 344);
    m_area.show();
}

void tst_KavlorModifyAuction::cleanup()
{
    delete m_frame;
    m_dialogs.reset();
    m_service.reset();
    m_connector.reset();
}

void tst_KavlorModifyAuction::open(const CAuctionRow &auction)
{
    m_frame = new CKavlorModifyAuction(&m_user, auctionId, auction, &m_area);
    m_frame->resize(m_area.size());
    m_frame->show();
}

void tst_KavlorModifyAuction::type(QSpinBox *box, const QString &digits)
{
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, digits);
    QTest::keyClick(box, Qt::Key_Tab);
}

void tst_KavlorModifyAuction::press()
{
    QTest::mouseClick(button(), Qt::LeftButton);
}

void tst_KavlorModifyAuction::formAsLaidOut()
{
    open();
    QCOMPARE(m_frame->windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(label("photoThumb")->text(), QStringLiteral("Image"));
    QCOMPARE(label("labelCaption")->text(), QStringLiteral("Set up new prices for your auction."));
    QCOMPARE(label("labelReservedPrice")->text(), QStringLiteral("New Reserved Price"));
    QCOMPARE(label("labelBuyItNow")->text(), QStringLiteral("New Buy It Now Price"));
    QCOMPARE(button()->text(), QStringLiteral("Set New Prices"));
    for (const QSpinBox *box : {reserve(), buyItNow()}) {
        QCOMPARE(box->prefix(), QStringLiteral("USD "));
        QCOMPARE(box->minimum(), 0);
        QCOMPARE(box->maximum(), 999999999);
    }
}

void tst_KavlorModifyAuction::valuesComeFromTheRow()
{
    open();
    QCOMPARE(reserve()->value(), 30);
    QCOMPARE(buyItNow()->value(), 90);
    QCOMPARE(reserve()->text(), QStringLiteral("USD 30"));
    QVERIFY(button()->isEnabled());
    QCOMPARE(m_service->requests().size(), 0);
}

void tst_KavlorModifyAuction::pricesOutsideTheRangeAreBroughtIntoIt()
{
    CAuctionRow auction = runningAuction();
    auction.reservePrice = -1;
    auction.buyItNowPrice = 2147483647;
    open(auction);
    QCOMPARE(reserve()->value(), 0);
    QCOMPARE(buyItNow()->value(), 999999999);
}

void tst_KavlorModifyAuction::thumbnailKeepsItsShape_data()
{
    QTest::addColumn<QSize>("received");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("wide") << QSize(220, 110) << QSize(176, 88);
    QTest::newRow("tall") << QSize(55, 220) << QSize(44, 176);
    QTest::newRow("smaller") << QSize(120, 90) << QSize(176, 132);
}

void tst_KavlorModifyAuction::thumbnailKeepsItsShape()
{
    QFETCH(QSize, received);
    QFETCH(QSize, shown);
    CAuctionRow auction = runningAuction();
    auction.thumbnail = QPixmap(received);
    auction.thumbnail.fill(Qt::green);
    open(auction);
    QCOMPARE(label("photoThumb")->size(), QSize(176, 176));
    const QPixmap picture = label("photoThumb")->pixmap();
    QCOMPARE(picture.size(), shown);
    QCOMPARE(picture.toImage().pixelColor(shown.width() / 2, shown.height() / 2),
             QColor(Qt::green));
}

void tst_KavlorModifyAuction::thumbnailGrowsWithTheWindow_data()
{
    QTest::addColumn<QSize>("window");
    QTest::addColumn<int>("side");
    QTest::newRow("handheld") << QSize(800, 424) << 176;
    QTest::newRow("desktop") << QSize(1640, 930) << 363;
    QTest::newRow("all of a large screen") << QSize(1920, 1080) << 426;
}

void tst_KavlorModifyAuction::thumbnailGrowsWithTheWindow()
{
    QFETCH(QSize, window);
    QFETCH(int, side);
    open();
    m_area.resize(window);
    QTRY_COMPARE(label("photoThumb")->size(), QSize(side, side));
}

// Its edges stay sharp.
void tst_KavlorModifyAuction::thumbnailIsScaledFast()
{
    QImage received(120, 90, QImage::Format_RGB32);
    received.fill(Qt::blue);
    QPainter(&received).fillRect(0, 0, 61, 47, Qt::red);
    CAuctionRow auction = runningAuction();
    auction.thumbnail = QPixmap::fromImage(received);
    open(auction);
    QCOMPARE(label("photoThumb")->pixmap().toImage().convertToFormat(received.format()),
             received.scaled(176, 176, Qt::KeepAspectRatio, Qt::FastTransformation));
}

void tst_KavlorModifyAuction::withoutThumbnailTheTextStays()
{
    open();
    QCOMPARE(label("photoThumb")->text(), QStringLiteral("Image"));
    QVERIFY(label("photoThumb")->pixmap().isNull());
}

void tst_KavlorModifyAuction::aFinishedAuctionIsRefusedAtOnce()
{
    CAuctionRow auction = runningAuction();
    auction.finished = true;
    open(auction);
    // The signal has come before anyone could listen; what is left does nothing.
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    QCOMPARE(reserve()->value(), 0);
    QCOMPARE(buyItNow()->value(), 0);
    press();
    QVERIFY(button()->isEnabled());
    QCOMPARE(done.size(), 0);
    QCOMPARE(m_service->requests().size(), 0);
}

void tst_KavlorModifyAuction::newPricesAreSentAndReported()
{
    m_service->expectHeld("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    type(reserve(), QStringLiteral("45"));
    type(buyItNow(), QStringLiteral("120"));
    press();
    QVERIFY(!button()->isEnabled());
    QTRY_VERIFY(m_service->isHolding());
    QCOMPARE(done.size(), 0);

    m_service->release();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(done.constFirst(), (QVariantList{auctionId, 45, 120}));
    QCOMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(m_dialogs->boxes().constFirst().text,
             QStringLiteral("Your auction has been updated successfully."));
    QVERIFY(button()->isEnabled());
    QCOMPARE(m_service->requests().constFirst().body, body(45, 120));
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorModifyAuction::bothPricesZeroAreSentAsZeroAndZero()
{
    m_service->expect("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    type(reserve(), QStringLiteral("0"));
    type(buyItNow(), QStringLiteral("0"));
    press();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(done.constFirst(), (QVariantList{auctionId, 0, 0}));
    QCOMPARE(m_service->requests().constFirst().body, body(0, 0));
}

void tst_KavlorModifyAuction::theHighestPricesAreSent()
{
    m_service->expect("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    type(reserve(), QStringLiteral("999999999"));
    type(buyItNow(), QStringLiteral("999999999"));
    press();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(m_service->requests().constFirst().body, body(999999999, 999999999));
}

void tst_KavlorModifyAuction::noCheckBetweenThePrices()
{
    m_service->expect("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    type(reserve(), QStringLiteral("500"));
    type(buyItNow(), QStringLiteral("1"));
    press();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(m_service->requests().constFirst().body, body(500, 1));
}

void tst_KavlorModifyAuction::secondPressWhileWaitingIsImpossible()
{
    m_service->expectHeld("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    press();
    press();
    QTest::mouseDClick(button(), Qt::LeftButton);
    QTRY_VERIFY(m_service->isHolding());
    press();
    QTest::keyClick(button(), Qt::Key_Space);
    m_service->release();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(m_service->requests().size(), 1);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorModifyAuction::failureShowsTheReplyAboveTheError_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("refusal") << QByteArray("ERROR: the reserve is below the start price");
    QTest::newRow("error further on") << QByteArray("well\nERROR");
    QTest::newRow("page of HTML") << QByteArray("<html><b>ERROR</b> %1 %2</html>");
}

void tst_KavlorModifyAuction::failureShowsTheReplyAboveTheError()
{
    QFETCH(QByteArray, reply);
    m_service->expect("ModifyAuction", reply);
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    press();
    QTRY_COMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(m_dialogs->boxes().constFirst().text,
             failureText(QString::fromLatin1(reply), QString()));
    QTRY_VERIFY(button()->isEnabled());
    QCOMPARE(done.size(), 0);
}

void tst_KavlorModifyAuction::transportErrorIsAFailure()
{
    ScriptedService::Step broken;
    broken.operation = "ModifyAuction";
    broken.bytes = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 100\r\n\r\npart";
    broken.then = ScriptedService::Close;
    m_service->expect(broken);
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    press();
    QTRY_COMPARE(m_dialogs->boxes().size(), 1);
    const QStringList lines = m_dialogs->boxes().constFirst().text.split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(2), QStringLiteral("part"));
    QVERIFY(!lines.at(3).isEmpty());
    QTRY_VERIFY(button()->isEnabled());
    QCOMPARE(done.size(), 0);
}

void tst_KavlorModifyAuction::afterAFailureThePricesCanBeCorrected()
{
    m_service->expect("ModifyAuction", "ERROR: too low");
    m_service->expect("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    type(reserve(), QStringLiteral("1"));
    press();
    QTRY_COMPARE(m_dialogs->boxes().size(), 1);
    QTRY_VERIFY(button()->isEnabled() && !QApplication::activeModalWidget());
    QCOMPARE(reserve()->value(), 1);
    type(reserve(), QStringLiteral("60"));
    press();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(done.constFirst(), (QVariantList{auctionId, 60, 90}));
    QCOMPARE(m_service->requests().constLast().body, body(60, 90));
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorModifyAuction::aTimeOutIsAFailure()
{
    testTimeConstants().formTimeout = 100;
    m_service->expectHeld("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    press();
    QTRY_COMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(m_dialogs->boxes().constFirst().text,
             failureText(QStringLiteral("ERROR:timeout"),
                         QStringLiteral("Unable to get a server response")));
    QTRY_VERIFY(button()->isEnabled());
    QCOMPARE(done.size(), 0);
}

void tst_KavlorModifyAuction::theSecondResultOfATimeOutIsNoSuccess()
{
    testTimeConstants().formTimeout = 100;
    m_service->expectHeld("ModifyAuction", "ERROR: too low");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    const ResultLog results(m_frame->findChild<CHttpTolvex *>());
    press();
    QTRY_COMPARE(m_dialogs->boxes().size(), 1);
    QTRY_VERIFY(button()->isEnabled());
    QTRY_VERIFY(m_service->isHolding());
    QVERIFY(m_service->release());
    QTRY_COMPARE(results.textAt(1), ResultLog::text(QString(), QString()));
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QCOMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(done.size(), 0);
}

void tst_KavlorModifyAuction::noConnectionIsAFailureAndTheButtonComesBack()
{
    m_connector.reset();
    testTimeConstants().connectionWait = 50;
    open();
    press();
    QTRY_COMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(m_dialogs->boxes().constFirst().text,
             failureText(QStringLiteral("ERROR:no connection"),
                         QStringLiteral("Unable to create a connection")));
    QTRY_VERIFY(button()->isEnabled());
    QCOMPARE(m_service->requests().size(), 0);
}

void tst_KavlorModifyAuction::anEmptyReplyIsASuccess()
{
    ScriptedService::Step refused;
    refused.operation = "ModifyAuction";
    refused.bytes = ScriptedService::reply("gone", "text/plain", "404 Not Found");
    m_service->expect(refused);
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    press();
    QTRY_COMPARE(done.size(), 1);
    QCOMPARE(m_dialogs->boxes().size(), 1);
}

void tst_KavlorModifyAuction::leftWhileTheSuccessBoxIsOpen()
{
    m_dialogs.reset();
    m_service->expect("ModifyAuction", "1");
    open();
    QSignalSpy done(m_frame, &CKavlorModifyAuction::done);
    bool boxWasOpen = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [this, &boxWasOpen] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        boxWasOpen = true;
        delete m_frame;
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    watch.start(10);
    press();
    QTRY_VERIFY(boxWasOpen);
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QVERIFY(!m_frame);
    QCOMPARE(done.size(), 0);
}

void tst_KavlorModifyAuction::leftWhileWaiting()
{
    m_service->expectHeld("ModifyAuction", "1");
    open();
    press();
    QTRY_VERIFY(m_service->isHolding());
    m_frame->deleteLater();
    QTRY_VERIFY(!m_frame);
    m_service->release();
    open();
    QTRY_VERIFY(m_frame->isVisible());
    QCOMPARE(m_dialogs->boxes().size(), 0);
    QVERIFY(button()->isEnabled());
}

void tst_KavlorModifyAuction::fits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("handheld") << QSize(800, 344);
    QTest::newRow("desktop") << QSize(1920, 1000);
}

void tst_KavlorModifyAuction::fits()
{
    QFETCH(QSize, size);
    m_area.setStyleSheet(themeStyleSheet());
    m_area.resize(size);
    open();
    const QSize room = QSize(800, 344) * RoomScale::forWindow(size);
    QVERIFY(m_frame->minimumSizeHint().width() <= room.width());
    QVERIFY(m_frame->minimumSizeHint().height() <= room.height());
    const QList<QWidget *> widgets{label("photoThumb"),
                                   label("labelCaption"),
                                   label("labelReservedPrice"),
                                   reserve(),
                                   label("labelBuyItNow"),
                                   buyItNow(),
                                   button()};
    QTRY_VERIFY(button()->height() >= 70);
    for (const QWidget *widget : widgets) {
        const QRect place(widget->mapTo(m_frame.data(), QPoint()), widget->size());
        QVERIFY2(m_frame->rect().contains(place), qPrintable(widget->objectName()));
        const int needed = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width())
                                                       : widget->sizeHint().height();
        QVERIFY2(widget->height() >= needed, qPrintable(widget->objectName()));
        for (const QWidget *other : widgets) {
            const QRect otherPlace(other->mapTo(m_frame.data(), QPoint()), other->size());
            QVERIFY(widget == other || !place.intersects(otherPlace));
        }
    }
    for (const QLabel *one : {label("labelReservedPrice"), label("labelBuyItNow")}) {
        const int needed = one->heightForWidth(one->width());
        QVERIFY2(needed < 2 * one->fontMetrics().height(), qPrintable(one->text())); // in a line
    }
    for (const QSpinBox *box : {reserve(), buyItNow()}) {
        QVERIFY(box->height() >= 45);
        QVERIFY(box->width() >= box->sizeHint().width());
    }
    m_area.setStyleSheet(QString());
}

void tst_KavlorModifyAuction::tabOrderIsReadingOrder()
{
    open();
    m_area.activateWindow();
    QTRY_VERIFY(reserve()->hasFocus());
    QTest::keyClick(reserve(), Qt::Key_Tab);
    QVERIFY(buyItNow()->hasFocus());
    QTest::keyClick(buyItNow(), Qt::Key_Tab);
    QVERIFY(button()->hasFocus());
}

void tst_KavlorModifyAuction::namesForAssistiveTechnology()
{
    open();
    for (const QWidget *widget : QList<QWidget *>{reserve(), buyItNow(), label("photoThumb")})
        QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
    QCOMPARE(label("labelReservedPrice")->buddy(), reserve());
    QCOMPARE(label("labelBuyItNow")->buddy(), buyItNow());
}

KAVLOR_TEST_MAIN(tst_KavlorModifyAuction)
#include "tst_kavlormodifyauction.moc"
