// SPDX-License-Identifier: MIT

#include "member.h"
#include "moodyservice.h"
#include "namelookup.h"
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
        Member::Step way;     ///< from the first screen to just before the request
        Member::Step trigger; ///< what a member does to send it
        QByteArray goal;      ///< there once all went well
        bool signedIn = true;
        QByteArray previous = {}; ///< the request before it, where it is not the trigger's first
    };

    static const QList<Situation> &situations();

    void follow();
    void arm(const Situation &situation, const QByteArray &fault);
    void disarm();
    bool isSettled() const;

    std::unique_ptr<RootWindow> m_window;
    std::unique_ptr<MoodyService> m_service;
    std::unique_ptr<Member> m_member;
    std::unique_ptr<NameLookup> m_names; // none = the system's own answers

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
const QByteArray unresolvable = "unresolvable";
const QByteArray daemonGoneBefore = "the daemon gone before";
const QByteArray daemonGoneMeanwhile = "the daemon gone meanwhile";

// These keep a request from the service altogether.
bool isOnTheWay(const QByteArray &fault)
{
    return fault == refused || fault == unresolvable || fault == daemonGoneBefore;
}

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
    using M = Member;
    static const QList<Situation> all{
        {"start", "ValidateLogin", &M::stay, &M::start, "buttonUpload"},
        {"start", "GetCategoryList", &M::stay, &M::start, "buttonUpload", true, "ValidateLogin"},
        {"start", "GetNotificationOptions", &M::stay, &M::start, "buttonUpload", true,
         "GetCategoryList"},
        {"start", "GetServiceTerms", &M::stay, &M::start, "buttonUpload", true,
         "GetNotificationOptions"},
        {"start", "GetCountryList", &M::stay, &M::start, "buttonUpload", true, "GetServiceTerms"},
        {"login", "ValidateLogin", &M::toLogin, &M::logIn, "buttonUpload", false},
        {"home", "GetNotificationOptions", &M::toLogin, &M::logIn, "buttonUpload", false,
         "ValidateLogin"},
        {"home", "GetCategoryList", &M::toLogin, &M::logIn, "buttonUpload", false,
         "GetNotificationOptions"},
        {"account form", "GetServiceTerms", &M::stay, &M::openAccountForm, "submitButton", false},
        {"account form", "CreateAccount", &M::toAccountForm, &M::submit, "buttonUpload", false},
        {"my account", "ModifyAccount", &M::toMyAccount, &M::done, "pushButtonMyAccount"},
        {"alerts", "SetNotificationOptions", &M::toAlerts, &M::done, "pushButtonMyAccount"},
        {"my auctions", "GetMyAuctions", &M::stay, &M::openList, "myAuctionsTable"},
        {"my auctions", "GetThumbnail", &M::stay, &M::openList, "myAuctionsTable", true,
         "GetMyAuctions"},
        {"price change", "ModifyAuction", &M::toPrices, &M::changePrices, "myAuctionsTable"},
        {"upload", "CreateAuction", &M::toSummary, &M::placeAuction, "buttonOk"},
    };
    return all;
}

void tst_FaultMatrix::initTestCase()
{
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
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
    m_service->setName(QStringLiteral("kavlor.test"));
    m_member = std::make_unique<Member>(m_window.get());
    m_followed.clear();
    m_results = m_resultsBefore = 0;
}

void tst_FaultMatrix::cleanup()
{
    m_window.reset();
    m_service.reset();
    m_names.reset();
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
    if (name == unresolvable)
        m_names = std::make_unique<NameLookup>(NameLookup::Unknown);
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
    m_names.reset();
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

    QList<QByteArray> names{refused, unresolvable, daemonGoneBefore, daemonGoneMeanwhile};
    for (const MoodyService::Fault &fault : MoodyService::faults())
        names.append(fault.name);
    QList<QPair<int, QByteArray>> cells;
    for (int number = 0; number < situations().size(); ++number) {
        for (const QByteArray &name : std::as_const(names)) {
            // Only what a member does himself can be preceded by those.
            if (!isOnTheWay(name) || situations().at(number).previous.isEmpty())
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
        QVERIFY(waitUntil([this] { return m_member->isAtFirstScreen(); }));
    }
    QVERIFY((m_member.get()->*situation.way)());
    const int before = m_service->count(situation.operation);
    if (m_window->root())
        follow();
    arm(situation, fault);
    QVERIFY((m_member.get()->*situation.trigger)());
    follow();
    QTRY_VERIFY(isSettled());
    if (isOnTheWay(fault))
        QCOMPARE(m_service->count(situation.operation), before);
    // A thumbnail is asked for as often as it is shown, and what the start did not get, home asks
    // for.
    if (situation.operation != "GetThumbnail" && !isStart)
        QVERIFY(m_service->count(situation.operation) <= before + 1);
    disarm();

    if (isStart) {
        // The start may have ended the program, as it has to; the member starts it again.
        QTRY_VERIFY(!m_window->root()->isVisible() || m_member->isAtFirstScreen());
        m_window->end();
        m_window->start();
        QVERIFY(m_member->comes(situation.goal.constData()));
    } else {
        QVERIFY(m_member->goToFirstScreen());
        if (!situation.signedIn && m_window->find("buttonUpload")) {
            QVERIFY(m_window->click("cancelNavigationButton")); // signs out
            QVERIFY(m_member->comes("createAccountButton"));
        }
        QTRY_COMPARE(temporaryFileCount(), filesBefore);
        QVERIFY((m_member.get()->*situation.way)());
        QVERIFY((m_member.get()->*situation.trigger)());
        QVERIFY(m_member->comes(situation.goal.constData()));
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
