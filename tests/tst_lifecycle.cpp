// SPDX-License-Identifier: MIT

#include "httptolvex.h"
#include "leaveframe.h"
#include "member.h"
#include "moodyservice.h"
#include "quietplatform.h"
#include "resultlog.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QMetaMethod>
#include <QPixmapCache>
#include <QStandardPaths>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <random>
#include <utility>

/**
 * Every screen ends at every point of its life: by itself, by the bar or with its window; in its
 * own signals and those of its controls, under an open dialog, while a request is under way and
 * while it waits for the network. Afterwards nothing was sent twice, no file is left, and the next
 * start works.
 *
 * The points are found by looking at the screens. What is run is a fixed sample of them; with
 * KAVLOR_ALL_ENDS it is all, or as many as can be tried in that many seconds; the last line of the
 * output says how many.
 */
class tst_LifeCycle : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();

    void endsAnywhere_data();
    void endsAnywhere();
    void everyScreenWasReached();

public slots:
    void end();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Scene
    {
        QByteArray name;
        const char *frame;     ///< the class of what ends
        Member::Step way;      ///< from the first screen to there
        Member::Step act = {}; ///< what a member does to send the operation; none = no request
        QByteArray operation = {};
        bool signedIn = true;
        bool isStart = false;
        const char *goal = nullptr; ///< the class of the screen that it is handed over to
    };
    enum Moment {
        Pressed, ///< a control goes down
        Clicked,
        OwnSignal,  ///< the frame says something because of a control
        DialogOpen, ///< which a control has opened
        Shown,      ///< not painted yet
        Asked,      ///< the request has reached the service
        Held,       ///< and is not answered yet
        Answered,
        Refused,
        CutOff,
        Waiting,   ///< for the network
        HandedOver ///< the next screen comes up
    };
    enum End { ByItself, ByTheBar, ByClosing };
    struct Case
    {
        int scene;
        Moment moment;
        QByteArray control; // empty = the scene's own act
        End end;
    };

    static const QList<Scene> &scenes();
    static QByteArray titleOf(const Case &one);
    QList<Case> cases();
    QList<QByteArray> controlsOf(const Scene &scene);
    bool reach(const Scene &scene);
    QWidget *root() const;
    QWidget *frame() const;
    void hearSignals(const QObject *speaker);
    void watch(Moment moment, const QByteArray &control);
    bool act(const QByteArray &control);
    void requestCame(Moment moment);
    void resultCame(Moment moment);
    bool isOver(Moment moment) const;
    bool startsAnew();

    std::unique_ptr<QuietPlatform> m_quiet;
    std::unique_ptr<RootWindow> m_window;
    std::unique_ptr<MoodyService> m_service;
    std::unique_ptr<Member> m_member;
    QDeadlineTimer m_deadline = QDeadlineTimer(QDeadlineTimer::Forever);
    QList<QByteArray> m_unreached;
    qsizetype m_cases = 0;
    qsizetype m_tried = 0;

    const Scene *m_scene = nullptr;
    End m_end = ByItself;
    const char *m_awaited = nullptr; // the class of a frame that ends it by being shown
    bool m_hearsSignals = false;     // of the frame, once it is shown
    bool m_hearsResult = false;
    bool m_hasResult = false;
    bool m_ended = false;
};

namespace {

constexpr int sampleSize = 80;
constexpr int never = 10 * patience; // ms
constexpr int shortWait = 50;        // ms

const MoodyService::Fault &faultOf(const QByteArray &name)
{
    const QList<MoodyService::Fault> &faults = MoodyService::faults();
    return *std::find_if(faults.cbegin(), faults.cend(),
                         [&](const auto &fault) { return fault.name == name; });
}

bool isSample()
{
    return qEnvironmentVariableIsEmpty("KAVLOR_ALL_ENDS");
}

} // namespace

const QList<tst_LifeCycle::Scene> &tst_LifeCycle::scenes()
{
    using M = Member;
    const char *splash = "CKavlorSplashWindow";
    const char *list = "CKavlorMyAuctionsController";
    const char *wizard = "CUploadMediaController";
    static const QList<Scene> all{
        {"start", splash, &M::stay, &M::start, "ValidateLogin", true, true, "KavlorKnownUser"},
        {"start", splash, &M::stay, &M::start, "GetCategoryList", true, true},
        {"start", splash, &M::stay, &M::start, "GetNotificationOptions", true, true},
        {"start", splash, &M::stay, &M::start, "GetServiceTerms", true, true},
        {"start", splash, &M::stay, &M::start, "GetCountryList", true, true},
        {"start of a stranger", splash, &M::stay, &M::start, "GetServiceTerms", false, true},
        {"start of a stranger", splash, &M::stay, &M::start, "GetCountryList", false, true,
         "FrameWelcomeKavlor"},
        {"first screen", "FrameWelcomeKavlor", &M::stay, {}, {}, false},
        {"login", "KavlorLogin", &M::toLogin, &M::logIn, "ValidateLogin", false, false,
         "KavlorKnownUser"},
        {"account form", "FrameCreateAccount", &M::toAccountForm, &M::submit, "CreateAccount",
         false, false, "KavlorKnownUser"},
        {"home", "KavlorKnownUser", &M::stay},
        {"settings", "CKavlorSettings", &M::toSettings},
        {"my account", "CModifyAccountController", &M::toMyAccount, &M::done, "ModifyAccount"},
        {"alerts", "CNotificationsController", &M::toAlerts, &M::done, "SetNotificationOptions"},
        {"list to come", list, &M::stay, &M::openList, "GetMyAuctions"},
        {"thumbnails", list, &M::stay, &M::openList, "GetThumbnail"},
        {"my auctions", list, &M::toList},
        {"price change", "CKavlorModifyAuction", &M::toPrices, &M::changePrices, "ModifyAuction"},
        {"upload", wizard, &M::toWizard},
        {"description", wizard, &M::toDescription},
        {"categories", "CKavlorAuctionCategorize", &M::toCategories},
        {"prices", "CKavlorAuctionCreate", &M::toAuctionPrices},
        {"summary", "CKavlorAuctionConfirm", &M::toSummary, &M::placeAuction, "CreateAuction"},
        {"upload under way", wizard, &M::toSummary, &M::placeAuction, "CreateAuction"},
        {"long upload", wizard, &M::toSummaryOfClip, &M::placeAuction, "CreateAuction"},
        {"success", "CUploadMediaConfirmation", &M::toSuccess},
    };
    return all;
}

void tst_LifeCycle::initTestCase()
{
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
    constexpr qint64 second = 1000; // ms
    if (!isSample())
        m_deadline.setRemainingTime(qEnvironmentVariableIntValue("KAVLOR_ALL_ENDS") * second);
    qApp->installEventFilter(this);
    m_quiet = std::make_unique<QuietPlatform>();
}

void tst_LifeCycle::cleanupTestCase()
{
    qApp->removeEventFilter(this);
    m_quiet.reset();
    qInfo("%d of %d ends tried", static_cast<int>(m_tried), static_cast<int>(m_cases));
}

void tst_LifeCycle::init()
{
    TestCase::init();
    testTimeConstants().startUpMinimum = 1;
    testTimeConstants().exitDelay = 1;
    testTimeConstants().categoryDelay = 1;
    testTimeConstants().progressStep = 1;
    testTimeConstants().formTimeout = never;
    testTimeConstants().uploadTimeout = never;
    QPixmapCache::clear();
    m_window = std::make_unique<RootWindow>();
    m_service = std::make_unique<MoodyService>();
    m_member = std::make_unique<Member>(m_window.get());
    m_scene = nullptr;
    m_awaited = nullptr;
    m_hasResult = m_hearsSignals = m_hearsResult = m_ended = false;
}

void tst_LifeCycle::cleanup()
{
    m_window.reset();
    m_service.reset();
}

// Also while it is only being made.
QWidget *tst_LifeCycle::root() const
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->inherits("RootViewController"))
            return window;
    }
    return nullptr;
}

QWidget *tst_LifeCycle::frame() const
{
    const QWidget *window = root();
    const QList<QFrame *> frames = window ? window->findChildren<QFrame *>() : QList<QFrame *>();
    for (QFrame *each : frames) {
        if (each->inherits(m_scene->frame) && each->isEnabled())
            return each;
    }
    return nullptr;
}

bool tst_LifeCycle::reach(const Scene &scene)
{
    m_scene = &scene;
    if (scene.signedIn)
        m_window->remember(QStringLiteral("m1"), QStringLiteral("secret"));
    if (scene.isStart)
        return true;
    m_window->start();
    return waitUntil([this] { return m_member->isAtFirstScreen(); })
        && (m_member.get()->*scene.way)();
}

QList<QByteArray> tst_LifeCycle::controlsOf(const Scene &scene)
{
    init();
    QList<QByteArray> names;
    if (!reach(scene)) {
        m_unreached.append(scene.name);
    } else {
        const QList<QWidget *> widgets = m_window->root()->findChildren<QWidget *>();
        for (const QWidget *widget : widgets) {
            const bool isControl = qobject_cast<const QAbstractButton *>(widget)
                || qobject_cast<const QTableView *>(widget);
            if (isControl && widget->isVisible() && widget->isEnabled()
                && !widget->objectName().startsWith(QLatin1String("qt_"))
                && !widget->inherits("ProgressStrip"))
                names.append(widget->objectName().toUtf8());
        }
    }
    cleanup();
    return names;
}

QList<tst_LifeCycle::Case> tst_LifeCycle::cases()
{
    QList<Case> all;
    for (int number = 0; number < scenes().size(); ++number) {
        const Scene &scene = scenes().at(number);
        const auto add = [&](const QList<Moment> &moments, const QByteArray &control) {
            for (const Moment moment : moments) {
                for (const End end : {ByItself, ByTheBar, ByClosing})
                    all.append({number, moment, control, end});
            }
        };
        if (scene.act)
            add({Asked, Held, Answered, Refused, CutOff, Waiting, OwnSignal}, {});
        if (scene.goal)
            add({HandedOver}, {});
        if (scene.isStart) {
            add({Shown}, {});
            continue;
        }
        const QList<QByteArray> controls = controlsOf(scene);
        for (const QByteArray &control : controls)
            add({Pressed, Clicked, OwnSignal, DialogOpen}, control);
    }
    return all;
}

QByteArray tst_LifeCycle::titleOf(const Case &one)
{
    static const QByteArray moments[] = {"pressed", "clicked", "own signal", "dialog open",
                                         "shown",   "asked",   "held",       "answered",
                                         "refused", "cut off", "waiting",    "handed over"};
    static const QByteArray ends[] = {"by itself", "by the bar", "by closing"};
    const Scene &scene = scenes().at(one.scene);
    const QByteArray cause = one.control.isEmpty() ? scene.operation : one.control;
    return scene.name + ", " + cause + " " + moments[one.moment] + ": " + ends[one.end];
}

void tst_LifeCycle::endsAnywhere_data()
{
    QTest::addColumn<int>("scene");
    QTest::addColumn<int>("moment");
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<int>("end");

    QList<Case> all = cases();
    // The same sample everywhere, but another order every time where all have a turn.
    std::mt19937 generator(isSample() ? std::mt19937::default_seed : std::random_device()());
    for (qsizetype i = all.size() - 1; i > 0; --i)
        all.swapItemsAt(i, static_cast<qsizetype>(generator() % static_cast<uint>(i + 1)));
    m_cases = all.size();
    if (isSample())
        all.resize(sampleSize);
    for (const Case &one : std::as_const(all)) {
        QTest::newRow(titleOf(one).constData()) << one.scene << static_cast<int>(one.moment)
                                                << one.control << static_cast<int>(one.end);
    }
}

// Ends what is tried, once.
void tst_LifeCycle::end()
{
    if (m_ended)
        return;
    m_ended = true;
    QWidget *window = root();
    if (m_end == ByClosing) {
        window->close();
        return;
    }
    if (m_end == ByItself) {
        if (QWidget *leaving = frame())
            leaveFrame(leaving);
        return;
    }
    for (const char *name : {"backNavigationButton", "cancelNavigationButton"}) {
        const QList<QAbstractButton *> buttons =
            window->findChildren<QAbstractButton *>(QLatin1String(name));
        for (QAbstractButton *button : buttons) {
            if (button->isVisible() && button->isEnabled()) {
                button->click();
                return;
            }
        }
    }
}

bool tst_LifeCycle::eventFilter(QObject *watched, QEvent *event)
{
    if (m_awaited && event->type() == QEvent::Show && watched->inherits(m_awaited))
        end();
    if (m_hearsSignals && event->type() == QEvent::Show && watched->inherits(m_scene->frame))
        hearSignals(watched);
    return false;
}

// Everything that the frame says ends it.
void tst_LifeCycle::hearSignals(const QObject *speaker)
{
    const QMetaObject *type = speaker->metaObject();
    const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("end()"));
    for (int i = QFrame::staticMetaObject.methodCount(); i < type->methodCount(); ++i) {
        if (type->method(i).methodType() == QMetaMethod::Signal)
            connect(speaker, type->method(i), this, slot);
    }
}

// Lets the moment end what is tried.
void tst_LifeCycle::watch(Moment moment, const QByteArray &control)
{
    if (moment == Shown)
        m_awaited = m_scene->frame;
    if (moment == HandedOver)
        m_awaited = m_scene->goal;
    if (moment == OwnSignal && frame())
        hearSignals(frame());
    m_hearsSignals = moment == OwnSignal && m_scene->isStart;
    if (moment == Refused || moment == CutOff || moment == DialogOpen)
        m_window->dialogs.beforeNextAnswer([this] { end(); });
    if (moment == Refused)
        m_service->spoil(m_scene->operation, faultOf("ERROR"));
    if (moment == CutOff)
        m_service->spoil(m_scene->operation, faultOf("cut in the header"));
    if (moment == Waiting) {
        testTimeConstants().connectionWait = shortWait;
        testTimeConstants().stateAnswerWait = 1;
        m_window->connector.reportState(OnlineConnector::Disconnected);
        QTimer::singleShot(shortWait / 2, this, &tst_LifeCycle::end);
    }
    connect(m_service.get(), &MoodyService::asked, this, [=](const QByteArray &operation) {
        if (operation == m_scene->operation && control.isEmpty())
            requestCame(moment);
    });
    if (control.isEmpty())
        return;
    auto *button = m_window->find<QAbstractButton>(control.constData());
    if (button && moment == Pressed)
        connect(button, &QAbstractButton::pressed, this, &tst_LifeCycle::end);
    if (button && moment == Clicked)
        connect(button, &QAbstractButton::clicked, this, &tst_LifeCycle::end);
}

bool tst_LifeCycle::act(const QByteArray &control)
{
    if (control.isEmpty())
        return (m_member.get()->*m_scene->act)();
    auto *table = m_window->find<QTableView>(control.constData());
    if (!table)
        return m_window->click(control.constData());
    const QModelIndex cell = table->model()->index(0, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(cell).center());
    return true;
}

// The header of the request has come to the service.
void tst_LifeCycle::requestCame(Moment moment)
{
    if (moment == Held)
        m_service->holdReplies(true);
    const QList<CHttpTolvex *> requests = std::exchange(m_hearsResult, true)
        ? QList<CHttpTolvex *>()
        : root()->findChildren<CHttpTolvex *>();
    for (const CHttpTolvex *request : requests) {
        connect(request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
                [=] { resultCame(moment); });
        connect(request, qOverload<QPixmap, QString>(&CHttpTolvex::requestIsFinished), this,
                [=] { resultCame(moment); });
    }
    if (moment == Asked)
        end();
}

void tst_LifeCycle::resultCame(Moment moment)
{
    m_hasResult = true;
    if (moment == Answered)
        end();
}

// Whether the moment is there, or will not come any more.
bool tst_LifeCycle::isOver(Moment moment) const
{
    if (m_ended)
        return true;
    if (moment == Held)
        return m_service->heldCount() > 0;
    if (moment == HandedOver)
        return false;
    return m_hasResult;
}

bool tst_LifeCycle::startsAnew()
{
    m_window->start();
    return waitUntil([this] { return m_member->isAtFirstScreen(); })
        && (!m_window->find("buttonMyKavlor") || m_member->toList());
}

void tst_LifeCycle::endsAnywhere()
{
    QFETCH(int, scene);
    QFETCH(int, moment);
    QFETCH(QByteArray, control);
    QFETCH(int, end);
    if (m_deadline.hasExpired())
        return;
    ++m_tried;
    const auto when = static_cast<Moment>(moment);
    m_end = static_cast<End>(end);
    const int filesBefore = temporaryFileCount();

    QVERIFY(reach(scenes().at(scene)));
    watch(when, control);
    QVERIFY(act(control));
    if (control.isEmpty())
        QVERIFY(waitUntil([&] { return isOver(when); }));
    QCoreApplication::processEvents();
    this->end(); // at the latest
    m_awaited = nullptr;

    m_hearsSignals = false;
    disconnect(m_service.get(), &MoodyService::asked, this, nullptr);

    // The reply comes all the same.
    m_service->holdReplies(false);
    QVERIFY(waitUntil([this] { return m_service->isQuiet(); }));
    m_window->connector.reportState(OnlineConnector::Connected);
    QCoreApplication::processEvents();
    if (m_end == ByClosing)
        QVERIFY(!m_window->root()->isVisible());
    for (const char *operation : {"CreateAuction", "ModifyAuction", "CreateAccount"})
        QVERIFY2(m_service->count(operation) <= 1, operation);
    m_window->end();
    QVERIFY(waitUntil([=] { return temporaryFileCount() == filesBefore; }));
    QVERIFY(startsAnew());
    m_window->end();
    QVERIFY(waitUntil([=] { return temporaryFileCount() == filesBefore; }));
}

void tst_LifeCycle::everyScreenWasReached()
{
    QCOMPARE(m_unreached, QList<QByteArray>());
}

KAVLOR_TEST_MAIN(tst_LifeCycle)
#include "tst_lifecycle.moc"
