// SPDX-License-Identifier: MIT

#include "moodyservice.h"
#include "resultlog.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QDeadlineTimer>
#include <QDir>

#include <QPixmapCache>
#include <QSet>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <climits>
#include <random>

/**
 * Every request of every screen meets every fault. Whatever happens, the program lives, the request
 * was sent once, no file is left, the member can go on, and the same request works the next time.
 *
 * What is run is a fixed sample of the combinations. With KAVLOR_ALL_FAULTS it is all of them, or
 * as many as can be tried in that many seconds; the last line of the output says how many.
 */
class tst_FaultMatrix : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void goesOnAfterAFault_data();
    void goesOnAfterAFault();
    void everyOperationIsThere();

private:
    struct Situation
    {
        QByteArray screen;
        QByteArray operation;
        bool (tst_FaultMatrix::*way)();     ///< from the first screen to just before the request
        bool (tst_FaultMatrix::*trigger)(); ///< what a member does to send it
        QByteArray goal;                    ///< there once all went well
        bool signedIn = true;
        QByteArray previous = {}; ///< the request before it, where it is not the trigger's first
    };

    static const QList<Situation> &situations();

    bool nothing();
    bool start();
    bool toLogin();
    bool toCreateAccount();
    bool toAccountForm();
    bool toMyAccount();
    bool toAlerts();
    bool toList();
    bool toPrices();
    bool toSummary();
    bool openAccountForm();
    bool openList();
    bool logIn();
    bool submit();
    bool done();
    bool changePrices();
    bool placeAuction();

    bool comes(const char *name);
    bool isAtFirstScreen() const;
    bool goToFirstScreen();
    bool clickCell(const char *table, int row);
    void follow();
    void arm(const Situation &situation, const QByteArray &fault);
    void disarm();
    bool isSettled() const;

    std::unique_ptr<RootWindow> m_window;
    std::unique_ptr<MoodyService> m_service;
    QTemporaryDir m_folder;
    QString m_photo;

    QSet<const CHttpTolvex *> m_followed;
    int m_results = 0;
    int m_resultsBefore = 0; // when the spoilt request came
    QDeadlineTimer m_deadline = QDeadlineTimer(QDeadlineTimer::Forever);
    qsizetype m_cells = 0;
    qsizetype m_tried = 0;
};

namespace {

constexpr int shortTimeout = 150; // ms
constexpr int longTimeout = 10 * patience;
constexpr int sampleSize = 60;

// Faults on the way to the service, which none of its replies can make.
const QByteArray refused = "refused";
const QByteArray noSuchHost = "no such host";
const QByteArray daemonGoneBefore = "the daemon gone before";
const QByteArray daemonGoneMeanwhile = "the daemon gone meanwhile";

const MoodyService::Fault *faultOf(const QByteArray &name)
{
    const QList<MoodyService::Fault> &faults = MoodyService::faults();
    const auto found = std::find_if(faults.cbegin(), faults.cend(),
                                    [&](const auto &fault) { return fault.name == name; });
    return found == faults.cend() ? nullptr : &*found;
}

bool isSample()
{
    return qEnvironmentVariableIsEmpty("KAVLOR_ALL_FAULTS");
}

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

} // namespace

const QList<tst_FaultMatrix::Situation> &tst_FaultMatrix::situations()
{
    using T = tst_FaultMatrix;
    static const QList<Situation> all{
        {"start", "ValidateLogin", &T::nothing, &T::start, "buttonUpload"},
        {"start", "GetCategoryList", &T::nothing, &T::start, "buttonUpload", true, "ValidateLogin"},
        {"start", "GetNotificationOptions", &T::nothing, &T::start, "buttonUpload", true,
         "GetCategoryList"},
        {"start", "GetServiceTerms", &T::nothing, &T::start, "buttonUpload", true,
         "GetNotificationOptions"},
        {"start", "GetCountryList", &T::nothing, &T::start, "buttonUpload", true,
         "GetServiceTerms"},
        {"login", "ValidateLogin", &T::toLogin, &T::logIn, "buttonUpload", false},
        {"home", "GetNotificationOptions", &T::toLogin, &T::logIn, "buttonUpload", false,
         "ValidateLogin"},
        {"home", "GetCategoryList", &T::toLogin, &T::logIn, "buttonUpload", false,
         "GetNotificationOptions"},
        {"account form", "GetServiceTerms", &T::nothing, &T::openAccountForm, "submitButton",
         false},
        {"account form", "CreateAccount", &T::toAccountForm, &T::submit, "buttonUpload", false},
        {"my account", "ModifyAccount", &T::toMyAccount, &T::done, "pushButtonMyAccount"},
        {"alerts", "SetNotificationOptions", &T::toAlerts, &T::done, "pushButtonMyAccount"},
        {"my auctions", "GetMyAuctions", &T::nothing, &T::openList, "myAuctionsTable"},
        {"my auctions", "GetThumbnail", &T::nothing, &T::openList, "myAuctionsTable", true,
         "GetMyAuctions"},
        {"price change", "ModifyAuction", &T::toPrices, &T::changePrices, "myAuctionsTable"},
        {"upload", "CreateAuction", &T::toSummary, &T::placeAuction, "buttonOk"},
    };
    return all;
}

void tst_FaultMatrix::initTestCase()
{
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
    m_photo = m_folder.filePath(QStringLiteral("photo.png"));
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(QColor(90, 150, 210));
    QVERIFY(image.save(m_photo));
    constexpr qint64 second = 1000; // ms
    if (!isSample())
        m_deadline.setRemainingTime(qEnvironmentVariableIntValue("KAVLOR_ALL_FAULTS") * second);
}

void tst_FaultMatrix::cleanupTestCase()
{
    qInfo("%d of %d combinations tried", static_cast<int>(m_tried), static_cast<int>(m_cells));
}

void tst_FaultMatrix::init()
{
    TestCase::init();
    testTimeConstants().startUpMinimum = 1;
    testTimeConstants().formTimeout = longTimeout;
    testTimeConstants().uploadTimeout = longTimeout;
    QPixmapCache::clear();
    m_window = std::make_unique<RootWindow>();
    m_service = std::make_unique<MoodyService>();
    m_followed.clear();
    m_results = m_resultsBefore = 0;
}

void tst_FaultMatrix::cleanup()
{
    m_window.reset();
    m_service.reset();
}

bool tst_FaultMatrix::comes(const char *name)
{
    return waitUntil([&] { return m_window->find(name) && m_window->find(name)->isEnabled(); });
}

bool tst_FaultMatrix::nothing()
{
    return true;
}

bool tst_FaultMatrix::start()
{
    m_window->start();
    return true;
}

bool tst_FaultMatrix::toLogin()
{
    return m_window->click("loginButton") && m_window->type("lineUsername", text("m1"))
        && m_window->type("linePassword", text("secret"));
}

bool tst_FaultMatrix::openAccountForm()
{
    return m_window->click("createAccountButton");
}

bool tst_FaultMatrix::toAccountForm()
{
    auto fill = [this](const char *line, const char *value) {
        return m_window->type(line, text(value));
    };
    if (!openAccountForm() || !fill("lineUsername", "m1") || !fill("linePassword", "secret")
        || !fill("lineEmailaddress", "m1@example.org") || !fill("lineAgain", "m1@example.org"))
        return false;
    auto *tabs = m_window->find<QTabWidget>("tabWidget");
    tabs->setCurrentIndex(1);
    return comes("checkTerms") && m_window->click("checkTerms");
}

bool tst_FaultMatrix::toMyAccount()
{
    return m_window->click("buttonSettings") && comes("pushButtonMyAccount")
        && m_window->click("pushButtonMyAccount") && comes("checkBoxEmail")
        && m_window->click("checkBoxEmail") && m_window->type("lineEmail", text("m2@example.org"));
}

bool tst_FaultMatrix::toAlerts()
{
    return m_window->click("buttonSettings") && comes("pushButtonNotifications")
        && m_window->click("pushButtonNotifications") && comes("checkBoxOnBid")
        && m_window->click("checkBoxOnBid");
}

bool tst_FaultMatrix::openList()
{
    return m_window->click("buttonMyKavlor");
}

bool tst_FaultMatrix::clickCell(const char *name, int row)
{
    auto *table = m_window->find<QTableView>(name);
    const QModelIndex cell = table->model()->index(row, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(cell).center());
    return true;
}

bool tst_FaultMatrix::toPrices()
{
    return openList() && comes("myAuctionsTable") && clickCell("myAuctionsTable", 0)
        && comes("reservedPrice") && m_window->type("reservedPrice", text("45"));
}

bool tst_FaultMatrix::toSummary()
{
    m_window->dialogs.chooseFile(m_photo);
    return m_window->click("buttonUpload") && comes("photoClicker")
        && m_window->click("photoClicker") && comes("doneButton")
        && m_window->type("lineCaption", text("Lake")) && m_window->click("doneButton")
        && comes("categoriesTable") && clickCell("categoriesTable", 0) && comes("finalizeButton")
        && m_window->click("finalizeButton") && comes("createAuctionButton");
}

bool tst_FaultMatrix::logIn()
{
    return m_window->click("loginButton");
}

bool tst_FaultMatrix::submit()
{
    return m_window->click("submitButton");
}

bool tst_FaultMatrix::done()
{
    return m_window->click("pushButtonDone");
}

bool tst_FaultMatrix::changePrices()
{
    return m_window->click("done");
}

bool tst_FaultMatrix::placeAuction()
{
    return m_window->click("createAuctionButton");
}

bool tst_FaultMatrix::isAtFirstScreen() const
{
    return m_window->find("buttonUpload") || m_window->find("createAccountButton");
}

// As a member finds a way out of any screen: by the buttons of the bar.
bool tst_FaultMatrix::goToFirstScreen()
{
    return waitUntil([this] {
        if (isAtFirstScreen())
            return true;
        for (const char *button : {"backNavigationButton", "cancelNavigationButton"}) {
            if (m_window->click(button))
                break;
        }
        return false;
    });
}

// Counts the results of all request objects that there are now.
void tst_FaultMatrix::follow()
{
    const QList<CHttpTolvex *> requests = m_window->root()->findChildren<CHttpTolvex *>();
    for (const CHttpTolvex *request : requests) {
        if (m_followed.contains(request))
            continue;
        m_followed.insert(request);
        connect(request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
                [this] { ++m_results; });
        connect(request, qOverload<QPixmap, QString>(&CHttpTolvex::requestIsFinished), this,
                [this] { ++m_results; });
    }
}

void tst_FaultMatrix::arm(const Situation &situation, const QByteArray &name)
{
    const MoodyService::Fault *fault = faultOf(name);
    if (fault || name == daemonGoneMeanwhile)
        m_resultsBefore = INT_MAX; // until the request has come
    else if (name == daemonGoneBefore)
        m_resultsBefore = -1; // the result comes before the click is through
    else
        m_resultsBefore = m_results;
    const auto shorten = [] {
        testTimeConstants().formTimeout = shortTimeout;
        testTimeConstants().uploadTimeout = shortTimeout;
    };
    const bool hangs = fault && !fault->endsByItself;
    if (hangs && situation.previous.isEmpty())
        shorten();
    connect(m_service.get(), &MoodyService::asked, m_service.get(),
            [=](const QByteArray &operation) {
                if (m_window->root())
                    follow();
                if (hangs && operation == situation.previous)
                    shorten();
                if (operation != situation.operation)
                    return;
                testTimeConstants().formTimeout = longTimeout;
                testTimeConstants().uploadTimeout = longTimeout;
                m_resultsBefore = m_results;
                if (name == daemonGoneMeanwhile)
                    m_window->connector.reportState(OnlineConnector::Disconnected);
            });
    if (fault)
        m_service->spoil(situation.operation, *fault);
    if (name == refused)
        m_service->stopListening();
    if (name == daemonGoneBefore || name == daemonGoneMeanwhile) {
        testTimeConstants().connectionWait = shortTimeout;
        testTimeConstants().stateAnswerWait = shortTimeout;
    }
    if (name == daemonGoneBefore)
        m_window->connector.reportState(OnlineConnector::Disconnected);
}

void tst_FaultMatrix::disarm()
{
    disconnect(m_service.get(), &MoodyService::asked, nullptr, nullptr);
    testTimeConstants().formTimeout = longTimeout;
    testTimeConstants().uploadTimeout = longTimeout;
    m_service->dropConnections();
    m_service->listenAgain();
    m_window->connector.reportState(OnlineConnector::Connected);
}

bool tst_FaultMatrix::isSettled() const
{
    return !m_service->isSpoilt() && m_results > m_resultsBefore;
}

void tst_FaultMatrix::goesOnAfterAFault_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("fault");

    QList<QByteArray> names{refused, daemonGoneBefore, daemonGoneMeanwhile};
    for (const MoodyService::Fault &fault : MoodyService::faults())
        names.append(fault.name);
    QList<QPair<int, QByteArray>> cells;
    for (int number = 0; number < situations().size(); ++number) {
        for (const QByteArray &name : std::as_const(names)) {
            // Only what a member does himself can be preceded by those.
            const bool onTheWay = name == refused || name == daemonGoneBefore;
            if (!onTheWay || situations().at(number).previous.isEmpty())
                cells.append({number, name});
        }
    }
    // The same sample on every machine, but another order every time where all have a turn.
    std::mt19937 generator(isSample() ? std::mt19937::default_seed : std::random_device()());
    for (qsizetype i = cells.size() - 1; i > 0; --i)
        cells.swapItemsAt(i, static_cast<qsizetype>(generator() % static_cast<uint>(i + 1)));
    if (isSample())
        cells.resize(sampleSize);
    m_cells = cells.size();
    for (const auto &[number, name] : std::as_const(cells)) {
        const Situation &situation = situations().at(number);
        const QByteArray title = situation.screen + ", " + situation.operation + ": " + name;
        QTest::newRow(title.constData()) << number << name;
    }
}

void tst_FaultMatrix::goesOnAfterAFault()
{
    QFETCH(int, number);
    QFETCH(QByteArray, fault);
    if (m_deadline.hasExpired())
        return;
    ++m_tried;
    const Situation &situation = situations().at(number);
    const bool isStart = situation.screen == "start";
    const int filesBefore = temporaryFileCount();

    if (situation.signedIn)
        m_window->remember(text("m1"), text("secret"));
    if (situation.screen == "account form" && situation.operation == "GetServiceTerms")
        m_service->spoil(situation.operation, *faultOf("empty")); // so that the form asks again
    if (!isStart) {
        m_window->start();
        QVERIFY(waitUntil([this] { return isAtFirstScreen(); }));
    }
    QVERIFY((this->*situation.way)());
    const int before = m_service->count(situation.operation);
    if (m_window->root())
        follow();
    arm(situation, fault);
    QVERIFY((this->*situation.trigger)());
    follow();
    QTRY_VERIFY(isSettled());
    // A thumbnail is asked for as often as it is shown, and what the start did not get, home asks
    // for.
    if (situation.operation != "GetThumbnail" && !isStart)
        QVERIFY(m_service->count(situation.operation) <= before + 1);
    disarm();

    if (isStart) {
        // The start may have ended the program, as it has to; the member starts it again.
        QTRY_VERIFY(!m_window->root()->isVisible() || isAtFirstScreen());
        m_window->end();
        m_window->start();
        QVERIFY(comes(situation.goal.constData()));
    } else {
        QVERIFY(goToFirstScreen());
        if (!situation.signedIn && m_window->find("buttonUpload")) {
            QVERIFY(m_window->click("cancelNavigationButton")); // signs out
            QVERIFY(comes("createAccountButton"));
        }
        QTRY_COMPARE(temporaryFileCount(), filesBefore);
        QVERIFY((this->*situation.way)());
        QVERIFY((this->*situation.trigger)());
        QVERIFY(comes(situation.goal.constData()));
    }
    m_window->end();
    QTRY_COMPARE(temporaryFileCount(), filesBefore);
}

// Nothing that the client can ask for is left out.
void tst_FaultMatrix::everyOperationIsThere()
{
    for (const QByteArray &operation : MoodyService::operations()) {
        QVERIFY2(std::any_of(situations().cbegin(), situations().cend(),
                             [&](const Situation &s) { return s.operation == operation; }),
                 operation.constData());
    }
}

KAVLOR_TEST_MAIN(tst_FaultMatrix)
#include "tst_faultmatrix.moc"
