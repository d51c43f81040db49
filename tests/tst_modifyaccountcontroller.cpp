// SPDX-License-Identifier: MIT

#include "framestage.h"
#include "httptolvex.h"
#include "modifyaccountcontroller.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

using Field = CKavlorUser::Field;

namespace {

// The frame with a live record of its own, and what its two signals have said.
class Account
{
public:
    Account()
        : user(&stage.settings, nullptr, false, memberFields())
    {
        user.setUserId(9);
    }

    bool open()
    {
        frame = new CModifyAccountController(&user, stage.area());
        done = std::make_unique<QSignalSpy>(frame, &CModifyAccountController::Done);
        cancelled = std::make_unique<QSignalSpy>(frame, &CModifyAccountController::CancelOnError);
        return stage.show(frame);
    }

    QLineEdit *line(const char *name) const
    {
        return frame->findChild<QLineEdit *>(QLatin1String(name));
    }
    QCheckBox *box(const char *name) const
    {
        return frame->findChild<QCheckBox *>(QLatin1String(name));
    }
    QPushButton *button() const
    {
        return frame->findChild<QPushButton *>(QStringLiteral("pushButtonDone"));
    }
    QString error() const
    {
        return frame->findChild<QLabel *>(QStringLiteral("errorLabelText"))->text();
    }
    void click(const char *boxName)
    {
        clickBox(box(boxName));
    }
    void type(const char *name, const QString &text)
    {
        typeInto(line(name), text);
    }
    void submit()
    {
        QTest::mouseClick(button(), Qt::LeftButton);
    }
    /** Unlocks the password and types another one twice. */
    void changePassword(const QString &password)
    {
        click("checkBoxPassword");
        type("linePassword", password);
        type("lineConfirm", password);
    }
    /** Whether both password lines are in the same, given state. */
    bool passwordLines(bool locked, const QString &text, bool selected) const
    {
        for (const char *name : {"linePassword", "lineConfirm"}) {
            const QLineEdit *one = line(name);
            if (one->isReadOnly() != locked || one->text() != text
                || one->hasSelectedText() != selected) {
                return false;
            }
        }
        return true;
    }
    /** The body of the one request, after the frame has ended. */
    QByteArray sent()
    {
        submit();
        if (!waitUntil([this] { return !done->isEmpty() || !cancelled->isEmpty(); }))
            return "no end";
        return stage.service.requests().value(0).body;
    }

    FrameStage stage;
    CKavlorUser user;
    CModifyAccountController *frame = nullptr;
    std::unique_ptr<QSignalSpy> done;
    std::unique_ptr<QSignalSpy> cancelled;
};

QByteArray body(const QByteArray &email, const QByteArray &password, const QByteArray &paypal)
{
    return "Password=secret&&Username=m1&&Password1=" + password + "&&Password2=" + password
        + "&&EmailAddress=" + email + "&&PaypalAddress=" + paypal + "&SUBMIT=Submit";
}

} // namespace

class tst_ModifyAccountController : public TestCase
{
    Q_OBJECT

private slots:
    void formIsAsLaidDown();
    void lineEdits_data();
    void lineEdits();
    void fitsTheSmallestWindowAndGrows();
    void tabOrderIsTheReadingOrder();
    void returnSubmits_data();
    void returnSubmits();

    void unlockedEmailIsReadyToBeTypedOver();
    void lockedEmailIsRestored();
    void unlockedPaypalIsReadyToBeTypedOver();
    void lockedPaypalIsRestored();
    void passwordBoxAloneRestoresAndDoesNotFocus();
    void passwordBoxWithTheEmailUnlockedFocuses();
    void lockingThePasswordWithTheEmailUnlockedKeepsTheTyping();
    void lockingThePasswordWithTheEmailLockedRestores();
    void lockedLinesTakeNoKeys();
    void capitalAtTheStartBecomesLowerCaseAtOnce();
    void onlyTheFirstLetterOfTheAddressIsTouched_data();
    void onlyTheFirstLetterOfTheAddressIsTouched();
    void cursorStaysWhereItWas();
    void aLongAddressIsShownFromItsBeginning();

    void differingConfirmationIsRefused();
    void validationMessages_data();
    void validationMessages();
    void correctedFormIsSent();
    void allLockedSendsTheLiveValues();
    void eachLockAloneAndTogether_data();
    void eachLockAloneAndTogether();
    void lockedAgainSendsTheLiveValue();
    void wireBytesWithOtherLetters();
    void formIsDisabledAfterSending();
    void doubleClickSendsOnce();
    void successIsStoredWithItsNumber();
    void refusals_data();
    void refusals();
    void recordChangesOnlyWithTheReply();
    void onlyTheFirstResultCounts();
};

void tst_ModifyAccountController::formIsAsLaidDown()
{
    Account account;
    QVERIFY(account.open());
    const auto *controls = account.frame->findChild<QFrame *>(QStringLiteral("frameControls"));
    QVERIFY(controls->findChild<QPushButton *>(QStringLiteral("pushButtonDone")));
    QVERIFY(controls->findChild<QLabel *>(QStringLiteral("errorLabelText")));
    QCOMPARE(account.error(), QString());
    QCOMPARE(account.button()->text(), QStringLiteral("Done"));
    const QList<QPair<const char *, const char *>> boxes{
        {"checkBoxEmail", "Unlock to change email address"},
        {"checkBoxPassword", "Unlock to change password"},
        {"checkBoxPaypal", "Unlock to change paypal address"}};
    for (const auto &[name, toolTip] : boxes) {
        QCOMPARE(account.box(name)->text(), QStringLiteral("Don't change"));
        QCOMPARE(account.box(name)->toolTip(), QLatin1String(toolTip));
        QVERIFY(account.box(name)->isChecked());
    }
    QVERIFY(account.line("lineEmail")->dynamicPropertyNames().contains("edited"));
    QCOMPARE(nameless(account.frame), QByteArrayList());
}

void tst_ModifyAccountController::lineEdits_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("labelText");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QString>("text");

    QTest::newRow("e-mail") << QByteArray("lineEmail") << "label_3"
                            << "Email:" << 80 << false << "m1@example.org";
    QTest::newRow("password") << QByteArray("linePassword") << "label"
                              << "New Password:" << 100 << true << "secret";
    QTest::newRow("paypal") << QByteArray("linePaypal") << "label_4"
                            << "PayPal:" << 80 << false << "m1@pay";
    QTest::newRow("confirm") << QByteArray("lineConfirm") << "label_2"
                             << "Confirm:" << 100 << true << "secret";
}

void tst_ModifyAccountController::lineEdits()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, label);
    QFETCH(QString, labelText);
    QFETCH(int, limit);
    QFETCH(bool, hidden);
    QFETCH(QString, text);

    Account account;
    QVERIFY(account.open());
    auto *line = account.line(name);
    const auto *itsLabel = account.frame->findChild<QLabel *>(label);
    QCOMPARE(itsLabel->text(), labelText);
    QCOMPARE(itsLabel->buddy(), line);
    QCOMPARE(line->maxLength(), limit);
    QCOMPARE(line->echoMode(), hidden ? QLineEdit::Password : QLineEdit::Normal);
    QCOMPARE(line->text(), text);
    QVERIFY(line->isReadOnly());
    QVERIFY(line->testAttribute(Qt::WA_InputMethodEnabled));
    QVERIFY(line->height() >= 45);
}

void tst_ModifyAccountController::fitsTheSmallestWindowAndGrows()
{
    Account account;
    QVERIFY(account.open());
    for (const QSize &size : {QSize(800, 344), QSize(1920, 1000)}) {
        account.stage.resize(size);
        for (const QString &error :
             {QString(), QStringLiteral("Twitter Password exceeds field length limit(50)")}) {
            account.frame->findChild<QLabel *>(QStringLiteral("errorLabelText"))->setText(error);
            QCoreApplication::processEvents();
            QCOMPARE(cutOff(account.frame), QByteArrayList());
            QCOMPARE(account.frame->size(), size);
            QVERIFY(account.button()->height() >= 70);
            QVERIFY(account.box("checkBoxEmail")->height() >= 45);
            QVERIFY(account.line("linePaypal")->height() >= 45);
        }
    }
}

void tst_ModifyAccountController::tabOrderIsTheReadingOrder()
{
    Account account;
    QVERIFY(account.open());
    QCOMPARE(tabOrder(account.line("lineEmail")),
             QByteArrayList({"lineEmail", "checkBoxEmail", "linePassword", "checkBoxPassword",
                             "lineConfirm", "linePaypal", "checkBoxPaypal", "pushButtonDone"}));
}

void tst_ModifyAccountController::returnSubmits_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("box");
    QTest::newRow("e-mail") << QByteArray("lineEmail") << QByteArray("checkBoxEmail");
    QTest::newRow("password") << QByteArray("linePassword") << QByteArray("checkBoxPassword");
    QTest::newRow("confirm") << QByteArray("lineConfirm") << QByteArray("checkBoxPassword");
    QTest::newRow("paypal") << QByteArray("linePaypal") << QByteArray("checkBoxPaypal");
    QTest::newRow("button") << QByteArray("pushButtonDone") << QByteArray();
}

void tst_ModifyAccountController::returnSubmits()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, box);
    Account account;
    QVERIFY(account.open());
    account.stage.service.expect("ModifyAccount", "9");
    if (!box.isEmpty())
        account.click(box);
    QTest::keyClick(account.frame->findChild<QWidget *>(QLatin1String(name)), Qt::Key_Return);
    QTRY_COMPARE(account.done->size(), 1);
    QVERIFY2(account.stage.service.isDone(), account.stage.service.report());
}

void tst_ModifyAccountController::unlockedEmailIsReadyToBeTypedOver()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    auto *line = account.line("lineEmail");
    QVERIFY(!line->isReadOnly());
    QVERIFY(line->testAttribute(Qt::WA_InputMethodEnabled));
    QCOMPARE(line->selectedText(), QStringLiteral("m1@example.org"));
    QVERIFY(line->hasFocus());
    QTest::keyClicks(line, QStringLiteral("m2@b"));
    QCOMPARE(line->text(), QStringLiteral("m2@b"));
    QVERIFY(account.line("linePassword")->isReadOnly());
    QVERIFY(account.line("lineConfirm")->isReadOnly());
    QVERIFY(account.line("linePaypal")->isReadOnly());
}

void tst_ModifyAccountController::lockedEmailIsRestored()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral("m2@b"));
    account.click("checkBoxEmail");
    QCOMPARE(account.line("lineEmail")->text(), QStringLiteral("m1@example.org"));
    QVERIFY(account.line("lineEmail")->isReadOnly());
    QVERIFY(!account.line("lineEmail")->hasSelectedText());
}

void tst_ModifyAccountController::unlockedPaypalIsReadyToBeTypedOver()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxPaypal");
    auto *line = account.line("linePaypal");
    QVERIFY(!line->isReadOnly());
    QCOMPARE(line->selectedText(), QStringLiteral("m1@pay"));
    QVERIFY(line->hasFocus());
    QVERIFY(account.line("lineEmail")->isReadOnly());
    QVERIFY(account.line("linePassword")->isReadOnly());
}

void tst_ModifyAccountController::lockedPaypalIsRestored()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxPaypal");
    account.type("linePaypal", QString());
    account.click("checkBoxPaypal");
    QCOMPARE(account.line("linePaypal")->text(), QStringLiteral("m1@pay"));
    QVERIFY(account.line("linePaypal")->isReadOnly());
    QVERIFY(!account.line("linePaypal")->hasSelectedText());
}

void tst_ModifyAccountController::passwordBoxAloneRestoresAndDoesNotFocus()
{
    Account account;
    QVERIFY(account.open());
    account.line("linePaypal")->setFocus();
    account.click("checkBoxPassword");
    QVERIFY(account.passwordLines(false, QStringLiteral("secret"), false));
    QVERIFY(!account.line("linePassword")->hasFocus());
    QVERIFY(!account.line("lineConfirm")->hasFocus());
}

void tst_ModifyAccountController::passwordBoxWithTheEmailUnlockedFocuses()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.click("checkBoxPassword");
    QVERIFY(account.passwordLines(false, QStringLiteral("secret"), true));
    QVERIFY(account.line("linePassword")->hasFocus());
}

void tst_ModifyAccountController::lockingThePasswordWithTheEmailUnlockedKeepsTheTyping()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.changePassword(QStringLiteral("new"));
    account.click("checkBoxPassword");
    QVERIFY(account.passwordLines(true, QStringLiteral("new"), true));
}

void tst_ModifyAccountController::lockingThePasswordWithTheEmailLockedRestores()
{
    Account account;
    QVERIFY(account.open());
    account.changePassword(QStringLiteral("new"));
    account.click("checkBoxPassword");
    QVERIFY(account.passwordLines(true, QStringLiteral("secret"), false));
}

void tst_ModifyAccountController::lockedLinesTakeNoKeys()
{
    Account account;
    QVERIFY(account.open());
    for (const char *name : {"lineEmail", "linePassword", "linePaypal", "lineConfirm"}) {
        const QString before = account.line(name)->text();
        account.type(name, QStringLiteral("other"));
        QCOMPARE(account.line(name)->text(), before);
    }
}

void tst_ModifyAccountController::capitalAtTheStartBecomesLowerCaseAtOnce()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    auto *line = account.line("lineEmail");
    QTest::keyClicks(line, QStringLiteral("M"));
    QCOMPARE(line->text(), QStringLiteral("m"));
    QCOMPARE(line->cursorPosition(), 1);
    QTest::keyClicks(line, QStringLiteral("Ira@Example.org"));
    QCOMPARE(line->text(), QStringLiteral("mIra@Example.org"));
}

void tst_ModifyAccountController::onlyTheFirstLetterOfTheAddressIsTouched_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("text");
    QTest::newRow("capital") << "Mira@b"
                             << "mira@b";
    QTest::newRow("all capitals") << "MIRA@B"
                                  << "mIRA@B";
    QTest::newRow("small") << "mIra@b"
                           << "mIra@b";
    QTest::newRow("digit") << "1Mira@b"
                           << "1Mira@b";
    QTest::newRow("other letters")
        << QStringLiteral(u"\u017Dofie@b") << QStringLiteral(u"\u017Eofie@b");
    QTest::newRow("title case is no upper case")
        << QStringLiteral(u"\u01C5@b") << QStringLiteral(u"\u01C5@b");
}

void tst_ModifyAccountController::onlyTheFirstLetterOfTheAddressIsTouched()
{
    QFETCH(QString, typed);
    QFETCH(QString, text);
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", typed);
    QCOMPARE(account.line("lineEmail")->text(), text);
}

void tst_ModifyAccountController::cursorStaysWhereItWas()
{
    Account account;
    account.user.setField(CKavlorUser::EmailAddress, QStringLiteral("Mira@b"));
    QVERIFY(account.open());
    QCOMPARE(account.line("lineEmail")->text(), QStringLiteral("Mira@b"));
    account.click("checkBoxEmail");
    account.line("lineEmail")->setCursorPosition(3);
    QCOMPARE(account.line("lineEmail")->text(), QStringLiteral("mira@b"));
    QCOMPARE(account.line("lineEmail")->cursorPosition(), 3);

    account.line("lineEmail")->clear();
    account.frame->emailPosChanged();
    QCOMPARE(account.line("lineEmail")->text(), QString());
}

void tst_ModifyAccountController::aLongAddressIsShownFromItsBeginning()
{
    Account account;
    const QString name(70, QLatin1Char('n'));
    account.user.setField(Field::EmailAddress, name + QStringLiteral("@example.org"));
    QVERIFY(account.open());
    QLineEdit *line = account.line("lineEmail");
    const QImage before = line->grab().toImage();
    line->setCursorPosition(0);
    QCOMPARE(line->grab().toImage(), before);
}

void tst_ModifyAccountController::differingConfirmationIsRefused()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxPassword");
    account.type("lineConfirm", QStringLiteral("other"));
    account.submit();
    QCOMPARE(account.error(), QStringLiteral("Password does not match."));
    QVERIFY(account.frame->findChild<QLabel *>(QStringLiteral("errorLabelText"))->isVisible());
    QVERIFY(account.button()->isEnabled());
    QVERIFY2(account.stage.service.isDone(), account.stage.service.report());
    QCOMPARE(account.done->size() + account.cancelled->size(), 0);
}

// What the live record holds, or what is typed into a line that was unlocked, and the message.
void tst_ModifyAccountController::validationMessages_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("message");

    const auto tooLong = [](const char *row, Field field, int limit, const char *name) {
        QTest::newRow(row) << static_cast<int>(field) << QString(limit + 1, QLatin1Char('x'))
                           << QStringLiteral("%1 exceeds field length limit(%2)")
                                  .arg(QLatin1String(name))
                                  .arg(limit);
    };
    tooLong("long user name", CKavlorUser::Username, 100, "Username");
    tooLong("long first name", CKavlorUser::FirstName, 50, "First Name");
    tooLong("long last name", CKavlorUser::LastName, 50, "Last Name");
    tooLong("long country", CKavlorUser::CountryID, 2, "Country ID");
    tooLong("long gender", CKavlorUser::Gender, 1, "Gender");
    tooLong("long language", CKavlorUser::Language, 2, "Language");
    tooLong("long twitter name", CKavlorUser::TwitterUsername, 50, "Twitter Username");
    tooLong("long twitter password", CKavlorUser::TwitterPassword, 50, "Twitter Password");
    QTest::newRow("no user name") << static_cast<int>(CKavlorUser::Username) << QString()
                                  << "Username must be defined";
    QTest::newRow("no password") << static_cast<int>(CKavlorUser::Password) << QString()
                                 << "Password must be defined";
    QTest::newRow("no e-mail") << static_cast<int>(CKavlorUser::EmailAddress) << QString()
                               << "Email Address must be defined";
    QTest::newRow("e-mail without an at sign")
        << static_cast<int>(CKavlorUser::EmailAddress) << "m1.example.org"
        << "Email Address is invalid";
    QTest::newRow("paypal without an at sign")
        << static_cast<int>(CKavlorUser::PaypalAddress) << "m1"
        << "Paypal Address is invalid";
    QTest::newRow("gender in lower case") << static_cast<int>(CKavlorUser::Gender) << "m"
                                          << "Gender is invalid";
}

void tst_ModifyAccountController::validationMessages()
{
    QFETCH(int, field);
    QFETCH(QString, text);
    QFETCH(QString, message);

    Account account;
    QVERIFY(account.open());
    switch (field) {
    case CKavlorUser::Password:
        account.changePassword(text);
        break;
    case CKavlorUser::EmailAddress:
        account.click("checkBoxEmail");
        account.type("lineEmail", text);
        break;
    case CKavlorUser::PaypalAddress:
        account.click("checkBoxPaypal");
        account.type("linePaypal", text);
        break;
    default:
        account.user.setField(Field(field), text);
    }
    account.submit();
    QCOMPARE(account.error(), message);
    QVERIFY2(account.stage.service.isDone(), account.stage.service.report());
}

void tst_ModifyAccountController::correctedFormIsSent()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral("m2"));
    account.submit();
    QCOMPARE(account.error(), QStringLiteral("Email Address is invalid"));
    account.stage.service.expect("ModifyAccount", "9");
    account.type("lineEmail", QStringLiteral("m2@b"));
    QCOMPARE(account.sent(), body("m2@b", "secret", "m1@pay"));
    QCOMPARE(account.error(), QString());
    QVERIFY(!account.frame->findChild<QLabel *>(QStringLiteral("errorLabelText"))->isVisible());
    QCOMPARE(account.done->size(), 1);
}

void tst_ModifyAccountController::allLockedSendsTheLiveValues()
{
    Account account;
    QVERIFY(account.open());
    // Changed after the form was filled in: it is the live record that counts.
    account.user.setField(CKavlorUser::PaypalAddress, QStringLiteral("m3@pay"));
    account.stage.service.expect("ModifyAccount", "9");
    QCOMPARE(account.sent(), body("m1@example.org", "secret", "m3@pay"));
    QCOMPARE(account.done->size(), 1);
    QVERIFY2(account.stage.service.isDone(), account.stage.service.report());
}

void tst_ModifyAccountController::eachLockAloneAndTogether_data()
{
    QTest::addColumn<bool>("email");
    QTest::addColumn<bool>("password");
    QTest::addColumn<bool>("paypal");
    for (int bits = 0; bits < 8; ++bits) {
        QTest::addRow("e-mail %d password %d paypal %d", bits & 1, (bits >> 1) & 1, bits >> 2)
            << ((bits & 1) != 0) << ((bits & 2) != 0) << ((bits & 4) != 0);
    }
}

void tst_ModifyAccountController::eachLockAloneAndTogether()
{
    QFETCH(bool, email);
    QFETCH(bool, password);
    QFETCH(bool, paypal);

    Account account;
    QVERIFY(account.open());
    if (email) {
        account.click("checkBoxEmail");
        account.type("lineEmail", QStringLiteral("m2@b"));
    }
    if (password)
        account.changePassword(QStringLiteral("new"));
    if (paypal) {
        account.click("checkBoxPaypal");
        account.type("linePaypal", QString());
    }
    account.stage.service.expect("ModifyAccount", "17");
    QCOMPARE(account.sent(),
             body(email ? "m2@b" : "m1@example.org", password ? "new" : "secret",
                  paypal ? "" : "m1@pay"));
    QCOMPARE(account.done->size(), 1);
    QCOMPARE(account.user.field(CKavlorUser::EmailAddress),
             email ? QStringLiteral("m2@b") : QStringLiteral("m1@example.org"));
    QCOMPARE(account.user.field(CKavlorUser::Password),
             password ? QStringLiteral("new") : QStringLiteral("secret"));
    QCOMPARE(account.user.field(CKavlorUser::PaypalAddress),
             paypal ? QString() : QStringLiteral("m1@pay"));
    QCOMPARE(account.user.userId(), 17);
    QVERIFY2(account.stage.service.isDone(), account.stage.service.report());
}

void tst_ModifyAccountController::lockedAgainSendsTheLiveValue()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral("m2@b"));
    account.click("checkBoxEmail");
    account.stage.service.expect("ModifyAccount", "9");
    QCOMPARE(account.sent(), body("m1@example.org", "secret", "m1@pay"));
}

void tst_ModifyAccountController::wireBytesWithOtherLetters()
{
    Account account;
    account.user.setField(CKavlorUser::Username, QStringLiteral(u"\u017Eofie"));
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral(u"\u017Eofie@\u010Desko"));
    account.changePassword(QStringLiteral(u"p\u00E4ss & word"));
    account.click("checkBoxPaypal");
    account.type("linePaypal", QStringLiteral("a+b@pay"));
    account.stage.service.expect("ModifyAccount", "9");
    QCOMPARE(account.sent(),
             QByteArray("Password=secret&&Username=%C5%BEofie&&Password1=p%C3%A4ss%20%26%20word"
                        "&&Password2=p%C3%A4ss%20%26%20word&&EmailAddress=%C5%BEofie@%C4%8Desko"
                        "&&PaypalAddress=a%2Bb@pay&SUBMIT=Submit"));
}

void tst_ModifyAccountController::formIsDisabledAfterSending()
{
    Account account;
    QVERIFY(account.open());
    account.stage.service.expectHeld("ModifyAccount", "0");
    account.submit();
    QVERIFY(!account.frame->findChild<QFrame *>(QStringLiteral("frameControls"))->isEnabled());
    QVERIFY(!account.button()->isEnabled());
    QTRY_VERIFY(account.stage.service.isHolding());
    account.stage.service.release();
    QTRY_COMPARE(account.cancelled->size(), 1);
    QVERIFY(!account.button()->isEnabled());
}

void tst_ModifyAccountController::doubleClickSendsOnce()
{
    Account account;
    QVERIFY(account.open());
    account.stage.service.expect("ModifyAccount", "9");
    QTest::mouseDClick(account.button(), Qt::LeftButton);
    QTest::mouseClick(account.button(), Qt::LeftButton);
    account.frame->doneClicked();
    QTRY_COMPARE(account.done->size(), 1);
    QVERIFY(account.stage.settle());
    QCOMPARE(account.stage.service.operations().count("ModifyAccount"), 1);
    QVERIFY2(account.stage.service.isDone(), account.stage.service.report());
}

void tst_ModifyAccountController::successIsStoredWithItsNumber()
{
    Account account;
    account.user.setField(CKavlorUser::FirstName, QStringLiteral(u"\u017Dofie"));
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral("m2@b"));
    account.stage.service.expect("ModifyAccount", "4711\n");
    account.sent();
    QCOMPARE(account.done->size(), 1);
    QCOMPARE(account.user.userId(), 4711);

    const auto kept = [&account](const char *key) {
        return account.stage.settings.value(QStringLiteral("UserData.m1/") + QLatin1String(key))
            .toString();
    };
    QCOMPARE(kept("Username"), QStringLiteral("m1"));
    QCOMPARE(kept("Password"), QStringLiteral("secret"));
    QCOMPARE(kept("First Name"), QStringLiteral(u"\u017Dofie"));
    QCOMPARE(kept("Email Address"), QStringLiteral("m2@b"));
    QCOMPARE(kept("Paypal Address"), QStringLiteral("m1@pay"));
    QCOMPARE(kept("UserID"), QStringLiteral("4711"));
    QCOMPARE(account.stage.settings.value(QStringLiteral("last/USERID")).toString(),
             QStringLiteral("m1"));
    QCOMPARE(account.stage.settings.allKeys().size(), 13);
}

void tst_ModifyAccountController::refusals_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("zero") << ScriptedService::reply("0");
    QTest::newRow("no number") << ScriptedService::reply("yes");
    QTest::newRow("number and more") << ScriptedService::reply("17 done");
    QTest::newRow("empty") << ScriptedService::reply("");
    QTest::newRow("refused by the service") << ScriptedService::reply("ERROR: 17");
    QTest::newRow("refused status")
        << ScriptedService::reply("17", "text/plain", "500 Internal Server Error");
    QTest::newRow("no reply") << QByteArray();
}

void tst_ModifyAccountController::refusals()
{
    QFETCH(QByteArray, reply);
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral("m2@b"));
    ScriptedService::Step step;
    step.operation = "ModifyAccount";
    step.bytes = reply;
    step.then = reply.isEmpty() ? ScriptedService::Reset : ScriptedService::KeepOpen;
    account.stage.service.expect(step);
    account.sent();
    QCOMPARE(account.cancelled->size(), 1);
    QCOMPARE(account.done->size(), 0);
    QCOMPARE(account.user.field(CKavlorUser::EmailAddress), QStringLiteral("m1@example.org"));
    QCOMPARE(account.user.userId(), 9);
    QCOMPARE(account.stage.settings.allKeys(), QStringList());
    QVERIFY(account.stage.dialogs.boxes().isEmpty());
}

void tst_ModifyAccountController::recordChangesOnlyWithTheReply()
{
    Account account;
    QVERIFY(account.open());
    account.click("checkBoxEmail");
    account.type("lineEmail", QStringLiteral("m2@b"));
    account.stage.service.expectHeld("ModifyAccount", "17");
    account.submit();
    QTRY_VERIFY(account.stage.service.isHolding());
    QCOMPARE(account.user.field(CKavlorUser::EmailAddress), QStringLiteral("m1@example.org"));
    account.stage.service.release();
    QTRY_COMPARE(account.done->size(), 1);
    QCOMPARE(account.user.field(CKavlorUser::EmailAddress), QStringLiteral("m2@b"));
}

void tst_ModifyAccountController::onlyTheFirstResultCounts()
{
    // The request object reports a time-out in the middle of the transfer, and then its end.
    testTimeConstants().formTimeout = 50;
    Account account;
    QVERIFY(account.open());
    account.stage.service.expectHeld("ModifyAccount", "17");
    account.submit();
    QTRY_VERIFY(account.stage.service.isHolding());
    QTRY_COMPARE(account.cancelled->size(), 1);
    const QSignalSpy finished(account.frame->findChild<CHttpTolvex *>(),
                              qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    account.stage.service.release();
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(account.cancelled->size(), 1);
    QCOMPARE(account.done->size(), 0);
    QCOMPARE(account.user.userId(), 9);
}

KAVLOR_TEST_MAIN(tst_ModifyAccountController)
#include "tst_modifyaccountcontroller.moc"
