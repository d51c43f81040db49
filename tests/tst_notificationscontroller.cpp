// SPDX-License-Identifier: MIT

#include "framestage.h"
#include "httptolvex.h"
#include "kavlornotificationoptions.h"
#include "notificationscontroller.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

namespace {

CKavlorUser::Fields otherLetters()
{
    CKavlorUser::Fields fields = memberFields();
    fields[CKavlorUser::Username] = QStringLiteral(u"\u017Eofie");
    fields[CKavlorUser::Password] = QStringLiteral("s & t");
    fields[CKavlorUser::EmailAddress] = QStringLiteral("zofie@example.org");
    return fields;
}

// The frame with records of its own, and what its two signals have said.
class Alerts
{
public:
    explicit Alerts(const CKavlorNotificationOptions::Flags &flags = {})
        : user(nullptr, nullptr, true, otherLetters())
        , options(nullptr, flags, false)
        , frame(new CNotificationsController(&user, &options, stage.area()))
        , done(frame, &CNotificationsController::Done)
        , cancelled(frame, &CNotificationsController::CancelOnError)
    {
        isShown = stage.show(frame);
    }
    Q_DISABLE_COPY_MOVE(Alerts)

    QCheckBox *box(const char *name) const
    {
        return frame->findChild<QCheckBox *>(QLatin1String(name));
    }
    QPushButton *button() const
    {
        return frame->findChild<QPushButton *>(QStringLiteral("pushButtonDone"));
    }

    FrameStage stage;
    CKavlorUser user;
    CKavlorNotificationOptions options;
    CNotificationsController *frame;
    QSignalSpy done;
    QSignalSpy cancelled;
    bool isShown = false;
};

constexpr const char *boxNames[] = {"checkBoxOnBid", "checkBoxOnAuctionEnd", "checkBoxOnView",
                                    "checkBoxBuyerQuestion"};

} // namespace

class tst_NotificationsController : public TestCase
{
    Q_OBJECT

private slots:
    void formIsAsLaidDown();
    void fitsTheSmallestWindowAndGrows();
    void tabOrderIsTheReadingOrder();
    void boxesShowTheRecord_data();
    void boxesShowTheRecord();
    void everyBoxChangesItsFlagAtOnce_data();
    void everyBoxChangesItsFlagAtOnce();
    void wireBytes();
    void replies_data();
    void replies();
    void transportErrorCancels();
    void doubleClickSendsOnce();
    void onlyTheFirstResultCounts();
    void keysAloneAreEnough();
    void languageChangeReappliesTheTexts();
};

void tst_NotificationsController::formIsAsLaidDown()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    const auto text = [&alerts](const char *name) {
        const auto *label = alerts.frame->findChild<QLabel *>(QLatin1String(name));
        return label ? label->text() : alerts.box(name)->text();
    };
    QCOMPARE(text("label"), QStringLiteral("Email:"));
    QCOMPARE(text("labelTitleOfNotifications"),
             QStringLiteral("Check the Alerts you want to receive when ...:"));
    QCOMPARE(text("checkBoxOnBid"), QStringLiteral("Photo or video is bid on"));
    QCOMPARE(text("checkBoxOnAuctionEnd"), QStringLiteral("Auction is won"));
    QCOMPARE(text("checkBoxOnView"), QStringLiteral("Photo or video has been viewed"));
    QCOMPARE(text("checkBoxBuyerQuestion"), QStringLiteral("Buyer asks a question"));
    QCOMPARE(alerts.button()->text(), QStringLiteral("Done"));
    QVERIFY(alerts.button()->isEnabled());

    auto *line = alerts.frame->findChild<QLineEdit *>(QStringLiteral("lineNotification"));
    QVERIFY(line->isReadOnly());
    QCOMPARE(line->text(), QStringLiteral("zofie@example.org"));
    QCOMPARE(alerts.frame->findChild<QLabel *>(QStringLiteral("label"))->buddy(), line);
    const auto *holder = alerts.frame->findChild<QFrame *>(QStringLiteral("frameButtons"));
    const QList<QWidget *> parts = holder->findChildren<QWidget *>(QRegularExpression(
        QStringLiteral("^(label|lineNotification|labelTitle.*|checkBox.*|pushButtonDone)$")));
    QCOMPARE(parts.size(), 8);
    QCOMPARE(nameless(alerts.frame), QByteArrayList());
}

void tst_NotificationsController::fitsTheSmallestWindowAndGrows()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    for (const QSize &size : {QSize(800, 344), QSize(1920, 1000)}) {
        alerts.stage.resize(size);
        QCOMPARE(cutOff(alerts.frame), QByteArrayList());
        QCOMPARE(alerts.frame->size(), size);
        QVERIFY(alerts.button()->height() >= 70);
        for (const char *name : boxNames)
            QVERIFY(alerts.box(name)->height() >= 44);
    }
}

void tst_NotificationsController::tabOrderIsTheReadingOrder()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    QCOMPARE(tabOrder(alerts.frame->findChild<QWidget *>(QStringLiteral("lineNotification"))),
             QByteArrayList({"lineNotification", "checkBoxOnBid", "checkBoxOnAuctionEnd",
                             "checkBoxOnView", "checkBoxBuyerQuestion", "pushButtonDone"}));
}

void tst_NotificationsController::boxesShowTheRecord_data()
{
    QTest::addColumn<int>("bits");
    for (int bits = 0; bits < 16; ++bits)
        QTest::addRow("%d", bits) << bits;
}

void tst_NotificationsController::boxesShowTheRecord()
{
    QFETCH(int, bits);
    CKavlorNotificationOptions::Flags flags;
    flags.onBid = (bits & 1) != 0;
    flags.onAuctionEnd = (bits & 2) != 0;
    flags.onView = (bits & 4) != 0;
    flags.onBuyerQuestion = (bits & 8) != 0;
    const Alerts alerts(flags);
    for (int box = 0; box < 4; ++box)
        QCOMPARE(alerts.box(boxNames[box])->isChecked(), ((bits >> box) & 1) != 0);
    QVERIFY(!alerts.options.isInitialized());
}

void tst_NotificationsController::everyBoxChangesItsFlagAtOnce_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("text");
    QTest::newRow("bid") << QByteArray("checkBoxOnBid") << "1,0,0,0";
    QTest::newRow("auction end") << QByteArray("checkBoxOnAuctionEnd") << "0,1,0,0";
    QTest::newRow("view") << QByteArray("checkBoxOnView") << "0,0,1,0";
    QTest::newRow("question") << QByteArray("checkBoxBuyerQuestion") << "0,0,0,1";
}

void tst_NotificationsController::everyBoxChangesItsFlagAtOnce()
{
    QFETCH(QByteArray, box);
    QFETCH(QString, text);
    Alerts alerts;
    QVERIFY(alerts.isShown);
    clickBox(alerts.box(box));
    QCOMPARE(alerts.options.toText(), text);
    QVERIFY(alerts.options.isInitialized());
    clickBox(alerts.box(box));
    QCOMPARE(alerts.options.toText(), QStringLiteral("0,0,0,0"));
    QVERIFY2(alerts.stage.service.isDone(), alerts.stage.service.report());
}

void tst_NotificationsController::wireBytes()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    alerts.stage.service.expect("SetNotificationOptions", "1");
    clickBox(alerts.box("checkBoxOnAuctionEnd"));
    clickBox(alerts.box("checkBoxBuyerQuestion"));
    QTest::mouseClick(alerts.button(), Qt::LeftButton);
    QTRY_COMPARE(alerts.done.size(), 1);
    QCOMPARE(alerts.stage.service.requests().constFirst().body,
             QByteArray("Username=%C5%BEofie&Password=s%20%26%20t&NotifyOnBid=0"
                        "&NotifyOnAuctionEnd=1&NotifyOnView=0&NotifyOnBuyerQuestion=1"
                        "&SUBMIT=Submit"));
    QVERIFY2(alerts.stage.service.isDone(), alerts.stage.service.report());
}

void tst_NotificationsController::replies_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("accepted");
    const auto body = [](const char *row, const QByteArray &text, bool accepted) {
        QTest::newRow(row) << ScriptedService::reply(text) << accepted;
    };
    body("zero", "0", false);
    body("seventeen", "17", true);
    body("below zero", "-1", true);
    body("with a line end", "17\n", true);
    body("no number", "yes", false);
    body("number and more", "17 options", false);
    body("empty", "", false);
    body("refused by the service", "ERROR: 17", false);
    body("beyond an integer", "99999999999", false);
    QTest::newRow("refused status")
        << ScriptedService::reply("17", "text/plain", "404 Not Found") << false;
}

void tst_NotificationsController::replies()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, accepted);
    Alerts alerts;
    QVERIFY(alerts.isShown);
    ScriptedService::Step step;
    step.operation = "SetNotificationOptions";
    step.bytes = reply;
    alerts.stage.service.expect(step);
    QTest::mouseClick(alerts.button(), Qt::LeftButton);
    QTRY_COMPARE(alerts.done.size() + alerts.cancelled.size(), 1);
    QCOMPARE(alerts.done.size(), accepted ? 1 : 0);
    QVERIFY(!alerts.button()->isEnabled());
    QVERIFY(alerts.stage.dialogs.boxes().isEmpty());
}

void tst_NotificationsController::transportErrorCancels()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    ScriptedService::Step step;
    step.operation = "SetNotificationOptions";
    step.then = ScriptedService::Reset;
    alerts.stage.service.expect(step);
    QTest::mouseClick(alerts.button(), Qt::LeftButton);
    QTRY_COMPARE(alerts.cancelled.size(), 1);
    QCOMPARE(alerts.done.size(), 0);
}

void tst_NotificationsController::doubleClickSendsOnce()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    alerts.stage.service.expect("SetNotificationOptions", "1");
    QTest::mouseDClick(alerts.button(), Qt::LeftButton);
    QTest::mouseClick(alerts.button(), Qt::LeftButton);
    QTRY_COMPARE(alerts.done.size(), 1);
    QTest::mouseClick(alerts.button(), Qt::LeftButton);
    QVERIFY(alerts.stage.settle());
    QCOMPARE(alerts.stage.service.operations().count("SetNotificationOptions"), 1);
    QVERIFY2(alerts.stage.service.isDone(), alerts.stage.service.report());
}

void tst_NotificationsController::onlyTheFirstResultCounts()
{
    // The request object reports a time-out in the middle of the transfer, and then its end.
    testTimeConstants().formTimeout = 50;
    Alerts alerts;
    QVERIFY(alerts.isShown);
    alerts.stage.service.expectHeld("SetNotificationOptions", "1");
    QTest::mouseClick(alerts.button(), Qt::LeftButton);
    QTRY_VERIFY(alerts.stage.service.isHolding());
    QTRY_COMPARE(alerts.cancelled.size(), 1);
    const QSignalSpy finished(alerts.frame->findChild<CHttpTolvex *>(),
                              qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    alerts.stage.service.release();
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(alerts.cancelled.size(), 1);
    QCOMPARE(alerts.done.size(), 0);
}

void tst_NotificationsController::keysAloneAreEnough()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    alerts.stage.service.expect("SetNotificationOptions", "1");
    alerts.box("checkBoxOnBid")->setFocus();
    for (int box = 0; box < 4; ++box) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(alerts.options.toText(), QStringLiteral("1,1,1,1"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTRY_COMPARE(alerts.done.size(), 1);
}

void tst_NotificationsController::languageChangeReappliesTheTexts()
{
    Alerts alerts;
    QVERIFY(alerts.isShown);
    clickBox(alerts.box("checkBoxOnView"));
    alerts.button()->setText(QStringLiteral("Fertig"));
    alerts.box("checkBoxOnBid")->setText(QStringLiteral("Gebot"));

    QEvent event(QEvent::LanguageChange);
    QCoreApplication::sendEvent(alerts.frame, &event);
    QCOMPARE(alerts.button()->text(), QStringLiteral("Done"));
    QCOMPARE(alerts.box("checkBoxOnBid")->text(), QStringLiteral("Photo or video is bid on"));
    QVERIFY(alerts.box("checkBoxOnView")->isChecked());
    QCOMPARE(alerts.frame->findChild<QLineEdit *>(QStringLiteral("lineNotification"))->text(),
             QStringLiteral("zofie@example.org"));
}

KAVLOR_TEST_MAIN(tst_NotificationsController)
#include "tst_notificationscontroller.moc"
