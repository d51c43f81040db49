// SPDX-License-Identifier: MIT

#include "contrast.h"
#include "focusring.h"
#include "keyboard.h"
#include "messagebox.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"

#include <QAccessible>
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QSet>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

/**
 * The program as it is worked by keys alone: where each screen begins, what Enter does, and that
 * the focus is never lost.
 */
class tst_Keys : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void screensBeginWhereAMemberDoes_data();
    void screensBeginWhereAMemberDoes();
    void numbersAndNamesCanBeTypedOver();
    void menuBeginsWhereItWasLeft();
    void tabLeadsFromThePhotoToItsCaption();
    void categoriesBeginAtACellThatEnterUses();

    void enterPressesTheButton_data();
    void enterPressesTheButton();
    void heldEnterPressesOnce();
    void enterOpensThePasswordPage();
    void enterPressesTheFocusedButtonOfABox();

    void refusedLoginGoesOnAtThePassword_data();
    void refusedLoginGoesOnAtThePassword();
    void focusComesBackAfterARefusedPrice();
    void refusedAccountIsSaidAndCanBeSentAgain();
    void focusStaysOnTheSummaryWhileItIsSent();
    void waitingScreensKeepAFocus();

    void focusIsSeenEverywhere_data();
    void focusIsSeenEverywhere();
    void focusOnTheBarIsSeen();
    void lockedLinesLookLocked();

    void faultsAndWaitsAreSaid_data();
    void faultsAndWaitsAreSaid();
    void uploadIsSaid();
    void listBeginsWithAllOfItsFirstRow();

    void aMembersWholeWay();

private:
    using Way = bool (tst_Keys::*)(RootWindow &);

    bool toWelcome(RootWindow &window);
    bool toLogin(RootWindow &window);
    bool toCreateAccount(RootWindow &window);
    bool toTerms(RootWindow &window);
    bool toHome(RootWindow &window);
    bool toUpload(RootWindow &window);
    bool toDescription(RootWindow &window);
    bool toCategory(RootWindow &window);
    bool toPrices(RootWindow &window);
    bool toConfirm(RootWindow &window);
    bool toUploaded(RootWindow &window);
    bool toMyAuctions(RootWindow &window);
    bool toPriceChange(RootWindow &window);
    bool toSettings(RootWindow &window);
    bool toMyAccount(RootWindow &window);
    bool toAlerts(RootWindow &window);

    void signIn(RootWindow &window);
    void choosePhoto(RootWindow &window);
    void describePhoto(RootWindow &window);
    void chooseCategory(RootWindow &window);
    void enterPrices(RootWindow &window);
    void confirmAuction(RootWindow &window);
    void changePrices(RootWindow &window);
    void signOut(RootWindow &window);

    QTemporaryDir m_folder;
    QString m_photo;
};

namespace {

// The web browser of the desktop, which notes what it is to show.
class PageOpener : public QObject
{
    Q_OBJECT

public:
    PageOpener()
    {
        QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "open");
    }
    ~PageOpener() override
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
    }
    Q_DISABLE_COPY_MOVE(PageOpener)

    QList<QUrl> pages() const
    {
        return m_pages;
    }

public slots:
    void open(const QUrl &page)
    {
        m_pages.append(page);
    }

private:
    QList<QUrl> m_pages;
};

// What a screen reader is told to say at once while this lives, as it gets it.
class ScreenReader
{
public:
    ScreenReader()
    {
        said().clear();
        platform()->setActive(true); // as when a screen reader runs, which no public function says
        m_before = QAccessible::installUpdateHandler(hear);
    }
    ~ScreenReader()
    {
        QAccessible::installUpdateHandler(m_before);
        platform()->setActive(false);
    }
    Q_DISABLE_COPY_MOVE(ScreenReader)

    static QStringList alerts()
    {
        return said();
    }

private:
    static QPlatformAccessibility *platform()
    {
        return QGuiApplicationPrivate::platformIntegration()->accessibility();
    }

    static QStringList &said()
    {
        static QStringList texts;
        return texts;
    }

    static void hear(QAccessibleEvent *event)
    {
        if (event->type() != QAccessible::Alert)
            return;
        if (const auto *box = qobject_cast<QMessageBox *>(event->object()))
            said().append(box->text());
        else if (QAccessibleInterface *access = event->accessibleInterface())
            said().append(access->text(QAccessible::Name));
    }

    QAccessible::UpdateHandler m_before = nullptr;
};

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

// The window takes keys again after a dialog, as the window manager sees to.
bool isInFront(RootWindow &window)
{
    window.root()->activateWindow();
    return QTest::qWaitForWindowActive(window.root());
}

// Waits for the control, and for its window to take keys.
bool comes(RootWindow &window, const char *control)
{
    return QTest::qWaitFor([&] { return window.find(control); }) && isInFront(window);
}

// Waits for the control to come up with the focus, where a screen begins.
bool startsAt(RootWindow &window, const char *control)
{
    return comes(window, control)
        && QTest::qWaitFor([control] { return Keyboard::focus() == name(control); });
}

// The body of the one request for the operation.
QByteArray sent(const RootWindow &window, const QByteArray &operation)
{
    const QList<ScriptedService::Request> requests = window.service.requests();
    for (const ScriptedService::Request &request : requests) {
        if (request.operation() == operation)
            return request.body;
    }
    return {};
}

bool pressAt(const char *control, Qt::Key key)
{
    if (!Keyboard::tabTo(name(control)))
        return false;
    Keyboard::press(key);
    return true;
}

// Back to the home screen, where the root asks for the alert options once more.
bool goesHome(RootWindow &window, Qt::Key key)
{
    window.service.expect("GetNotificationOptions", "options\n1,0,0,1\n");
    return pressAt("backNavigationButton", key) && startsAt(window, "buttonUpload")
        && QTest::qWaitFor([&] { return window.service.isDone(); });
}

} // namespace

void tst_Keys::initTestCase()
{
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
    m_photo = m_folder.filePath(QStringLiteral("photo.png"));
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(QColor(90, 150, 210));
    QVERIFY(image.save(m_photo));
}

bool tst_Keys::toWelcome(RootWindow &window)
{
    return window.startAtWelcome() && comes(window, "createAccountButton");
}

bool tst_Keys::toLogin(RootWindow &window)
{
    return toWelcome(window) && window.click("loginButton") && comes(window, "linePassword");
}

bool tst_Keys::toCreateAccount(RootWindow &window)
{
    return toWelcome(window) && window.click("createAccountButton")
        && comes(window, "submitButton");
}

bool tst_Keys::toTerms(RootWindow &window)
{
    if (!toCreateAccount(window) || !Keyboard::tabTo(name("qt_tabwidget_tabbar")))
        return false;
    Keyboard::press(Qt::Key_Right);
    return comes(window, "termsEdit");
}

bool tst_Keys::toHome(RootWindow &window)
{
    return window.startAtHome() && comes(window, "buttonUpload");
}

bool tst_Keys::toUpload(RootWindow &window)
{
    return toHome(window) && window.click("buttonUpload") && comes(window, "photoClicker");
}

bool tst_Keys::toDescription(RootWindow &window)
{
    window.dialogs.chooseFile(m_photo);
    return toUpload(window) && window.click("photoClicker")
        && QTest::qWaitFor([&] { return window.find("doneButton")->isEnabled(); })
        && isInFront(window);
}

bool tst_Keys::toCategory(RootWindow &window)
{
    return toDescription(window) && window.type("lineCaption", QStringLiteral("Lake"))
        && window.click("doneButton") && comes(window, "categoriesTable");
}

bool tst_Keys::toPrices(RootWindow &window)
{
    if (!toCategory(window))
        return false;
    auto *table = window.find<QTableView>("categoriesTable");
    const QModelIndex figures = table->model()->index(0, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(figures).center());
    return comes(window, "finalizeButton");
}

bool tst_Keys::toConfirm(RootWindow &window)
{
    return toPrices(window) && window.click("finalizeButton")
        && comes(window, "createAuctionButton");
}

bool tst_Keys::toUploaded(RootWindow &window)
{
    if (!toConfirm(window))
        return false;
    window.service.expect("CreateAuction", "17");
    return window.click("createAuctionButton") && comes(window, "buttonOk");
}

bool tst_Keys::toMyAuctions(RootWindow &window)
{
    if (!toHome(window))
        return false;
    window.service.expect("GetMyAuctions",
                          "header\n17,Lake,1,40,95,0,11/30/2026 12:00,0,12,3,40\n"
                          "18,Fog,1,40,95,0,11/30/2026 12:00,0,5,0,-1\n");
    window.service.expectHeld("GetThumbnail", QByteArray());
    return window.click("buttonMyKavlor") && comes(window, "myAuctionsTable")
        && QTest::qWaitFor([&] { return window.service.isHolding(); });
}

bool tst_Keys::toPriceChange(RootWindow &window)
{
    if (!toMyAuctions(window))
        return false;
    Keyboard::press(Qt::Key_Return);
    return comes(window, "reservedPrice");
}

bool tst_Keys::toSettings(RootWindow &window)
{
    return toHome(window) && window.click("buttonSettings") && comes(window, "pushButtonMyAccount");
}

bool tst_Keys::toMyAccount(RootWindow &window)
{
    return toSettings(window) && window.click("pushButtonMyAccount")
        && comes(window, "lineConfirm");
}

bool tst_Keys::toAlerts(RootWindow &window)
{
    return toSettings(window) && window.click("pushButtonNotifications")
        && comes(window, "checkBoxOnBid");
}

void tst_Keys::screensBeginWhereAMemberDoes_data()
{
    QTest::addColumn<Way>("way");
    QTest::addColumn<QString>("first");
    QTest::newRow("welcome") << &tst_Keys::toWelcome << "createAccountButton";
    QTest::newRow("login") << &tst_Keys::toLogin << "lineUsername";
    QTest::newRow("create account") << &tst_Keys::toCreateAccount << "lineUsername";
    QTest::newRow("home") << &tst_Keys::toHome << "buttonUpload";
    QTest::newRow("upload") << &tst_Keys::toUpload << "photoClicker";
    QTest::newRow("description") << &tst_Keys::toDescription << "photoClicker";
    QTest::newRow("category") << &tst_Keys::toCategory << "categoriesTable";
    QTest::newRow("prices") << &tst_Keys::toPrices << "startPrice";
    QTest::newRow("confirmation") << &tst_Keys::toConfirm << "auctionOverallInfo";
    QTest::newRow("uploaded") << &tst_Keys::toUploaded << "buttonOk";
    QTest::newRow("my auctions") << &tst_Keys::toMyAuctions << "myAuctionsTable";
    QTest::newRow("price change") << &tst_Keys::toPriceChange << "reservedPrice";
    QTest::newRow("settings") << &tst_Keys::toSettings << "pushButtonMyAccount";
    QTest::newRow("my account") << &tst_Keys::toMyAccount << "checkBoxEmail";
    QTest::newRow("alerts") << &tst_Keys::toAlerts << "checkBoxOnBid";
}

void tst_Keys::screensBeginWhereAMemberDoes()
{
    QFETCH(Way, way);
    QFETCH(QString, first);
    RootWindow window;
    QVERIFY2((this->*way)(window), window.service.report());
    QTRY_COMPARE(Keyboard::focus(), first);
}

void tst_Keys::numbersAndNamesCanBeTypedOver()
{
    RootWindow window;
    QVERIFY2(toPrices(window), window.service.report());
    QTRY_COMPARE(Keyboard::focus(), name("startPrice"));
    Keyboard::type(QStringLiteral("12"));
    QCOMPARE(window.find<QSpinBox>("startPrice")->value(), 12);
}

void tst_Keys::menuBeginsWhereItWasLeft()
{
    RootWindow window;
    QVERIFY2(toAlerts(window), window.service.report());
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(comes(window, "pushButtonMyAccount"));
    QTRY_COMPARE(Keyboard::focus(), name("pushButtonNotifications"));
}

void tst_Keys::tabLeadsFromThePhotoToItsCaption()
{
    RootWindow window;
    QVERIFY2(toDescription(window), window.service.report());
    Keyboard::press(Qt::Key_Tab);
    QCOMPARE(Keyboard::focus(), name("lineCaption"));
    Keyboard::type(QStringLiteral("lake"));
    QCOMPARE(window.text("lineCaption"), QStringLiteral("Lake"));
}

void tst_Keys::categoriesBeginAtACellThatEnterUses()
{
    RootWindow window;
    QVERIFY2(toCategory(window), window.service.report());
    Keyboard::press(Qt::Key_Down); // from the first to the second
    Keyboard::press(Qt::Key_Return);
    QTRY_COMPARE(window.text("categorySelected"), QStringLiteral("Sports"));
    Keyboard::press(Qt::Key_Enter); // what is in it
    QVERIFY(comes(window, "finalizeButton"));
    QVERIFY(window.click("backNavigationButton"));
    QVERIFY(comes(window, "categoriesTable"));
    QTRY_COMPARE(Keyboard::focus(), name("categoriesTable"));
    Keyboard::press(Qt::Key_Return);
    QVERIFY(comes(window, "finalizeButton"));
}

void tst_Keys::enterPressesTheButton_data()
{
    QTest::addColumn<Way>("way");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("next"); // what comes up then

    const auto row = [](const char *title, Way way, const char *button, const char *next) {
        QTest::newRow(title) << way << QByteArray(button) << QByteArray(next);
    };
    row("welcome", &tst_Keys::toWelcome, "loginButton", "linePassword");
    row("bar before sign-in", &tst_Keys::toLogin, "cancelNavigationButton", "createAccountButton");
    row("home", &tst_Keys::toHome, "buttonSettings", "pushButtonMyAccount");
    row("sign out", &tst_Keys::toHome, "cancelNavigationButton", "createAccountButton");
    row("bar, back", &tst_Keys::toSettings, "backNavigationButton", "buttonUpload");
    row("bar, cancel", &tst_Keys::toUpload, "cancelNavigationButton", "buttonUpload");
    row("categories", &tst_Keys::toCategory, "unselect", "categoriesTable");
    row("prices", &tst_Keys::toPrices, "finalizeButton", "createAuctionButton");
    row("uploaded", &tst_Keys::toUploaded, "buttonOk", "checkBoxOnBid");
    row("settings", &tst_Keys::toSettings, "pushButtonNotifications", "checkBoxOnBid");
}

void tst_Keys::enterPressesTheButton()
{
    QFETCH(Way, way);
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, next);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        RootWindow window;
        QVERIFY2((this->*way)(window), window.service.report());
        QVERIFY(pressAt(button.constData(), key));
        QVERIFY2(comes(window, next.constData()), Keyboard::focus().toUtf8().constData());
    }
}

void tst_Keys::heldEnterPressesOnce()
{
    RootWindow window;
    QVERIFY2(toPrices(window), window.service.report());
    QVERIFY(pressAt("finalizeButton", Qt::Key_Return));
    QVERIFY(comes(window, "createAuctionButton"));
    QVERIFY(Keyboard::tabTo(name("createAuctionButton")));
    Keyboard::hold(Qt::Key_Return);
    QVERIFY(window.find("createAuctionButton")->isEnabled());
    window.service.expect("CreateAuction", "17");
    Keyboard::press(Qt::Key_Return);
    QVERIFY(comes(window, "buttonOk"));
}

void tst_Keys::enterOpensThePasswordPage()
{
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        RootWindow window;
        QVERIFY2(toLogin(window), window.service.report());
        PageOpener opener;
        QVERIFY(pressAt("forgotPassword", key));
        const QUrl page(QStringLiteral("http://") + window.service.host()
                        + QStringLiteral("/index.php?do=forgotpass"));
        QCOMPARE(opener.pages(), QList<QUrl>{page});
        Keyboard::press(Qt::Key_Tab); // to the link itself
        QCOMPARE(Keyboard::focus(), name("forgotPassword"));
        Keyboard::press(key);
        QCOMPARE(opener.pages(), (QList<QUrl>{page, page}));
    }
}

void tst_Keys::enterPressesTheFocusedButtonOfABox()
{
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        RootWindow window;
        QVERIFY2(toHome(window), window.service.report());
        window.dialogs.beforeNextAnswer([key] {
            QWidget *box = QApplication::activeModalWidget();
            QVERIFY(box);
            box->activateWindow();
            QTRY_VERIFY(box->isAncestorOf(QApplication::focusWidget()));
            Keyboard::press(Qt::Key_Tab); // from No to Yes
            Keyboard::press(key);
        });
        QVERIFY(MessageBox::ask(window.root(), QStringLiteral("title"), QStringLiteral("Really?")));
        QVERIFY(isInFront(window));
        QTRY_COMPARE(Keyboard::focus(), name("buttonUpload"));
    }
}

void tst_Keys::refusedLoginGoesOnAtThePassword_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("refused") << ScriptedService::reply("0");
    QTest::newRow("broken, with a box")
        << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n");
}

void tst_Keys::refusedLoginGoesOnAtThePassword()
{
    QFETCH(QByteArray, reply);
    RootWindow window;
    QVERIFY2(toLogin(window), window.service.report());
    ScriptedService::Step step;
    step.operation = "ValidateLogin";
    step.bytes = reply;
    step.then = ScriptedService::Close;
    window.service.expect(step);
    Keyboard::type(QStringLiteral("m1"));
    Keyboard::press(Qt::Key_Tab);
    Keyboard::type(QStringLiteral("wrong"));
    QVERIFY(pressAt("loginButton", Qt::Key_Return));
    QTRY_VERIFY(!window.text("labelError").isEmpty() || !window.dialogs.boxes().isEmpty());
    QVERIFY(isInFront(window));
    QTRY_COMPARE(Keyboard::focus(), name("linePassword"));
    window.service.expect("ValidateLogin", "1");
    Keyboard::type(QStringLiteral("secret")); // over the wrong one
    QCOMPARE(window.text("linePassword"), QStringLiteral("secret"));
    window.service.expect("GetNotificationOptions", "options\n1,0,0,1\n");
    window.service.expect("GetCategoryList", "categories\n1,Public Figures,0\n");
    Keyboard::press(Qt::Key_Return);
    QVERIFY(comes(window, "buttonUpload"));
    QTRY_COMPARE(Keyboard::focus(), name("buttonUpload"));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
}

void tst_Keys::focusComesBackAfterARefusedPrice()
{
    RootWindow window;
    QVERIFY2(toPriceChange(window), window.service.report());
    window.service.expect("ModifyAuction", "ERROR");
    QVERIFY(pressAt("done", Qt::Key_Return));
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(isInFront(window));
    QTRY_COMPARE(Keyboard::focus(), name("done"));
}

void tst_Keys::refusedAccountIsSaidAndCanBeSentAgain()
{
    RootWindow window;
    QVERIFY2(toCreateAccount(window), window.service.report());
    for (const char *text : {"member1", "secret1", "m@e.org", "m@e.org"}) {
        Keyboard::type(QLatin1String(text));
        Keyboard::press(Qt::Key_Tab);
    }
    QVERIFY(Keyboard::tabTo(name("qt_tabwidget_tabbar")));
    Keyboard::press(Qt::Key_Right);
    QVERIFY(comes(window, "checkTerms"));
    QVERIFY(pressAt("checkTerms", Qt::Key_Space));
    const ScreenReader reader;
    window.service.expectHeld("CreateAccount", "ERROR: taken");
    QVERIFY(pressAt("submitButton", Qt::Key_Return));
    QTRY_VERIFY(window.service.isHolding());
    const QString wait = QStringLiteral("Please wait, while your account is created on site.");
    QVERIFY2(reader.alerts().contains(wait), qPrintable(reader.alerts().join(QLatin1Char('|'))));
    QVERIFY(window.service.release());
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(isInFront(window));
    QTRY_COMPARE(Keyboard::focus(), name("submitButton"));
    QCOMPARE(window.find("errorLabelText")->accessibleName(), QString());
}

void tst_Keys::focusStaysOnTheSummaryWhileItIsSent()
{
    RootWindow window;
    QVERIFY2(toConfirm(window), window.service.report());
    window.service.expectHeld("CreateAuction", "17");
    QVERIFY(pressAt("createAuctionButton", Qt::Key_Return));
    QTRY_VERIFY(window.service.isHolding());
    QCOMPARE(Keyboard::focus(), name("auctionOverallInfo"));
    QVERIFY(window.service.release());
    QVERIFY(comes(window, "buttonOk"));
}

void tst_Keys::waitingScreensKeepAFocus()
{
    RootWindow window;
    QVERIFY2(toHome(window), window.service.report());
    window.service.expectHeld("GetMyAuctions", "header\n");
    QVERIFY(pressAt("buttonMyKavlor", Qt::Key_Return));
    QTRY_VERIFY(window.service.isHolding());
    QTRY_COMPARE(Keyboard::focus(), name("backNavigationButton"));
    QVERIFY(window.service.release());
    QTRY_COMPARE(window.text("labelPleaseWait"), QStringLiteral("There is no data to display."));
    QCOMPARE(Keyboard::focus(), name("backNavigationButton"));
}

void tst_Keys::focusIsSeenEverywhere_data()
{
    screensBeginWhereAMemberDoes_data();
    QTest::newRow("terms") << &tst_Keys::toTerms << QString();
}

void tst_Keys::focusIsSeenEverywhere()
{
    QFETCH(Way, way);
    RootWindow window;
    QVERIFY2((this->*way)(window), window.service.report());
    QTRY_VERIFY(!Keyboard::focus().isEmpty());
    QCOMPARE(unseenFocus(), QString());
    QVERIFY(!Keyboard::tabTo(name("DummylineEdit")));
}

void tst_Keys::focusOnTheBarIsSeen()
{
    RootWindow window;
    QVERIFY2(toHome(window), window.service.report());
    QVERIFY(Keyboard::tabTo(name("cancelNavigationButton")));
    const QWidget *button = QApplication::focusWidget();
    const qreal ratio = button->devicePixelRatioF();
    const QRect place(button->mapTo(window.root(), QPoint()) * ratio, button->size() * ratio);
    const QImage shown = window.root()->grab().toImage();
    const int middle = place.center().y();
    const QColor bar = shown.pixelColor(place.left() - 3, middle);
    double highest = 1;
    for (int x = place.left(); x < place.left() + 6; ++x)
        highest = qMax(highest, contrast(bar, shown.pixelColor(x, middle)));
    QVERIFY2(highest >= 3, qPrintable(QString::number(highest)));
}

void tst_Keys::lockedLinesLookLocked()
{
    RootWindow window;
    QVERIFY2(toMyAccount(window), window.service.report());
    const QImage locked = window.picture("lineEmail");
    QVERIFY(window.click("checkBoxEmail"));
    window.find("pushButtonDone")->setFocus();
    const QImage open = window.picture("lineEmail");
    const QPoint ground(open.width() - 12, open.height() / 2);
    QCOMPARE(open.pixelColor(ground), QColor(Qt::white));
    QVERIFY(contrast(open.pixelColor(ground), locked.pixelColor(ground)) >= 1.3);
    QVERIFY(contrast(locked.pixelColor(ground), QColor(0, 0, 127)) >= 7); // the letters
    // A broken line around it.
    QSet<QRgb> border;
    for (int x = 20; x < locked.width() - 20; ++x)
        border.insert(locked.pixel(x, 0));
    QVERIFY(border.size() > 1);
    QVERIFY(window.click("checkBoxEmail"));
    window.find("pushButtonDone")->setFocus();
    QCOMPARE(window.picture("lineEmail").pixelColor(ground), locked.pixelColor(ground));
}

void tst_Keys::faultsAndWaitsAreSaid_data()
{
    QTest::addColumn<Way>("way");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QString>("said");
    QTest::newRow("create account")
        << &tst_Keys::toCreateAccount << QByteArray("submitButton") << "Username must be defined";
    QTest::newRow("login") << &tst_Keys::toLogin << QByteArray("loginButton")
                           << "kavlor authentication failed.";
    QTest::newRow("my account") << &tst_Keys::toMyAccount << QByteArray("pushButtonDone")
                                << "Password does not match.";
    QTest::newRow("my auctions") << &tst_Keys::toHome << QByteArray("buttonMyKavlor")
                                 << "There is no data to display.";
    QTest::newRow("my auctions, waiting") << &tst_Keys::toHome << QByteArray("buttonMyKavlor")
                                          << "Please wait while data is populated...";
    QTest::newRow("no caption") << &tst_Keys::toDescription << QByteArray("doneButton")
                                << "Please enter a caption.";
}

void tst_Keys::faultsAndWaitsAreSaid()
{
    QFETCH(Way, way);
    QFETCH(QByteArray, button);
    QFETCH(QString, said);
    RootWindow window;
    QVERIFY2((this->*way)(window), window.service.report());
    if (button == "loginButton") {
        window.service.expect("ValidateLogin", "0");
        Keyboard::type(QStringLiteral("m1"));
        Keyboard::press(Qt::Key_Tab);
        Keyboard::type(QStringLiteral("wrong"));
    } else if (button == "pushButtonDone") {
        QVERIFY(pressAt("checkBoxPassword", Qt::Key_Space));
        QVERIFY(Keyboard::tabTo(name("linePassword")) || Keyboard::focus() == name("linePassword"));
        Keyboard::replace(QStringLiteral("other"));
    } else if (button == "buttonMyKavlor") {
        window.service.expect("GetMyAuctions", "header\n");
    }
    const ScreenReader reader;
    QVERIFY(pressAt(button.constData(), Qt::Key_Return));
    const bool isSaid = QTest::qWaitFor([&] { return reader.alerts().contains(said); });
    QVERIFY2(isSaid, qPrintable(reader.alerts().join(QLatin1Char('|'))));
}

void tst_Keys::uploadIsSaid()
{
    RootWindow window;
    QVERIFY2(toConfirm(window), window.service.report());
    const ScreenReader reader;
    window.service.expectHeld("CreateAuction", "17");
    QVERIFY(pressAt("createAuctionButton", Qt::Key_Return));
    const QString wait = QStringLiteral("Your auction is being uploaded. Please wait.");
    QTRY_VERIFY(reader.alerts().contains(wait));
    QTRY_VERIFY(window.service.isHolding());
    QVERIFY(window.service.release());
    QVERIFY(comes(window, "buttonOk"));
    QCOMPARE(window.find("progressUpload")->accessibleName(),
             QStringLiteral("Progress of the upload"));
    QVERIFY(window.find("buttonOk")
                ->accessibleDescription()
                .startsWith(QStringLiteral("Your media has been successfully placed")));
}

void tst_Keys::listBeginsWithAllOfItsFirstRow()
{
    RootWindow window;
    QVERIFY2(toMyAuctions(window), window.service.report());
    const QAccessibleInterface *row =
        QAccessible::queryAccessibleInterface(window.find("myAuctionsTable"))->focusChild();
    QVERIFY(row);
    QCOMPARE(row->text(QAccessible::Name),
             QStringLiteral("Lake. 12 views, 3 bids. On sale. The reserve price is met."));
}

void tst_Keys::signIn(RootWindow &window)
{
    window.service.expect("ValidateLogin", "1");
    window.service.expect("GetNotificationOptions", "options\n1,0,0,1\n");
    window.service.expect("GetCategoryList",
                          "categories\n1,Public Figures,0\n4,Sports,0\n10,Football,4\n");
    QVERIFY(startsAt(window, "createAccountButton"));
    Keyboard::press(Qt::Key_Right);
    QCOMPARE(Keyboard::focus(), name("loginButton"));
    Keyboard::press(Qt::Key_Space);
    QVERIFY(startsAt(window, "lineUsername"));
    Keyboard::type(QStringLiteral("m1"));
    Keyboard::press(Qt::Key_Tab);
    Keyboard::type(QStringLiteral("secret"));
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "buttonUpload"));
}

void tst_Keys::choosePhoto(RootWindow &window)
{
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "photoClicker"));
    window.dialogs.beforeNextAnswer([this] {
        QWidget *dialog = QApplication::activeModalWidget();
        QVERIFY(dialog);
        dialog->activateWindow();
        QTRY_COMPARE(Keyboard::focus(), name("fileNameEdit"));
        Keyboard::type(m_photo);
        Keyboard::press(Qt::Key_Return);
    });
    Keyboard::press(Qt::Key_Space);
    QTRY_VERIFY(window.find("doneButton")->isEnabled());
    QCOMPARE(window.dialogs.fileDialogCount(), 1);
    QVERIFY(isInFront(window));
}

void tst_Keys::describePhoto(RootWindow &window)
{
    Keyboard::press(Qt::Key_Tab);
    Keyboard::type(QStringLiteral("lake"));
    Keyboard::press(Qt::Key_Tab);
    Keyboard::type(QStringLiteral("at dawn"));
    Keyboard::press(Qt::Key_Tab);
    QCOMPARE(Keyboard::focus(), name("doneButton"));
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "categoriesTable"));
}

void tst_Keys::chooseCategory(RootWindow &window)
{
    Keyboard::press(Qt::Key_Down);
    Keyboard::press(Qt::Key_Return);
    QTRY_COMPARE(window.text("categorySelected"), QStringLiteral("Sports"));
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "startPrice"));
}

void tst_Keys::enterPrices(RootWindow &window)
{
    Keyboard::type(QStringLiteral("12"));
    Keyboard::press(Qt::Key_Up);
    Keyboard::press(Qt::Key_Tab);
    Keyboard::type(QStringLiteral("40"));
    Keyboard::press(Qt::Key_Tab);
    Keyboard::type(QStringLiteral("95"));
    Keyboard::press(Qt::Key_Tab);
    QCOMPARE(Keyboard::focus(), name("finalizeButton"));
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "auctionOverallInfo"));
}

void tst_Keys::confirmAuction(RootWindow &window)
{
    QVERIFY(window.text("auctionOverallInfo").contains(QStringLiteral("USD 13")));
    window.service.expect("CreateAuction", "17");
    QVERIFY(pressAt("createAuctionButton", Qt::Key_Return));
    QVERIFY(startsAt(window, "buttonOk"));
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "checkBoxOnBid"));
    QVERIFY(pressAt("backNavigationButton", Qt::Key_Return));
    QVERIFY(startsAt(window, "pushButtonMyAccount"));
    QVERIFY(goesHome(window, Qt::Key_Return));
}

void tst_Keys::changePrices(RootWindow &window)
{
    Keyboard::press(Qt::Key_Right);
    window.service.expect("GetMyAuctions",
                          "header\n17,Lake,1,40,95,0,11/30/2026 12:00,0,12,3,40\n"
                          "18,Fog,1,40,95,0,11/30/2026 12:00,0,5,0,-1\n");
    window.service.expectHeld("GetThumbnail", QByteArray());
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "myAuctionsTable"));
    QTRY_VERIFY(window.service.isHolding());
    Keyboard::press(Qt::Key_Down);
    Keyboard::press(Qt::Key_Return);
    QVERIFY(startsAt(window, "reservedPrice"));
    Keyboard::type(QStringLiteral("50"));
    Keyboard::press(Qt::Key_Tab);
    Keyboard::press(Qt::Key_Down);
    window.service.expect("ModifyAuction", "1");
    window.dialogs.beforeNextAnswer([] {
        QWidget *box = QApplication::activeModalWidget();
        QVERIFY(box);
        box->activateWindow();
        QTRY_VERIFY(box->isAncestorOf(QApplication::focusWidget()));
        Keyboard::press(Qt::Key_Return);
    });
    QVERIFY(pressAt("done", Qt::Key_Space));
    QVERIFY(startsAt(window, "myAuctionsTable"));
}

void tst_Keys::signOut(RootWindow &window)
{
    QVERIFY(goesHome(window, Qt::Key_Space));
    QVERIFY(pressAt("cancelNavigationButton", Qt::Key_Return));
    QVERIFY(startsAt(window, "createAccountButton"));
}

void tst_Keys::aMembersWholeWay()
{
    RootWindow window;
    QVERIFY2(toWelcome(window), window.service.report());
    using Step = void (tst_Keys::*)(RootWindow &);
    for (const Step step :
         {&tst_Keys::signIn, &tst_Keys::choosePhoto, &tst_Keys::describePhoto,
          &tst_Keys::chooseCategory, &tst_Keys::enterPrices, &tst_Keys::confirmAuction,
          &tst_Keys::changePrices, &tst_Keys::signOut}) {
        (this->*step)(window);
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY2(window.service.isDone(), window.service.report());
    const QByteArray created = sent(window, "CreateAuction");
    for (const char *value : {"\r\nLake\r\n", "\r\nAt dawn\r\n", "\r\n10\r\n", "\r\n13\r\n"})
        QVERIFY2(created.contains(value), value);
    const QByteArray changed = sent(window, "ModifyAuction");
    QVERIFY2(changed.contains("50") && changed.contains("94"), changed.constData());
}

KAVLOR_TEST_MAIN(tst_Keys)
#include "tst_keys.moc"
