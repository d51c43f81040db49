// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "dialoganswers.h"
#include "framearea.h"
#include "httptolvex.h"
#include "kavlormodifyauction.h"
#include "kavlormyauctionscontroller.h"
#include "kavlormyauctionsmodel.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "roomscale.h"
#include "scriptedservice.h"
#include "slimscrollbar.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "theme.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPixmapCache>
#include <QPointer>
#include <QPushButton>
#include <QScroller>
#include <QSet>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTimer>
#include <QUrlQuery>

namespace {

constexpr int defaultCacheLimit = 10240; // KB

CKavlorUser::Fields memberFields()
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = QStringLiteral("m1");
    fields[CKavlorUser::Password] = QStringLiteral("secret");
    return fields;
}

// A colour of its own for every auction.
QColor colour(uint id)
{
    return QColor(QColor::fromHsv(static_cast<int>(id * 37 % 360), 255, 200).rgb());
}

ScriptedService::Step thumbnailStep(uint id, bool held = false)
{
    ScriptedService::Step step;
    step.operation = "GetThumbnail";
    step.bytes = ScriptedService::reply(thumbnailBytes(colour(id)), "image/png");
    step.held = held;
    return step;
}

uint auctionOf(const ScriptedService::Request &request)
{
    const QUrlQuery body(QString::fromLatin1(request.body));
    return body.queryItemValue(QStringLiteral("AuctionID")).toUInt();
}

// As if the thumbnails had been fetched by an earlier list.
void cacheThumbnails(int count)
{
    for (int id = 1; id <= count; ++id) {
        QPixmap thumbnail(120, 90);
        thumbnail.fill(colour(static_cast<uint>(id)));
        QPixmapCache::insert(QStringLiteral("auctionid::%1").arg(id), thumbnail);
    }
}

// The strips that are there, by auction: painting one again gives it another key.
QHash<uint, qint64> paintedStrips(uint auctions)
{
    QHash<uint, qint64> keys;
    for (uint id = 1; id <= auctions; ++id) {
        QPixmap strip;
        if (QPixmapCache::find(QStringLiteral("combined::%1").arg(id), &strip))
            keys.insert(id, strip.cacheKey());
    }
    return keys;
}

class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget)
    {
        widget->installEventFilter(this);
    }

    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return false;
    }
};

} // namespace

class tst_KavlorMyAuctionsController : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void asksForTheListAndWaits();
    void waitsForTheConnectionWithTheTextOnScreen();
    void showsTheAuctions();
    void aListWithoutRowsSaysSo_data();
    void aListWithoutRowsSaysSo();
    void aFailedListKeepsWaiting_data();
    void aFailedListKeepsWaiting();
    void aListThatIsNeverAnsweredKeepsWaiting();

    void tableAsLaidOut();
    void fits_data();
    void fits();
    void layingOutReadsNoCell();
    void tenThousandRowsPaintAndAskForFewOnly();
    void aListAsksForEachThumbnailOnceWhenItIsShown();
    void anArrivingThumbnailPaintsNoStripAgain();
    void scrollingByKeysWheelAndBar();
    void slimBarIsThereOnlyWhenNeeded();
    void touchScrollsAndTaps();

    void thumbnailsAreFetchedOneAtATimeInOrderOfAsking();
    void tenVisibleRowsQueueTheirIdsAndFetchThemOneAtATime();
    void aNullPixmapIsAMissingThumbnail();
    void aTextReplyDropsTheHeadUntilTheModelAsksAgain();
    void aFailedTextReplyIsIgnored();
    void anImageErrorStopsThumbnailsForGood();
    void theTimerOfAFinishedRequestCancelsALaterOne();
    void resultsInIdleChangeNothing();

    void aClickOpensThePriceFrame();
    void enterOpensThePriceFrame();
    void aSecondClickOpensNoSecondFrame();
    void aFinishedAuctionOpensNoFrameAndSaysSo();
    void newPricesUpdateTheRowAndBringTheListBack();
    void doneWithZerosChangesNothing();
    void cancelClosesThePriceFrameFirst();
    void backFromThePriceFrameLeavesBoth();
    void leftWhileTheSuccessBoxIsOpen();
    void thumbnailsGoOnBehindThePriceFrame();
    void leavingInMidFetch_data();
    void leavingInMidFetch();
    void leavingBeforeTheRequestIsSent();
    void deletedWithItsParentWhileThePriceFrameIsOpen();

private:
    void make();
    void openList(const QString &reply);
    bool loadHidden(const QString &reply);
    void settle();
    void clickRow(int row);
    QByteArrayList thumbnailIds() const;

    CKavlorMyAuctionsModel *model() const
    {
        return m_frame->findChild<CKavlorMyAuctionsModel *>();
    }
    CHttpTolvex *http() const
    {
        return m_frame->findChild<CHttpTolvex *>();
    }
    QTableView *table() const
    {
        return m_frame->findChild<QTableView *>(QStringLiteral("myAuctionsTable"));
    }
    QLabel *label() const
    {
        return m_frame->findChild<QLabel *>(QStringLiteral("labelPleaseWait"));
    }
    CKavlorModifyAuction *priceFrame() const
    {
        return m_mainView->findChild<CKavlorModifyAuction *>();
    }

    CKavlorUser m_user{nullptr, nullptr, true, memberFields()};
    std::unique_ptr<OnlineConnector> m_connector;
    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<DialogAnswers> m_dialogs;
    std::unique_ptr<FrameArea> m_mainView;
    QPointer<CKavlorMyAuctionsController> m_frame;
};

void tst_KavlorMyAuctionsController::init()
{
    TestCase::init();
    QPixmapCache::clear();
    m_connector = std::make_unique<OnlineConnector>();
    m_service = std::make_unique<ScriptedService>();
    m_dialogs = std::make_unique<DialogAnswers>();
    m_mainView = std::make_unique<FrameArea>();
    m_mainView->setStyleSheet(themeStyleSheet());
    m_mainView->resize(800, 344);
    m_mainView->show();
    m_mainView->activateWindow();
}

void tst_KavlorMyAuctionsController::cleanup()
{
    m_mainView.reset();
    m_dialogs.reset();
    m_service.reset();
    m_connector.reset();
    QPixmapCache::setCacheLimit(defaultCacheLimit);
}

void tst_KavlorMyAuctionsController::make()
{
    m_frame = new CKavlorMyAuctionsController(&m_user, m_mainView.get());
}

// The frame on the screen with the auctions of the reply.
void tst_KavlorMyAuctionsController::openList(const QString &reply)
{
    m_service->expect("GetMyAuctions", reply.toUtf8());
    make();
    m_frame->show();
    QTRY_VERIFY(table()->isVisible());
}

// The frame with the auctions of the reply, but never shown, so that no painting asks for
// thumbnails.
bool tst_KavlorMyAuctionsController::loadHidden(const QString &reply)
{
    m_service->expect("GetMyAuctions", reply.toUtf8());
    make();
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    return finished.wait(patience) && model()->rowCount() > 0;
}

// Comes back when the service has answered a request sent after all others.
void tst_KavlorMyAuctionsController::settle()
{
    CHttpTolvex probe;
    QSignalSpy finished(&probe, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    m_service->expect("GetServiceTerms", "terms");
    probe.getServiceTerms();
    QVERIFY(finished.wait(patience));
    QCOMPARE(finished.constFirst().constFirst().toString(), QStringLiteral("terms"));
}

void tst_KavlorMyAuctionsController::clickRow(int row)
{
    const QRect place = table()->visualRect(model()->index(row, CKavlorMyAuctionsModel::Info));
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, place.center());
}

// The auctions whose thumbnails were asked for on the wire so far.
QByteArrayList tst_KavlorMyAuctionsController::thumbnailIds() const
{
    QByteArrayList ids;
    for (const ScriptedService::Request &request : m_service->requests()) {
        if (request.operation() == "GetThumbnail")
            ids.append(QByteArray::number(auctionOf(request)));
    }
    return ids;
}

void tst_KavlorMyAuctionsController::asksForTheListAndWaits()
{
    m_service->expectHeld("GetMyAuctions", auctionReply(1).toLatin1());
    make();
    m_frame->show();
    QCOMPARE(m_frame->objectName(), QStringLiteral("CKavlorMyAuctionsController"));
    QCOMPARE(m_frame->windowTitle(), QStringLiteral("Frame"));
    QVERIFY(label()->isVisible());
    QCOMPARE(label()->text(), QStringLiteral("Please wait while data is populated..."));
    QVERIFY(!table()->isVisible());
    QTRY_VERIFY(m_service->isHolding());
    QCOMPARE(m_service->requests().constFirst().body,
             QByteArray("Username=m1&Password=secret&SUBMIT=Submit"));
    QVERIFY(label()->isVisible());
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::waitsForTheConnectionWithTheTextOnScreen()
{
    m_connector.reset();
    testTimeConstants().connectionWait = 50;
    make();
    m_frame->show();
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    PaintCounter paints(label());
    QVERIFY(finished.wait(patience));
    QVERIFY(paints.count > 0);
    QCOMPARE(finished.constFirst().constFirst().toString(), QStringLiteral("ERROR:no connection"));
    QCOMPARE(label()->text(), QStringLiteral("Please wait while data is populated..."));
    QVERIFY(label()->isVisible());
    QCOMPARE(m_service->requests().size(), 0);
}

void tst_KavlorMyAuctionsController::showsTheAuctions()
{
    cacheThumbnails(3);
    openList(auctionReply(3));
    QCOMPARE(table()->model()->rowCount(), 3);
    QVERIFY(!label()->isVisible());
    QCOMPARE(table()->size(), m_frame->size());
    QCOMPARE(table()->viewport()->size(), m_frame->size());
    QAbstractItemModelTester tester(table()->model(),
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    table()->clearSelection();
    const QImage shown = table()->viewport()->grab().toImage();
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(shown.pixelColor(60, 45 + 90 * row), colour(static_cast<uint>(row + 1)));
        QCOMPARE(shown.pixelColor(119, 1 + 90 * row), colour(static_cast<uint>(row + 1)));
    }
    QVERIFY(shown.pixelColor(790, 45) != shown.pixelColor(790, 135)); // rows alternate
    QCOMPARE(shown.pixelColor(790, 45), shown.pixelColor(790, 225));
}

void tst_KavlorMyAuctionsController::aListWithoutRowsSaysSo_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("header only") << ScriptedService::reply("header");
    QTest::newRow("header with line feed") << ScriptedService::reply("header\n");
    QTest::newRow("first line is broken") << ScriptedService::reply("header\n1,2,3\n");
    QTest::newRow("page of HTML") << ScriptedService::reply(
        "<html>\n<h1>Bad gateway</h1>\n</html>\n", "text/html");
    QTest::newRow("not found") << ScriptedService::reply("", "text/plain", "404 Not Found");
}

void tst_KavlorMyAuctionsController::aListWithoutRowsSaysSo()
{
    QFETCH(QByteArray, reply);
    ScriptedService::Step step;
    step.operation = "GetMyAuctions";
    step.bytes = reply;
    m_service->expect(step);
    make();
    m_frame->show();
    QTRY_COMPARE(label()->text(), QStringLiteral("There is no data to display."));
    QVERIFY(label()->isVisible());
    QVERIFY(!table()->isVisible());
    QCOMPARE(m_dialogs->boxes().size(), 0);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::aFailedListKeepsWaiting_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("refused") << ScriptedService::reply("ERROR: wrong password");
    QTest::newRow("error further on")
        << ScriptedService::reply(auctionReply(2).toLatin1() + "\nERROR");
    QTest::newRow("broken off") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 900\r\n\r\n")
            + auctionReply(2).toLatin1();
    QTest::newRow("nothing") << QByteArray();
}

void tst_KavlorMyAuctionsController::aFailedListKeepsWaiting()
{
    QFETCH(QByteArray, reply);
    ScriptedService::Step step;
    step.operation = "GetMyAuctions";
    step.bytes = reply;
    step.then = ScriptedService::Close;
    m_service->expect(step);
    make();
    m_frame->show();
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    QVERIFY(finished.wait(patience));
    m_frame->requestThumbnail(1); // nothing else is fetched either
    settle();
    QCOMPARE(label()->text(), QStringLiteral("Please wait while data is populated..."));
    QVERIFY(label()->isVisible());
    QVERIFY(!table()->isVisible());
    QCOMPARE(m_dialogs->boxes().size(), 0);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::aListThatIsNeverAnsweredKeepsWaiting()
{
    testTimeConstants().formTimeout = 50;
    m_service->expectHeld("GetMyAuctions", auctionReply(1).toLatin1());
    make();
    m_frame->show();
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    QVERIFY(finished.wait(patience));
    QCOMPARE(finished.constFirst().constFirst().toString(), QStringLiteral("ERROR:timeout"));
    QCOMPARE(label()->text(), QStringLiteral("Please wait while data is populated..."));
    QCOMPARE(m_dialogs->boxes().size(), 0);
}

void tst_KavlorMyAuctionsController::tableAsLaidOut()
{
    cacheThumbnails(2);
    openList(auctionReply(2));
    QVERIFY(!table()->showDropIndicator());
    QVERIFY(!table()->showGrid());
    QVERIFY(table()->alternatingRowColors());
    QVERIFY(!table()->horizontalHeader()->isVisible());
    QVERIFY(!table()->verticalHeader()->isVisible());
    QCOMPARE(table()->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QVERIFY(!table()->accessibleName().isEmpty());
    QVERIFY(table()->hasFocus());
    QCOMPARE(table()->rowHeight(0), 90);
    QCOMPARE(table()->rowHeight(1), 90);
}

void tst_KavlorMyAuctionsController::fits_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("handheld") << QSize(800, 344);
    QTest::newRow("handheld, whole screen") << QSize(800, 480);
    QTest::newRow("desktop") << QSize(1920, 1000);
}

void tst_KavlorMyAuctionsController::fits()
{
    QFETCH(QSize, size);
    m_mainView->resize(size);
    cacheThumbnails(12);
    openList(auctionReply(12)); // more than any of the sizes holds
    QCOMPARE(m_frame->size(), size);
    QCOMPARE(table()->viewport()->size(), size);
    const qreal scale = RoomScale::forWindow(size);
    const QSize cells = QSize(120 + 680, 90) * scale;
    const QSize room(800 * scale, 344 * scale);
    QCOMPARE(table()->rowHeight(0), cells.height());
    // The cells stand side by side in the middle.
    const int left = table()->columnWidth(CKavlorMyAuctionsModel::Thumbnail) - 120 * scale;
    QVERIFY(qAbs(left - (size.width() - cells.width() - left)) <= 2);
    QVERIFY(!table()->horizontalScrollBar()->isVisible());
    QVERIFY(!table()->verticalScrollBar()->isVisible());
    QVERIFY(m_frame->minimumSizeHint().width() <= room.width());
    QVERIFY(m_frame->minimumSizeHint().height() <= room.height());

    // A window that grows later takes the list with it.
    m_mainView->resize(size + QSize(100, 50));
    QTRY_COMPARE(table()->viewport()->size(), size + QSize(100, 50));
    QCOMPARE(table()->columnWidth(CKavlorMyAuctionsModel::Thumbnail)
                 + table()->columnWidth(CKavlorMyAuctionsModel::Info),
             size.width() + 100);
}

void tst_KavlorMyAuctionsController::layingOutReadsNoCell()
{
    QVERIFY(loadHidden(auctionReply(200)));
    QSignalSpy asked(model(), &CKavlorMyAuctionsModel::requestThumb);
    table()->resizeRowsToContents();
    table()->resizeColumnsToContents();
    table()->sizeHint();
    table()->doItemsLayout();
    table()->scrollToBottom();
    QCOMPARE(table()->rowHeight(0), 90);
    QCOMPARE(table()->rowHeight(199), 90);
    QCOMPARE(table()->columnWidth(CKavlorMyAuctionsModel::Thumbnail), 120);
    QCOMPARE(asked.size(), 0);
    QCOMPARE(paintedStrips(200).size(), 0);
}

void tst_KavlorMyAuctionsController::tenThousandRowsPaintAndAskForFewOnly()
{
    QPixmapCache::setCacheLimit(4 * 1024 * 1024);
    constexpr uint auctions = 10000;
    m_mainView->resize(800, 480);
    m_service->expect("GetMyAuctions", auctionReply(auctions).toLatin1());
    m_service->expect(thumbnailStep(1, true));
    make();
    QSignalSpy asked(model(), &CKavlorMyAuctionsModel::requestThumb);
    m_frame->show();
    QTRY_VERIFY(m_service->isHolding());
    QCOMPARE(table()->model()->rowCount(), static_cast<int>(auctions));

    QSet<uint> distinct;
    for (const QVariantList &arguments : std::as_const(asked))
        distinct.insert(arguments.constFirst().toUInt());
    QVERIFY(distinct.contains(1) && distinct.contains(5));
    QVERIFY2(distinct.size() < 40, qPrintable(QString::number(distinct.size())));
    const auto strips = paintedStrips(auctions);
    QVERIFY(strips.contains(1) && strips.contains(5));
    QVERIFY2(strips.size() < 40, qPrintable(QString::number(strips.size())));

    // The other end of the list is as near as the next page.
    asked.clear();
    QTest::keyClick(table(), Qt::Key_End, Qt::ControlModifier);
    QTRY_VERIFY(paintedStrips(auctions).contains(auctions));
    QVERIFY(paintedStrips(auctions).size() < 40);
    QVERIFY(asked.size() < 40);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::aListAsksForEachThumbnailOnceWhenItIsShown()
{
    m_mainView->resize(800, 360);
    m_service->expect("GetMyAuctions", auctionReply(200).toLatin1());
    m_service->expect(thumbnailStep(1, true));
    make();
    QSignalSpy asked(model(), &CKavlorMyAuctionsModel::requestThumb);
    m_frame->show();
    QTRY_VERIFY(m_service->isHolding());
    settle(); // the table may still have a timer of its own
    QCOMPARE(asked.size(), 4);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::anArrivingThumbnailPaintsNoStripAgain()
{
    constexpr uint auctions = 10000;
    m_mainView->resize(800, 480);
    m_service->expect("GetMyAuctions", auctionReply(auctions).toLatin1());
    m_service->expect(thumbnailStep(1, true));
    m_service->expect(thumbnailStep(2, true));
    make();
    m_frame->show();
    QTRY_VERIFY(m_service->isHolding());
    const auto strips = paintedStrips(auctions);
    QVERIFY(strips.size() >= 5);

    PaintCounter paints(table()->viewport());
    m_service->release();
    QTRY_VERIFY(m_service->isHolding());
    QTRY_VERIFY(paints.count > 0);
    QCOMPARE(paintedStrips(auctions), strips);
    QCOMPARE(table()->rowHeight(0), 90);
    const QImage shown = table()->viewport()->grab().toImage();
    QCOMPARE(shown.pixelColor(60, 45), colour(1));
    QVERIFY(shown.pixelColor(60, 135) != colour(2));
}

void tst_KavlorMyAuctionsController::scrollingByKeysWheelAndBar()
{
    cacheThumbnails(50);
    openList(auctionReply(50));
    const QScrollBar *position = table()->verticalScrollBar();
    QCOMPARE(position->value(), 0);
    QTest::keyClick(table(), Qt::Key_PageDown);
    QTest::keyClick(table(), Qt::Key_PageDown);
    QTRY_VERIFY(position->value() > 0);
    QTest::keyClick(table(), Qt::Key_Home, Qt::ControlModifier);
    QTRY_COMPARE(position->value(), 0);

    const QPoint middle(400, 170);
    QWheelEvent wheel(middle, table()->viewport()->mapToGlobal(middle), {}, QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(table()->viewport(), &wheel);
    QVERIFY(position->value() > 0);

    auto *bar = m_frame->findChild<SlimScrollBar *>();
    QCOMPARE(bar->value(), position->value());
    const int before = position->value();
    const QPoint handle(bar->width() / 2, 40);
    QTest::mousePress(bar, Qt::LeftButton, {}, handle);
    const QPoint lower = handle + QPoint(0, 150);
    QMouseEvent drag(QEvent::MouseMove, lower, bar->mapToGlobal(lower), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(bar, &drag);
    QTest::mouseRelease(bar, Qt::LeftButton, {}, lower);
    QVERIFY(position->value() > before + 90);
    QCOMPARE(bar->value(), position->value());
    QVERIFY(!priceFrame());
}

void tst_KavlorMyAuctionsController::slimBarIsThereOnlyWhenNeeded()
{
    cacheThumbnails(5);
    openList(auctionReply(5)); // 450 pixels
    const auto *bar = m_frame->findChild<SlimScrollBar *>();
    QTRY_VERIFY(bar->isVisible());
    QCOMPARE(bar->geometry().right(), table()->width() - 1);
    QCOMPARE(bar->height(), table()->height());
    QVERIFY(bar->width() <= 16);
    QCOMPARE(bar->maximum(), table()->verticalScrollBar()->maximum());

    m_mainView->resize(800, 450);
    QTRY_VERIFY(!bar->isVisible());
    m_mainView->resize(800, 400);
    QTRY_VERIFY(bar->isVisible());
    QCOMPARE(bar->maximum(), 50);

    const int before = table()->width();
    m_mainView->resize(700, 400);
    QTRY_VERIFY(table()->width() < before);
    QCOMPARE(bar->geometry().right(), table()->width() - 1);
}

void tst_KavlorMyAuctionsController::touchScrollsAndTaps()
{
    std::unique_ptr<QPointingDevice> finger(QTest::createTouchDevice());
    cacheThumbnails(50);
    openList(auctionReply(50));
    QVERIFY(QTest::qWaitForWindowExposed(m_mainView.get()));
    QWidget *viewport = table()->viewport();
    QPoint point(400, 320);
    QTest::touchEvent(viewport, finger.get()).press(0, point, viewport);
    for (int step = 0; step < 10; ++step) {
        point -= QPoint(0, 30);
        QTest::touchEvent(viewport, finger.get()).move(0, point, viewport);
    }
    QTest::touchEvent(viewport, finger.get()).release(0, point, viewport);
    QTRY_VERIFY(table()->verticalScrollBar()->value() > 0);
    QVERIFY(!priceFrame());

    QScroller::scroller(viewport)->stop(); // it would glide on for seconds
    point = QPoint(400, 100);
    QTest::touchEvent(viewport, finger.get()).press(0, point, viewport);
    QTest::touchEvent(viewport, finger.get()).release(0, point, viewport);
    QTRY_VERIFY(priceFrame());
}

void tst_KavlorMyAuctionsController::thumbnailsAreFetchedOneAtATimeInOrderOfAsking()
{
    QVERIFY(loadHidden(auctionReply(3)));
    const QList<uint> ids{3, 1, 3, 2};
    for (const uint id : ids)
        m_service->expect(thumbnailStep(id, true));
    for (const uint id : ids)
        m_frame->requestThumbnail(id);

    QByteArrayList expected;
    for (const uint id : ids) {
        expected.append(QByteArray::number(id));
        QTRY_VERIFY(m_service->isHolding());
        QCOMPARE(thumbnailIds(), expected);
        QCOMPARE(m_service->requests().constLast().body,
                 "Username=m1&Password=secret&AuctionID=" + expected.constLast()
                     + "&SUBMIT=Submit");
        m_service->release();
    }
    QTRY_VERIFY(!model()->auction(2).thumbnail.isNull());
    for (const uint id : {1u, 2u, 3u}) {
        const QImage thumbnail = model()->auction(id).thumbnail.toImage();
        QCOMPARE(thumbnail.size(), QSize(220, 165));
        QCOMPARE(thumbnail.pixelColor(5, 5), colour(id));
    }
    QCOMPARE(m_frame->findChildren<CHttpTolvex *>().size(), 1);

    // Idle again: the next one is sent at once.
    m_service->expect(thumbnailStep(1));
    m_frame->requestThumbnail(1);
    QTRY_COMPARE(thumbnailIds().size(), 5);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::tenVisibleRowsQueueTheirIdsAndFetchThemOneAtATime()
{
    constexpr uint rows = 10;
    m_mainView->resize(800, 90 * rows);
    m_service->expect("GetMyAuctions", auctionReply(rows).toLatin1());
    make();
    QSignalSpy asked(model(), &CKavlorMyAuctionsModel::requestThumb);
    // How often the rows are painted is the toolkit's affair; each asking is one request.
    connect(model(), &CKavlorMyAuctionsModel::requestThumb, m_service.get(),
            [this](uint id) { m_service->expect(thumbnailStep(id, true)); });
    const auto allFetched = [&](int fetched) {
        for (uint id = 1; id <= rows; ++id) {
            if (model()->auction(id).thumbnail.isNull())
                return false;
        }
        return fetched == asked.size();
    };
    m_frame->show();
    int fetched = 0;
    QByteArrayList expected;
    while (!allFetched(fetched)) {
        QTRY_VERIFY(m_service->isHolding());
        ++fetched;
        QCOMPARE(thumbnailIds().size(), fetched);
        m_service->release();
        QTRY_VERIFY(m_service->isHolding() || allFetched(fetched));
    }

    for (const QVariantList &arguments : std::as_const(asked))
        expected.append(QByteArray::number(arguments.constFirst().toUInt()));
    QCOMPARE(thumbnailIds(), expected);
    QVERIFY(expected.size() > static_cast<int>(rows)); // repaints have repeated some
    for (uint id = 1; id <= rows; ++id)
        QCOMPARE(expected.at(static_cast<int>(id) - 1), QByteArray::number(id));
    for (uint id = 1; id <= rows; ++id)
        QCOMPARE(model()->auction(id).thumbnail.toImage().pixelColor(5, 5), colour(id));
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::aNullPixmapIsAMissingThumbnail()
{
    ScriptedService::Step broken;
    broken.operation = "GetThumbnail";
    broken.bytes = ScriptedService::reply("<html>no picture</html>", "text/html");
    QVERIFY(loadHidden(auctionReply(2)));
    m_service->expect(broken);
    m_service->expect(thumbnailStep(2));
    m_frame->requestThumbnail(1);
    m_frame->requestThumbnail(2);
    QTRY_VERIFY(!model()->auction(2).thumbnail.isNull());
    QVERIFY(model()->auction(1).thumbnail.isNull());
    QSignalSpy asked(model(), &CKavlorMyAuctionsModel::requestThumb);
    m_frame->show();
    QTRY_VERIFY(paintedStrips(2).size() == 2);
    QCOMPARE(asked.size(), 0);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::aTextReplyDropsTheHeadUntilTheModelAsksAgain()
{
    QVERIFY(loadHidden(auctionReply(4)));
    m_service->expect("GetThumbnail", "there is none");
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    for (const uint id : {1u, 2u, 3u})
        m_frame->requestThumbnail(id);
    QVERIFY(finished.wait(patience));
    settle();
    QCOMPARE(thumbnailIds(), QByteArrayList{"1"});
    QVERIFY(model()->auction(1).noThumbnail);

    // The queue goes on where it stopped, and every picture gets to its own auction.
    for (const uint id : {2u, 3u, 4u})
        m_service->expect(thumbnailStep(id));
    m_frame->requestThumbnail(4);
    QTRY_VERIFY(!model()->auction(4).noThumbnail);
    QCOMPARE(thumbnailIds(), (QByteArrayList{"1", "2", "3", "4"}));
    for (const uint id : {2u, 3u, 4u})
        QCOMPARE(model()->auction(id).thumbnail.toImage().pixelColor(5, 5), colour(id));
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::aFailedTextReplyIsIgnored()
{
    QVERIFY(loadHidden(auctionReply(2)));
    m_service->expect("GetThumbnail", "ERROR: no such auction");
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    m_frame->requestThumbnail(1);
    QVERIFY(finished.wait(patience));
    m_frame->requestThumbnail(2);
    settle();
    QCOMPARE(thumbnailIds(), QByteArrayList{"1"});
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::anImageErrorStopsThumbnailsForGood()
{
    QVERIFY(loadHidden(auctionReply(3)));
    ScriptedService::Step broken;
    broken.operation = "GetThumbnail";
    broken.bytes = "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Length: 900\r\n\r\nabc";
    broken.then = ScriptedService::Close;
    m_service->expect(broken);
    QSignalSpy finished(http(), qOverload<QPixmap, QString>(&CHttpTolvex::requestIsFinished));
    m_frame->requestThumbnail(1);
    m_frame->requestThumbnail(2);
    QVERIFY(finished.wait(patience));
    QVERIFY(!finished.constFirst().at(1).toString().isEmpty());
    m_frame->requestThumbnail(3);
    settle();
    QCOMPARE(thumbnailIds(), QByteArrayList{"1"});
    for (const uint id : {1u, 2u, 3u})
        QVERIFY(model()->auction(id).noThumbnail);

    // Prices can still be changed.
    m_frame->show();
    clickRow(0);
    QTRY_VERIFY(priceFrame());
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::theTimerOfAFinishedRequestCancelsALaterOne()
{
    testTimeConstants().formTimeout = 300;
    QVERIFY(loadHidden(auctionReply(3)));
    testTimeConstants().formTimeout = 10000;
    m_service->expect(thumbnailStep(1, true));
    QSignalSpy finished(http(), qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    m_frame->requestThumbnail(1);
    m_frame->requestThumbnail(2);
    QTRY_VERIFY(m_service->isHolding());
    QCOMPARE(finished.size(), 0);

    // The list's timer runs out with the thumbnail in flight.
    QVERIFY(finished.wait(patience));
    QCOMPARE(finished.takeFirst().constFirst().toString(), QStringLiteral("ERROR:timeout"));
    settle();
    QCOMPARE(thumbnailIds(), QByteArrayList{"1"});

    // Its transfer runs on to an empty second result, which drops it.
    m_service->release();
    QVERIFY(finished.wait(patience));
    QCOMPARE(finished.constFirst(), (QVariantList{QString(), QString()}));
    QVERIFY(model()->auction(1).noThumbnail);
    m_service->expect(thumbnailStep(2));
    m_service->expect(thumbnailStep(3));
    m_frame->requestThumbnail(3);
    QTRY_VERIFY(!model()->auction(3).noThumbnail);
    QCOMPARE(thumbnailIds(), (QByteArrayList{"1", "2", "3"}));
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::resultsInIdleChangeNothing()
{
    QVERIFY(loadHidden(auctionReply(2)));
    m_frame->requestIsFinished(QStringLiteral("ERROR:timeout"), QStringLiteral("late"));
    m_frame->requestIsFinished(QString(), QString());
    QPixmap late(10, 10);
    m_frame->requestIsFinished(late, QString());
    QCOMPARE(model()->rowCount(), 2);
    QVERIFY(model()->auction(1).noThumbnail);
    m_service->expect(thumbnailStep(2));
    m_frame->requestThumbnail(2);
    QTRY_VERIFY(!model()->auction(2).noThumbnail);
}

void tst_KavlorMyAuctionsController::aClickOpensThePriceFrame()
{
    cacheThumbnails(3);
    openList(auctionReply(3));
    clickRow(1);
    QVERIFY(priceFrame());
    QVERIFY(priceFrame()->isVisible());
    QVERIFY(!m_frame->isVisible());
    QCOMPARE(priceFrame()->parentWidget(), m_mainView.get());
    QCOMPARE(priceFrame()->size(), m_mainView->size());
    QCOMPARE(priceFrame()->findChild<QSpinBox *>(QStringLiteral("reservedPrice"))->value(), 20);
    QCOMPARE(priceFrame()->findChild<QSpinBox *>(QStringLiteral("buyItNowPrice"))->value(), 50);
    const auto *photo = priceFrame()->findChild<QLabel *>(QStringLiteral("photoThumb"));
    QCOMPARE(photo->pixmap().toImage().pixelColor(5, 5), colour(2));
    QCOMPARE(m_dialogs->boxes().size(), 0);
}

void tst_KavlorMyAuctionsController::enterOpensThePriceFrame()
{
    cacheThumbnails(3);
    openList(auctionReply(3));
    QTRY_VERIFY(table()->hasFocus());
    QVERIFY(table()->selectionModel()->isRowSelected(0)); // where the keys begin is to be seen
    QTest::keyClick(table(), Qt::Key_Down);
    QVERIFY(table()->selectionModel()->isRowSelected(1));
    QTest::keyClick(table(), Qt::Key_Return);
    QVERIFY(priceFrame());
    emit priceFrame()->done(2, 77, 88);
    QCOMPARE(model()->auction(2).reservePrice, 77);
    QTRY_VERIFY(!priceFrame());
    QCOMPARE(table()->currentIndex().row(), 1);
    QTRY_VERIFY(table()->hasFocus());
    QTest::keyClick(table(), Qt::Key_Enter);
    QVERIFY(priceFrame());
}

void tst_KavlorMyAuctionsController::aSecondClickOpensNoSecondFrame()
{
    cacheThumbnails(2);
    openList(auctionReply(2));
    clickRow(0);
    m_frame->auctionClicked(model()->index(1, 0));
    m_frame->auctionClicked(QModelIndex());
    QCOMPARE(m_mainView->findChildren<CKavlorModifyAuction *>().size(), 1);
}

void tst_KavlorMyAuctionsController::aFinishedAuctionOpensNoFrameAndSaysSo()
{
    cacheThumbnails(1);
    AuctionLine line;
    line.finished = true;
    openList(auctionReply(line));
    clickRow(0);
    QCOMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(m_dialogs->boxes().constFirst().text,
             QStringLiteral("This auction can no longer be changed."));
    QVERIFY(!priceFrame());
    QVERIFY(m_frame->isVisible());
    QVERIFY(table()->isVisible());
}

void tst_KavlorMyAuctionsController::newPricesUpdateTheRowAndBringTheListBack()
{
    cacheThumbnails(3);
    openList(auctionReply(3));
    QTRY_COMPARE(paintedStrips(3).size(), 3);
    const auto strips = paintedStrips(3);
    clickRow(2);
    const QPointer<CKavlorModifyAuction> prices(priceFrame());
    m_service->expect("ModifyAuction", "1");
    prices->findChild<QSpinBox *>(QStringLiteral("reservedPrice"))->setValue(61);
    prices->findChild<QSpinBox *>(QStringLiteral("buyItNowPrice"))->setValue(0);
    QTest::mouseClick(prices->findChild<QPushButton *>(QStringLiteral("done")), Qt::LeftButton);
    QTRY_VERIFY(m_frame->isVisible());
    QTRY_VERIFY(!prices);
    QCOMPARE(m_dialogs->boxes().size(), 1);
    QCOMPARE(model()->auction(3).reservePrice, 61);
    QCOMPARE(model()->auction(3).buyItNowPrice, 0);
    QCOMPARE(model()->auction(1).reservePrice, 20);
    QCOMPARE(auctionOf(m_service->requests().constLast()), 3u);
    QCOMPARE(paintedStrips(3), strips);

    clickRow(2);
    QCOMPARE(priceFrame()->findChild<QSpinBox *>(QStringLiteral("reservedPrice"))->value(), 61);
    QCOMPARE(priceFrame()->findChild<QSpinBox *>(QStringLiteral("buyItNowPrice"))->value(), 0);
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::doneWithZerosChangesNothing()
{
    cacheThumbnails(1);
    openList(auctionReply(1));
    clickRow(0);
    emit priceFrame()->done(0, 0, 0);
    QTRY_VERIFY(!priceFrame());
    QVERIFY(m_frame->isVisible());
    QCOMPARE(model()->auction(1).reservePrice, 20);
    QCOMPARE(model()->auction(1).buyItNowPrice, 50);
}

void tst_KavlorMyAuctionsController::cancelClosesThePriceFrameFirst()
{
    cacheThumbnails(1);
    openList(auctionReply(1));
    clickRow(0);
    m_frame->cancelClicked();
    QVERIFY(m_frame->isVisible());
    QTRY_VERIFY(!priceFrame());
    QVERIFY(table()->isVisible());
    m_frame->cancelClicked();
    QTRY_VERIFY(!m_frame);
}

void tst_KavlorMyAuctionsController::backFromThePriceFrameLeavesBoth()
{
    cacheThumbnails(1);
    openList(auctionReply(1));
    clickRow(0);
    m_frame->backClicked();
    QTRY_VERIFY(!m_frame);
    QTRY_VERIFY(!priceFrame());
}

void tst_KavlorMyAuctionsController::leftWhileTheSuccessBoxIsOpen()
{
    m_dialogs.reset();
    cacheThumbnails(1);
    openList(auctionReply(1));
    clickRow(0);
    m_service->expect("ModifyAuction", "1");
    bool boxWasOpen = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [this, &boxWasOpen] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        if (m_frame)
            m_frame->backClicked();
        if (m_frame || priceFrame())
            return; // they go from the box's own event loop
        boxWasOpen = true;
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    watch.start(10);
    QTest::mouseClick(priceFrame()->findChild<QPushButton *>(QStringLiteral("done")),
                      Qt::LeftButton);
    QTRY_VERIFY(boxWasOpen);
    QTRY_VERIFY(!QApplication::activeModalWidget());
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::thumbnailsGoOnBehindThePriceFrame()
{
    cacheThumbnails(1);
    openList(auctionReply(1));
    clickRow(0);
    QVERIFY(!m_frame->isVisible());
    m_service->expect(thumbnailStep(9));
    m_service->expect(thumbnailStep(1));
    m_frame->requestThumbnail(9);
    m_frame->requestThumbnail(1);
    QTRY_COMPARE(model()->auction(1).thumbnail.width(), 220);
    QVERIFY(priceFrame());
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::leavingInMidFetch_data()
{
    QTest::addColumn<bool>("listArrived");
    QTest::newRow("of the list") << false;
    QTest::newRow("of a thumbnail") << true;
}

void tst_KavlorMyAuctionsController::leavingInMidFetch()
{
    QFETCH(bool, listArrived);
    if (listArrived) {
        m_service->expect("GetMyAuctions", auctionReply(20).toLatin1());
        m_service->expect(thumbnailStep(1, true));
    } else {
        m_service->expectHeld("GetMyAuctions", auctionReply(20).toLatin1());
    }
    make();
    m_frame->show();
    QTRY_VERIFY(m_service->isHolding());
    m_frame->backClicked();
    m_service->release(); // a late answer, before the frame is really gone
    QTRY_VERIFY(!m_frame);
    settle();
    QVERIFY2(m_service->isDone(), m_service->report());
}

void tst_KavlorMyAuctionsController::leavingBeforeTheRequestIsSent()
{
    make();
    m_frame->show();
    delete m_frame;
    settle();
    QCOMPARE(m_service->requests().size(), 1);
}

void tst_KavlorMyAuctionsController::deletedWithItsParentWhileThePriceFrameIsOpen()
{
    cacheThumbnails(1);
    openList(auctionReply(1));
    clickRow(0);
    const QPointer<CKavlorModifyAuction> prices(priceFrame());
    m_mainView.reset();
    QVERIFY(!prices);
    QVERIFY(!m_frame);
}

KAVLOR_TEST_MAIN(tst_KavlorMyAuctionsController)
#include "tst_kavlormyauctionscontroller.moc"
