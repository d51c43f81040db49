// SPDX-License-Identifier: MIT

#include "framecreateaccount.h"
#include "framestage.h"
#include "httptolvex.h"
#include "kavloruser.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTextBlock>

#include <functional>

using Field = CKavlorUser::Field;

namespace {

// The frame without a root window above it, so that it fetches the terms itself.
class Creation
{
public:
    Creation()
        : user(&stage.settings, nullptr, false, CKavlorUser::defaultFields())
    {
    }

    bool open(const QByteArray &terms = "<p>terms</p>")
    {
        stage.service.expect("GetServiceTerms", terms);
        return openUnscripted() && waitUntil([this] { return box()->isEnabled(); });
    }
    bool openUnscripted()
    {
        frame = new FrameCreateAccount(&stage.settings, &user, stage.area());
        return stage.show(frame);
    }

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return frame->findChild<Widget *>(QLatin1String(name));
    }
    QLineEdit *line(const char *name) const
    {
        return find<QLineEdit>(name);
    }
    QCheckBox *box() const
    {
        return find<QCheckBox>("checkTerms");
    }
    QPushButton *button() const
    {
        return find<QPushButton>("submitButton");
    }
    QString error() const
    {
        return find<QLabel>("errorLabelText")->text();
    }
    QString toolTip() const
    {
        return find<QTabWidget>("tabWidget")->toolTip();
    }

    void showTab(int index)
    {
        find<QTabWidget>("tabWidget")->setCurrentIndex(index);
    }
    void type(const char *name, const QString &text)
    {
        typeInto(line(name), text);
    }
    void acceptTerms()
    {
        showTab(1);
        clickBox(box());
        showTab(0);
    }
    void fillIn()
    {
        type("lineUsername", QStringLiteral("m1"));
        type("linePassword", QStringLiteral("secret"));
        type("lineEmailaddress", QStringLiteral("m1@example.org"));
        type("lineAgain", QStringLiteral("m1@example.org"));
    }
    void goOffline()
    {
        testTimeConstants().connectionWait = 50;
        stage.connector.reportState(OnlineConnector::Disconnected);
    }
    void submit()
    {
        QTest::mouseClick(button(), Qt::LeftButton);
    }
    /** Fills in, accepts and submits. */
    void createAccount()
    {
        fillIn();
        acceptTerms();
        submit();
    }

    FrameStage stage;
    CKavlorUser user;
    QPointer<FrameCreateAccount> frame;
};

// Does something as soon as a message box is open.
class OnBoxShown : public QObject
{
public:
    explicit OnBoxShown(std::function<void()> action)
        : m_action(std::move(action))
    {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && qobject_cast<QMessageBox *>(watched))
            QMetaObject::invokeMethod(this, m_action, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> m_action;
};

// The size of every run of text in the document, in points.
QList<qreal> pointSizes(const QTextDocument *document)
{
    QList<qreal> sizes;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto run = block.begin(); !run.atEnd(); ++run)
            sizes.append(run.fragment().charFormat().fontPointSize());
    }
    return sizes;
}

} // namespace

class tst_FrameCreateAccount : public TestCase
{
    Q_OBJECT

private slots:
    void formIsAsLaidDown();
    void lineEdits_data();
    void lineEdits();
    void everyControlHasAName();
    void fitsTheSmallestWindowAndGrows();
    void tabOrderIsTheReadingOrder();
    void returnSubmits_data();
    void returnSubmits();
    void everythingIsReachedByKeys();

    void termsAreFetchedWhenTheRootHasNone();
    void termsFetchThatFailsLeavesTheWaitingText();
    void refusedTermsRequestShowsEmptyTerms();
    void withoutAConnectionTheTermsStayAway();
    void tenPointTextIsRewritten_data();
    void tenPointTextIsRewritten();
    void everyTenPointStyleOfATextIsRewritten();
    void readerStartsAtTheTop();

    void recordFollowsEachKeystroke();
    void otherFieldsOfTheRecordStay();
    void overlongTypingIsCut_data();
    void overlongTypingIsCut();
    void validationMessages_data();
    void validationMessages();
    void mismatchIsToldWhileTyping();
    void checkingTheTermsFirstLeavesTheUsernameMessage();
    void toolTipAsksForTheTermsLast();
    void typingClearsTheError();
    void termsMustBeAccepted();
    void uncheckedTermsCountAsNotAccepted();

    void wireBytes();
    void formWaitsForTheReply();
    void doubleClickSendsOnce();
    void bodyWithErrorAnywhereIsAFailure();
    void lowerCaseErrorIsASuccessWithNumberZero();
    void refusedStatusIsASuccessWithNumberZero();
    void transportErrorLeavesTheMemberInTheForm();
    void withoutAConnectionTheFormIsFreeAgain();
    void lateReplyUnderTheFailureBoxCreatesNothing();
    void correctedFormIsSentAgain();
    void successIsSavedAsLaidDown();
    void unknownReplyIsTold();
    void replyAfterTheFrameHasGone();
    void frameThatGoesUnderItsMessageBox();
    void leavingWithoutARootDeletesTheFrame();
    void worksWithoutARecord();
};

void tst_FrameCreateAccount::formIsAsLaidDown()
{
    Creation creation;
    creation.stage.service.expectHeld("GetServiceTerms", "");
    QVERIFY(creation.openUnscripted());

    QCOMPARE(creation.frame->windowTitle(), QStringLiteral("Create Account"));
    const auto *tabs = creation.find<QTabWidget>("tabWidget");
    QCOMPARE(tabs->tabPosition(), QTabWidget::North);
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Account"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Terms"));
    QCOMPARE(tabs->widget(0)->objectName(), QStringLiteral("tab"));
    QCOMPARE(tabs->widget(1)->objectName(), QStringLiteral("tab_3"));

    const auto *terms = creation.find<QPlainTextEdit>("termsEdit");
    QVERIFY(terms->isReadOnly());
    QCOMPARE(terms->toPlainText(),
             QStringLiteral("Please wait while a terms of service text is getting populated..."));
    QCOMPARE(terms->font().families().value(0), QStringLiteral("LargeSystemFont"));
    QCOMPARE(terms->font().pointSize(), 16);
    QCOMPARE(terms->font().weight(), QFont::Normal);
    QCOMPARE(creation.box()->text(),
             QStringLiteral("I have read the terms above, agreed and accepted."));
    QVERIFY(!creation.box()->isEnabled());
    QVERIFY(!creation.box()->isChecked());

    QCOMPARE(creation.button()->text(), QStringLiteral("Create free kavlor account!"));
    QVERIFY(creation.button()->isEnabled());
    QCOMPARE(creation.error(), QString());
    QVERIFY(creation.find<QLabel>("errorLabelText")->minimumHeight() >= 35);
    QVERIFY(creation.find<QLabel>("errorLabelText")->isVisible());
    QTRY_VERIFY(creation.stage.service.isHolding());
}

void tst_FrameCreateAccount::lineEdits_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QString>("toolTip");

    QTest::newRow("user name") << "lineUsername"
                               << "label"
                               << "Username:" << 100 << false << QString();
    QTest::newRow("password") << "linePassword"
                              << "label_2"
                              << "Password:" << 100 << true << QString();
    QTest::newRow("e-mail") << "lineEmailaddress"
                            << "label_6"
                            << "Email Address:" << 80 << false
                            << "This is your primary address to receive notifications";
    QTest::newRow("again") << "lineAgain"
                           << "label_3"
                           << "Re-enter Email:" << 80 << false << "Please repeat email";
}

void tst_FrameCreateAccount::lineEdits()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    QFETCH(QString, text);
    QFETCH(int, limit);
    QFETCH(bool, hidden);
    QFETCH(QString, toolTip);

    Creation creation;
    QVERIFY(creation.open());
    auto *line = creation.frame->findChild<QLineEdit *>(name);
    const auto *itsLabel = creation.frame->findChild<QLabel *>(label);
    QCOMPARE(itsLabel->text(), text);
    QCOMPARE(itsLabel->buddy(), line);
    QCOMPARE(itsLabel->wordWrap(), label == QLatin1String("label_6"));
    QCOMPARE(line->maxLength(), limit);
    QCOMPARE(line->echoMode(), hidden ? QLineEdit::Password : QLineEdit::Normal);
    QCOMPARE(line->toolTip(), toolTip);
    QCOMPARE(line->text(), QString());
    QVERIFY(line->height() >= 45);
    QVERIFY(itsLabel->height() >= 45);
    QVERIFY(itsLabel->width() >= 180);
}

void tst_FrameCreateAccount::everyControlHasAName()
{
    Creation creation;
    QVERIFY(creation.open());
    QCOMPARE(nameless(creation.frame), QByteArrayList());
}

void tst_FrameCreateAccount::fitsTheSmallestWindowAndGrows()
{
    Creation creation;
    QVERIFY(creation.open());
    const QString longError = QStringLiteral("The service has said no. ").repeated(12);
    for (const QSize &size : {QSize(800, 344), QSize(1920, 1000)}) {
        creation.stage.resize(size);
        QCOMPARE(creation.frame->size(), size);
        for (const QString &error : {QString(), longError}) {
            creation.find<QLabel>("errorLabelText")->setText(error);
            for (int tab = 0; tab < 2; ++tab) {
                creation.showTab(tab);
                QCoreApplication::processEvents();
                QCOMPARE(cutOff(creation.frame), QByteArrayList());
                QVERIFY(creation.button()->height() >= 60);
            }
            creation.showTab(0);
            QVERIFY(creation.line("lineAgain")->height() >= 45);
        }
    }
}

void tst_FrameCreateAccount::tabOrderIsTheReadingOrder()
{
    Creation creation;
    QVERIFY(creation.open());
    QCOMPARE(tabOrder(creation.line("lineUsername")),
             QByteArrayList({"lineUsername", "linePassword", "lineEmailaddress", "lineAgain",
                             "submitButton", "qt_tabwidget_tabbar"}));
    creation.showTab(1);
    QCOMPARE(tabOrder(creation.find<QWidget>("termsEdit")),
             QByteArrayList({"termsEdit", "checkTerms", "submitButton", "qt_tabwidget_tabbar"}));
}

void tst_FrameCreateAccount::returnSubmits_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"lineUsername", "linePassword", "lineEmailaddress", "lineAgain", "submitButton"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void tst_FrameCreateAccount::returnSubmits()
{
    QFETCH(QString, name);
    Creation creation;
    QVERIFY(creation.open());
    QTest::keyClick(creation.frame->findChild<QWidget *>(name), Qt::Key_Return);
    QCOMPARE(creation.error(), QStringLiteral("Username must be defined"));
}

void tst_FrameCreateAccount::everythingIsReachedByKeys()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expect("CreateAccount", "ERROR");

    creation.line("lineUsername")->setFocus();
    for (const char *text : {"m1", "secret", "m1@b", "m1@b"}) {
        QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(text));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QVERIFY(creation.box()->isChecked());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTRY_COMPARE(creation.stage.dialogs.boxes().size(), 1);
    QTRY_COMPARE(creation.toolTip(), QStringLiteral("ERROR"));
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::termsAreFetchedWhenTheRootHasNone()
{
    Creation creation;
    creation.stage.service.expectHeld("GetServiceTerms", "<p>Be <b>kind</b>.</p>");
    QVERIFY(creation.openUnscripted());
    QTRY_VERIFY(creation.stage.service.isHolding());
    QVERIFY(!creation.box()->isEnabled());
    QCOMPARE(creation.stage.service.requests().constFirst().body, QByteArray("SUBMIT=Submit"));

    creation.stage.service.release();
    QTRY_VERIFY(creation.box()->isEnabled());
    QCOMPARE(creation.find<QPlainTextEdit>("termsEdit")->toPlainText(), QStringLiteral("Be kind."));
    QVERIFY(!creation.box()->isChecked());
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::termsFetchThatFailsLeavesTheWaitingText()
{
    Creation creation;
    ScriptedService::Step step;
    step.operation = "GetServiceTerms";
    step.then = ScriptedService::Reset;
    creation.stage.service.expect(step);
    QVERIFY(creation.openUnscripted());
    auto *terms = creation.find<QPlainTextEdit>("termsEdit");
    const QString waiting = terms->toPlainText();

    const QSignalSpy finished(creation.frame->findChild<CHttpTolvex *>(),
                              qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    QTRY_COMPARE(finished.size(), 1);
    QVERIFY(!finished.constFirst().at(1).toString().isEmpty());
    QCOMPARE(terms->toPlainText(), waiting);
    QVERIFY(!creation.box()->isEnabled());
    QVERIFY(creation.stage.dialogs.boxes().isEmpty());

    creation.fillIn();
    creation.submit();
    QCOMPARE(creation.error(), QStringLiteral("Accept Terms of Service"));
}

void tst_FrameCreateAccount::refusedTermsRequestShowsEmptyTerms()
{
    Creation creation;
    ScriptedService::Step step;
    step.operation = "GetServiceTerms";
    step.bytes = ScriptedService::reply("gone", "text/plain", "404 Not Found");
    creation.stage.service.expect(step);
    QVERIFY(creation.openUnscripted());
    QTRY_VERIFY(creation.box()->isEnabled());
    QCOMPARE(creation.find<QPlainTextEdit>("termsEdit")->toPlainText(), QString());
}

void tst_FrameCreateAccount::withoutAConnectionTheTermsStayAway()
{
    Creation creation;
    creation.goOffline();
    QVERIFY(creation.openUnscripted());
    QVERIFY(creation.stage.dialogs.boxes().isEmpty());
    QCOMPARE(creation.find<QPlainTextEdit>("termsEdit")->toPlainText(),
             QStringLiteral("Please wait while a terms of service text is getting populated..."));
    QVERIFY(!creation.box()->isEnabled());
}

void tst_FrameCreateAccount::tenPointTextIsRewritten_data()
{
    QTest::addColumn<QByteArray>("style");
    QTest::addColumn<qreal>("size");

    QTest::newRow("plain") << QByteArray("'font-size:10.0pt'") << 22.0;
    QTest::newRow("space after the colon") << QByteArray("'font-size: 10.0pt'") << 22.0;
    QTest::newRow("space before the colon") << QByteArray("'font-size :10.0pt'") << 22.0;
    QTest::newRow("space in front") << QByteArray("' font-size:10.0pt'") << 22.0;
    QTest::newRow("space behind") << QByteArray("'font-size:10.0pt '") << 22.0;
    QTest::newRow("spaces everywhere") << QByteArray("'  font-size  :  10.0pt  '") << 22.0;
    QTest::newRow("line ends and tabs") << QByteArray("'\n\tfont-size\t:\n10.0pt\n'") << 22.0;
    QTest::newRow("nine points") << QByteArray("'font-size:9.0pt'") << 9.0;
    QTest::newRow("twelve points") << QByteArray("'font-size:12.0pt'") << 12.0;
    QTest::newRow("ten without decimals") << QByteArray("'font-size:10pt'") << 10.0;
    QTest::newRow("double quotes") << QByteArray("\"font-size:10.0pt\"") << 10.0;
    QTest::newRow("with another property") << QByteArray("'color:red;font-size:10.0pt'") << 10.0;
    QTest::newRow("upper case") << QByteArray("'FONT-SIZE:10.0pt'") << 10.0;
}

void tst_FrameCreateAccount::tenPointTextIsRewritten()
{
    QFETCH(QByteArray, style);
    QFETCH(qreal, size);
    Creation creation;
    QVERIFY(creation.open("<p><span style=" + style + ">Be kind.</span></p>"));
    QCOMPARE(pointSizes(creation.find<QPlainTextEdit>("termsEdit")->document()),
             QList<qreal>{size});
}

void tst_FrameCreateAccount::everyTenPointStyleOfATextIsRewritten()
{
    Creation creation;
    QVERIFY(creation.open("<p><span style='font-size:10.0pt'>Be</span>"
                          "<span style='font-size:8.0pt'> kind</span>"
                          "<span style=' font-size : 10.0pt '> and honest.</span></p>"));
    QCOMPARE(pointSizes(creation.find<QPlainTextEdit>("termsEdit")->document()),
             QList<qreal>({22.0, 8.0, 22.0}));
}

void tst_FrameCreateAccount::readerStartsAtTheTop()
{
    Creation creation;
    creation.stage.service.expectHeld("GetServiceTerms",
                                      QByteArray("<p>Be kind.</p>").repeated(200));
    QVERIFY(creation.openUnscripted());
    creation.showTab(1);
    QTRY_VERIFY(creation.stage.service.isHolding());
    creation.stage.service.release();
    QTRY_VERIFY(creation.box()->isEnabled());
    const auto *terms = creation.find<QPlainTextEdit>("termsEdit");
    QCOMPARE(terms->textCursor().position(), 0);
    QVERIFY(terms->verticalScrollBar()->maximum() > 0);
    QCOMPARE(terms->verticalScrollBar()->value(), 0);
    QCOMPARE(terms->blockCount(), 200);
}

void tst_FrameCreateAccount::recordFollowsEachKeystroke()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.user.setUserId(17);
    const struct
    {
        const char *line;
        Field field;
    } lines[] = {{"lineUsername", CKavlorUser::Username},
                 {"linePassword", CKavlorUser::Password},
                 {"lineEmailaddress", CKavlorUser::EmailAddress}};
    for (const auto &[name, field] : lines) {
        QString typed;
        for (const QChar letter : QStringLiteral(u"\u017Eo@b")) {
            typed += letter;
            QTest::sendKeyEvent(QTest::Click, creation.line(name), Qt::Key_unknown, QString(letter),
                                Qt::NoModifier);
            QCOMPARE(creation.user.field(field), typed);
            QCOMPARE(creation.user.userId(), 0);
        }
    }
    QTest::keyClick(creation.line("lineUsername"), Qt::Key_Backspace);
    QCOMPARE(creation.user.field(CKavlorUser::Username), QStringLiteral(u"\u017Eo@"));
    QCOMPARE(creation.stage.settings.allKeys(), QStringList());
}

void tst_FrameCreateAccount::otherFieldsOfTheRecordStay()
{
    Creation creation;
    creation.user.setField(CKavlorUser::FirstName, QStringLiteral("Mira"));
    creation.user.setField(CKavlorUser::PaypalAddress, QStringLiteral("mira@pay"));
    QVERIFY(creation.open());
    creation.fillIn();
    QCOMPARE(creation.user.field(CKavlorUser::FirstName), QStringLiteral("Mira"));
    QCOMPARE(creation.user.field(CKavlorUser::PaypalAddress), QStringLiteral("mira@pay"));
    QCOMPARE(creation.user.field(CKavlorUser::CountryID), QStringLiteral("US"));
    QCOMPARE(creation.user.field(CKavlorUser::Gender), QStringLiteral("M"));
    QCOMPARE(creation.user.field(CKavlorUser::Language), QStringLiteral("EN"));
}

void tst_FrameCreateAccount::overlongTypingIsCut_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("limit");
    QTest::newRow("user name") << QByteArray("lineUsername") << 100;
    QTest::newRow("password") << QByteArray("linePassword") << 100;
    QTest::newRow("e-mail") << QByteArray("lineEmailaddress") << 80;
    QTest::newRow("again") << QByteArray("lineAgain") << 80;
}

void tst_FrameCreateAccount::overlongTypingIsCut()
{
    QFETCH(QByteArray, line);
    QFETCH(int, limit);
    Creation creation;
    QVERIFY(creation.open());
    creation.type(line, QString(limit + 1, QLatin1Char('x')));
    QCOMPARE(creation.line(line)->text(), QString(limit, QLatin1Char('x')));
}

// A field of the record holds a text; the message while typing, and that after submitting. The
// e-mail address is repeated as it is.
void tst_FrameCreateAccount::validationMessages_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("whileTyping");
    QTest::addColumn<QString>("submitted");

    const auto both = [](const char *row, Field field, const QString &text,
                         const QString &message) {
        QTest::newRow(row) << static_cast<int>(field) << text << message << message;
    };
    const auto tooLong = [&both](const char *row, Field field, int limit, const char *name) {
        both(row, field, QString(limit + 1, QLatin1Char('x')),
             QStringLiteral("%1 exceeds field length limit(%2)")
                 .arg(QLatin1String(name))
                 .arg(limit));
    };
    const QString complete = QStringLiteral("All mandatory fields are filled in");

    both("no user name", CKavlorUser::Username, QString(),
         QStringLiteral("Username must be defined"));
    both("no password", CKavlorUser::Password, QString(),
         QStringLiteral("Password must be defined"));
    both("no e-mail", CKavlorUser::EmailAddress, QString(),
         QStringLiteral("Email Address must be defined"));
    both("e-mail without an at sign", CKavlorUser::EmailAddress, QStringLiteral("m1.example.org"),
         QStringLiteral("Email Address is invalid"));
    both("paypal without an at sign", CKavlorUser::PaypalAddress, QStringLiteral("m1"),
         QStringLiteral("Paypal Address is invalid"));
    tooLong("long first name", CKavlorUser::FirstName, 50, "First Name");
    tooLong("long last name", CKavlorUser::LastName, 50, "Last Name");
    tooLong("long paypal", CKavlorUser::PaypalAddress, 80, "Paypal Address");
    tooLong("long country", CKavlorUser::CountryID, 2, "Country ID");
    tooLong("long gender", CKavlorUser::Gender, 1, "Gender");
    tooLong("long language", CKavlorUser::Language, 2, "Language");
    tooLong("long twitter name", CKavlorUser::TwitterUsername, 50, "Twitter Username");
    tooLong("long twitter password", CKavlorUser::TwitterPassword, 50, "Twitter Password");
    QTest::newRow("gender in lower case")
        << static_cast<int>(CKavlorUser::Gender) << "m" << complete << "Gender is invalid";
    QTest::newRow("unknown gender")
        << static_cast<int>(CKavlorUser::Gender) << "X" << complete << "Gender is invalid";
}

void tst_FrameCreateAccount::validationMessages()
{
    QFETCH(int, field);
    QFETCH(QString, text);
    QFETCH(QString, whileTyping);
    QFETCH(QString, submitted);

    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    creation.acceptTerms();
    QCOMPARE(creation.toolTip(), QStringLiteral("All mandatory fields are filled in"));

    switch (field) {
    case CKavlorUser::Username:
        creation.type("lineUsername", text);
        break;
    case CKavlorUser::Password:
        creation.type("linePassword", text);
        break;
    case CKavlorUser::EmailAddress:
        creation.type("lineEmailaddress", text);
        creation.type("lineAgain", text);
        break;
    default:
        creation.user.setField(Field(field), text);
        creation.type("lineUsername", QStringLiteral("m2"));
    }
    QCOMPARE(creation.toolTip(), whileTyping);
    QCOMPARE(creation.error(), QString());

    creation.submit();
    QCOMPARE(creation.toolTip(), submitted);
    QCOMPARE(creation.error(), submitted);
    QVERIFY(creation.find<QLabel>("errorLabelText")->isVisible());
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::mismatchIsToldWhileTyping()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    QTest::keyClick(creation.line("lineAgain"), Qt::Key_Backspace);
    QCOMPARE(creation.toolTip(), QStringLiteral("Email Address does not match."));
    QCOMPARE(creation.error(), QString());
    creation.acceptTerms();
    creation.submit();
    QCOMPARE(creation.error(), QStringLiteral("Email Address does not match."));
    QTest::keyClick(creation.line("lineAgain"), Qt::Key_G);
    QCOMPARE(creation.toolTip(), QStringLiteral("All mandatory fields are filled in"));
}

void tst_FrameCreateAccount::checkingTheTermsFirstLeavesTheUsernameMessage()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.acceptTerms();
    QVERIFY(creation.box()->isChecked());
    QCOMPARE(creation.toolTip(), QStringLiteral("Username must be defined"));
}

void tst_FrameCreateAccount::toolTipAsksForTheTermsLast()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    QCOMPARE(creation.toolTip(), QStringLiteral("Accept Terms of Service"));
    creation.acceptTerms();
    QCOMPARE(creation.toolTip(), QStringLiteral("All mandatory fields are filled in"));
}

void tst_FrameCreateAccount::typingClearsTheError()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.submit();
    QCOMPARE(creation.error(), QStringLiteral("Username must be defined"));
    QTest::keyClick(creation.line("lineUsername"), Qt::Key_M);
    QCOMPARE(creation.error(), QString());
    QCOMPARE(creation.toolTip(), QStringLiteral("Password must be defined"));
}

void tst_FrameCreateAccount::termsMustBeAccepted()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    creation.submit();
    QCOMPARE(creation.error(), QStringLiteral("Accept Terms of Service"));
    QCOMPARE(creation.toolTip(), QStringLiteral("Accept Terms of Service"));
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::uncheckedTermsCountAsNotAccepted()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    creation.acceptTerms();
    creation.acceptTerms(); // a second click takes the mark away
    QVERIFY(!creation.box()->isChecked());
    QCOMPARE(creation.toolTip(), QStringLiteral("Accept Terms of Service"));
    creation.submit();
    QCOMPARE(creation.error(), QStringLiteral("Accept Terms of Service"));
}

void tst_FrameCreateAccount::wireBytes()
{
    Creation creation;
    creation.user.setField(CKavlorUser::FirstName, QStringLiteral(u"\u017Dofie"));
    creation.user.setField(CKavlorUser::LastName, QStringLiteral(u"\u010Cern\u00E1"));
    creation.user.setField(CKavlorUser::PaypalAddress, QStringLiteral("zofie@pay"));
    creation.user.setField(CKavlorUser::TwitterUsername, QStringLiteral("zz"));
    creation.user.setField(CKavlorUser::TwitterPassword, QStringLiteral("t&t"));
    QVERIFY(creation.open());
    creation.type("lineUsername", QStringLiteral(u"\u017Eofie \u010D."));
    creation.type("linePassword", QStringLiteral(u"p\u00E4ss & word=+%"));
    creation.type("lineEmailaddress", QStringLiteral("zofie+1@example.org"));
    creation.type("lineAgain", QStringLiteral("zofie+1@example.org"));
    creation.acceptTerms();
    creation.stage.service.expect("CreateAccount", "ERROR");
    creation.submit();
    QTRY_COMPARE(creation.stage.service.requests().size(), 2);
    QTRY_VERIFY(!creation.stage.dialogs.boxes().isEmpty());
    QCOMPARE(creation.stage.service.requests().constLast().body,
             QByteArray("Password2=p%C3%A4ss%20%26%20word%3D%2B%25"
                        "&Username=%C5%BEofie%20%C4%8D."
                        "&Password1=p%C3%A4ss%20%26%20word%3D%2B%25"
                        "&FirstName=%C5%BDofie&LastName=%C4%8Cern%C3%A1"
                        "&EmailAddress=zofie%2B1@example.org&PaypalAddress=zofie@pay"
                        "&CountryID=US&Gender=M&Language=EN"
                        "&TwitterUsername=zz&TwitterPassword=t%26t&SUBMIT=Submit"));
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::formWaitsForTheReply()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expectHeld("CreateAccount", "ERROR: taken");
    creation.createAccount();
    QTRY_VERIFY(creation.stage.service.isHolding());
    const QString plea = QStringLiteral("Please wait, while your account is created on site.");
    QCOMPARE(creation.toolTip(), plea);
    QCOMPARE(creation.button()->toolTip(), plea);
    QCOMPARE(creation.error(), QString());
    QVERIFY(!creation.button()->isEnabled());
    // What is under way is what will be saved.
    QVERIFY(!creation.line("lineUsername")->isEnabled());

    creation.stage.service.release();
    QTRY_VERIFY(creation.button()->isEnabled());
    QVERIFY(creation.line("lineUsername")->isEnabled());
    QCOMPARE(creation.button()->toolTip(), QString());
    QTRY_COMPARE(creation.toolTip(), QStringLiteral("ERROR: taken"));
    QCOMPARE(creation.stage.area()->focusWidget(), creation.button());
}

void tst_FrameCreateAccount::doubleClickSendsOnce()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    creation.acceptTerms();
    creation.stage.service.expectHeld("CreateAccount", "ERROR");
    QTest::mouseDClick(creation.button(), Qt::LeftButton);
    QTest::mouseClick(creation.button(), Qt::LeftButton);
    QTest::keyClick(creation.line("lineAgain"), Qt::Key_Return);
    QTRY_VERIFY(creation.stage.service.isHolding());
    creation.stage.service.release();
    QTRY_VERIFY(!creation.stage.dialogs.boxes().isEmpty());
    QTRY_VERIFY(creation.button()->isEnabled());
    QCOMPARE(creation.stage.service.requests().size(), 2);
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::bodyWithErrorAnywhereIsAFailure()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expect("CreateAccount", "17 but with an ERROR %1 in it");
    creation.createAccount();
    QTRY_COMPARE(creation.stage.dialogs.boxes().size(), 1);
    QCOMPARE(creation.stage.dialogs.boxes().constFirst().text,
             QStringLiteral("kavlor experienced at least one error during record submission:\n"
                            "\n17 but with an ERROR %1 in it"));
    QTRY_COMPARE(creation.toolTip(), QStringLiteral("17 but with an ERROR %1 in it"));
    QCOMPARE(creation.error(), QString());
    QVERIFY(creation.button()->isEnabled());
    QVERIFY(creation.frame->isVisible());
    QCOMPARE(creation.user.userId(), 0);
    QCOMPARE(creation.stage.settings.allKeys(), QStringList());
}

void tst_FrameCreateAccount::lowerCaseErrorIsASuccessWithNumberZero()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expect("CreateAccount", "error: taken");
    creation.createAccount();
    QTRY_VERIFY(!creation.frame);
    QCOMPARE(creation.user.userId(), 0);
    QCOMPARE(creation.stage.settings.value(QStringLiteral("UserData.m1/UserID")),
             QVariant(QStringLiteral("0")));
    QVERIFY(creation.stage.dialogs.boxes().isEmpty());
}

void tst_FrameCreateAccount::refusedStatusIsASuccessWithNumberZero()
{
    Creation creation;
    QVERIFY(creation.open());
    ScriptedService::Step step;
    step.operation = "CreateAccount";
    step.bytes = ScriptedService::reply("ERROR", "text/plain", "500 Internal Server Error");
    creation.stage.service.expect(step);
    creation.createAccount();
    QTRY_VERIFY(!creation.frame);
    QCOMPARE(creation.user.userId(), 0);
}

void tst_FrameCreateAccount::transportErrorLeavesTheMemberInTheForm()
{
    Creation creation;
    QVERIFY(creation.open());
    ScriptedService::Step step;
    step.operation = "CreateAccount";
    step.then = ScriptedService::Reset;
    creation.stage.service.expect(step);
    creation.createAccount();
    QTRY_COMPARE(creation.stage.dialogs.boxes().size(), 1);
    QTRY_VERIFY(!creation.error().isEmpty());
    QCOMPARE(creation.stage.dialogs.boxes().constFirst().text,
             QStringLiteral("kavlor experienced at least one error during record submission:\n%1\n")
                 .arg(creation.error()));
    QCOMPARE(creation.toolTip(), QString());
    QCOMPARE(creation.line("lineUsername")->text(), QStringLiteral("m1"));
    QVERIFY(creation.button()->isEnabled());
    QCOMPARE(creation.stage.settings.allKeys(), QStringList());
}

// The result comes while the request is still being made.
void tst_FrameCreateAccount::withoutAConnectionTheFormIsFreeAgain()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.goOffline();
    creation.createAccount();
    QCOMPARE(creation.stage.dialogs.boxes().size(), 1);
    QCOMPARE(creation.stage.dialogs.boxes().constFirst().text,
             QStringLiteral("kavlor experienced at least one error during record submission:\n"
                            "Unable to create a connection\nERROR:no connection"));
    QCOMPARE(creation.error(), QStringLiteral("Unable to create a connection"));
    QVERIFY(creation.button()->isEnabled());
    QVERIFY(creation.line("lineUsername")->isEnabled());

    creation.stage.connector.reportState(OnlineConnector::Connected);
    creation.stage.service.expect("CreateAccount", "4711");
    creation.submit();
    QTRY_VERIFY(!creation.frame);
    QCOMPARE(creation.user.userId(), 4711);
}

// The account had timed out, and its reply comes while the member reads so.
void tst_FrameCreateAccount::lateReplyUnderTheFailureBoxCreatesNothing()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.fillIn();
    creation.acceptTerms();
    testTimeConstants().formTimeout = 100;
    ScriptedService &service = creation.stage.service;
    DialogAnswers &dialogs = creation.stage.dialogs;
    dialogs.beforeNextAnswer([&] {
        QVERIFY(waitUntil([&] { return service.isHolding(); }));
        QVERIFY(service.release());
        QVERIFY(waitUntil([&] { return dialogs.boxes().size() == 1; }));
    });
    service.expectHeld("CreateAccount", "4711");
    creation.submit();
    QTRY_COMPARE(dialogs.boxes().size(), 2);
    QCOMPARE(dialogs.boxes().at(0).title, QStringLiteral("HTTP"));
    QCOMPARE(dialogs.boxes().at(0).text, QStringLiteral("Unknown response received:  ."));
    QCOMPARE(dialogs.boxes().at(1).text,
             QStringLiteral("kavlor experienced at least one error during record submission:\n"
                            "Unable to get a server response\nERROR:timeout"));
    QTRY_COMPARE(creation.error(), QStringLiteral("Unable to get a server response"));
    QVERIFY(creation.frame->isVisible());
    QVERIFY(creation.button()->isEnabled());
    QCOMPARE(creation.stage.settings.allKeys(), QStringList());
}

void tst_FrameCreateAccount::correctedFormIsSentAgain()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expect("CreateAccount", "ERROR: taken");
    creation.createAccount();
    QTRY_COMPARE(creation.stage.dialogs.boxes().size(), 1);
    QTRY_VERIFY(creation.button()->isEnabled());
    creation.stage.service.expect("CreateAccount", "4711");
    creation.type("lineUsername", QStringLiteral("m2"));
    QCOMPARE(creation.toolTip(), QStringLiteral("All mandatory fields are filled in"));
    creation.submit();
    QTRY_VERIFY(!creation.frame);
    QVERIFY(creation.stage.service.requests().constLast().body.contains("&Username=m2&"));
    QCOMPARE(creation.user.userId(), 4711);
    QVERIFY2(creation.stage.service.isDone(), creation.stage.service.report());
}

void tst_FrameCreateAccount::successIsSavedAsLaidDown()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expect("CreateAccount", "4711\n");
    creation.createAccount();
    QTRY_VERIFY(!creation.frame);
    QCOMPARE(creation.user.userId(), 4711);

    const QList<QPair<const char *, const char *>> kept{
        {"last/USERID", "m1"},
        {"UserData.m1/Username", "m1"},
        {"UserData.m1/Password", "secret"},
        {"UserData.m1/First Name", ""},
        {"UserData.m1/Last Name", ""},
        {"UserData.m1/Email Address", "m1@example.org"},
        {"UserData.m1/Paypal Address", ""},
        {"UserData.m1/Country ID", "US"},
        {"UserData.m1/Gender", "M"},
        {"UserData.m1/Language", "EN"},
        {"UserData.m1/Twitter Username", ""},
        {"UserData.m1/Twitter Password", ""},
        {"UserData.m1/UserID", "4711"},
    };
    QCOMPARE(creation.stage.settings.allKeys().size(), kept.size());
    for (const auto &[key, value] : kept) {
        QVERIFY2(creation.stage.settings.contains(QLatin1String(key)), key);
        QCOMPARE(creation.stage.settings.value(QLatin1String(key)).toString(),
                 QLatin1String(value));
    }
    QVERIFY(creation.stage.dialogs.boxes().isEmpty());
}

void tst_FrameCreateAccount::unknownReplyIsTold()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.frame->ResponseReceived(QStringLiteral("a %2 body"), QStringLiteral("an error"));
    QCOMPARE(creation.stage.dialogs.boxes().size(), 1);
    QCOMPARE(creation.stage.dialogs.boxes().constFirst().title, QStringLiteral("HTTP"));
    QCOMPARE(creation.stage.dialogs.boxes().constFirst().text,
             QStringLiteral("Unknown response received: a %2 body an error."));
}

void tst_FrameCreateAccount::replyAfterTheFrameHasGone()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expectHeld("CreateAccount", "4711");
    creation.createAccount();
    QTRY_VERIFY(creation.stage.service.isHolding());
    creation.frame->lower();
    QVERIFY(!creation.frame->isVisible());
    creation.stage.service.release();
    QTRY_VERIFY(!creation.frame);
    QCOMPARE(creation.user.userId(), 0);
    QCOMPARE(creation.stage.settings.allKeys(), QStringList());
    QVERIFY(creation.stage.dialogs.boxes().isEmpty());
}

void tst_FrameCreateAccount::frameThatGoesUnderItsMessageBox()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.stage.service.expect("CreateAccount", "ERROR");
    const OnBoxShown whenShown([&creation] { delete creation.frame; });
    creation.createAccount();
    QTRY_VERIFY(!creation.frame);
    QVERIFY(creation.stage.dialogs.boxes().isEmpty());
}

void tst_FrameCreateAccount::leavingWithoutARootDeletesTheFrame()
{
    Creation creation;
    QVERIFY(creation.open());
    creation.frame->lower();
    QTRY_VERIFY(!creation.frame);
}

void tst_FrameCreateAccount::worksWithoutARecord()
{
    Creation creation;
    creation.stage.service.expect("GetServiceTerms", "<p>terms</p>");
    creation.frame =
        new FrameCreateAccount(&creation.stage.settings, nullptr, creation.stage.area());
    QVERIFY(creation.stage.show(creation.frame));
    QTRY_VERIFY(creation.box()->isEnabled());
    creation.stage.service.expect("CreateAccount", "5");
    creation.createAccount();
    QTRY_VERIFY(!creation.frame);
    QCOMPARE(creation.stage.settings.value(QStringLiteral("UserData.m1/UserID")).toInt(), 5);
}

KAVLOR_TEST_MAIN(tst_FrameCreateAccount)
#include "tst_framecreateaccount.moc"
