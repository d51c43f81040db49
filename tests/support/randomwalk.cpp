// SPDX-License-Identifier: MIT

#include "randomwalk.h"

#include "httptolvex.h"
#include "kavlorcategorystore.h"
#include "keyboard.h"
#include "resultlog.h"
#include "testconstants.h"
#include "waituntil.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPixmapCache>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPointingDevice>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace {

constexpr int stepCount = 80;
constexpr int never = patience / 4;   // ms, and no longer: a timer is kept until its time
constexpr int shortTime = 5;          // ms
constexpr int longestSettling = 2000; // ms, after which the walk goes on all the same

// How likely a control is chosen: less those that lead back.
int weightOf(const QString &name)
{
    static const QHash<QString, int> weights{
        {QStringLiteral("createAuctionButton"), 20},   {QStringLiteral("finalizeButton"), 12},
        {QStringLiteral("photoClicker"), 6},           {QStringLiteral("forgotPassword"), 1},
        {QStringLiteral("cancelNavigationButton"), 1}, {QStringLiteral("backNavigationButton"), 1},
    };
    return weights.value(name, 4);
}

// A walk is drawn to one of these ways, so that together they come everywhere.
const QList<QStringList> &ways()
{
    static const auto names = [](const char *list) {
        return QString::fromLatin1(list).split(QLatin1Char(' '));
    };
    static const QList<QStringList> all{
        names("loginButton takeUpButton buttonUpload doneButton categoriesTable finalizeButton"),
        names("loginButton buttonUpload doneButton categoriesTable finalizeButton buttonOk"),
        names("loginButton buttonMyKavlor myAuctionsTable done"),
        names("loginButton buttonSettings pushButtonMyAccount pushButtonDone"),
        names("loginButton buttonSettings pushButtonNotifications pushButtonDone"),
        names("createAccountButton submitButton"),
    };
    return all;
}

// Whose press sends an operation, and nothing else does.
struct Confirmation
{
    const char *operation;
    const char *frame;
    const char *button;
};

constexpr Confirmation confirmations[] = {
    {"CreateAuction", "CKavlorAuctionConfirm", "createAuctionButton"},
    {"ModifyAuction", "CKavlorModifyAuction", "done"},
    {"CreateAccount", "FrameCreateAccount", "submitButton"},
    {"ModifyAccount", "CModifyAccountController", "pushButtonDone"},
    {"SetNotificationOptions", "CNotificationsController", "pushButtonDone"},
};

const Confirmation *confirmationOf(const QObject *button)
{
    for (const Confirmation &confirmation : confirmations) {
        if (button->objectName() != QLatin1String(confirmation.button))
            continue;
        for (const QObject *above = button; above; above = above->parent()) {
            if (above->inherits(confirmation.frame))
                return &confirmation;
        }
    }
    return nullptr;
}

bool isControl(const QWidget *widget)
{
    if (!widget->isVisible() || !widget->isEnabled()
        || widget->objectName().startsWith(QLatin1String("qt_"))
        || widget->inherits("ProgressStrip") || widget->width() < 2)
        return false;
    const auto *label = qobject_cast<const QLabel *>(widget);
    return qobject_cast<const QAbstractButton *>(widget)
        || qobject_cast<const QAbstractSpinBox *>(widget) || qobject_cast<const QLineEdit *>(widget)
        || qobject_cast<const QTabBar *>(widget)
        || qobject_cast<const QAbstractScrollArea *>(widget)
        || (label && label->text().contains(QLatin1String("href")));
}

bool isField(const QWidget *widget)
{
    return isControl(widget)
        && (qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QPlainTextEdit *>(widget)
            || qobject_cast<const QAbstractSpinBox *>(widget));
}

template <typename Predicate>
QList<QWidget *> widgetsOf(const QWidget *window, Predicate predicate)
{
    QList<QWidget *> found;
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (predicate(widget))
            found.append(widget);
    }
    return found;
}

// What a member would write there.
QString rightText(const QString &name)
{
    static const QHash<QString, QString> texts{
        {QStringLiteral("lineUsername"), QStringLiteral("m1")},
        {QStringLiteral("linePassword"), QStringLiteral("secret")},
        {QStringLiteral("lineConfirm"), QStringLiteral("secret")},
        {QStringLiteral("lineEmailaddress"), QStringLiteral("m1@example.org")},
        {QStringLiteral("lineAgain"), QStringLiteral("m1@example.org")},
        {QStringLiteral("lineEmail"), QStringLiteral("m2@example.org")},
        {QStringLiteral("linePaypal"), QStringLiteral("m1@pay.example.org")},
        {QStringLiteral("startPrice"), QStringLiteral("10")},
        {QStringLiteral("reservePrice"), QStringLiteral("45")},
        {QStringLiteral("reservedPrice"), QStringLiteral("45")},
        {QStringLiteral("buyItNowPrice"), QStringLiteral("95")},
    };
    return texts.value(name, QStringLiteral("lake"));
}

const QList<QString> &oddTexts()
{
    static const QList<QString> texts{
        QString(),
        QStringLiteral("<b>&amp;"),
        QStringLiteral("ERROR"),
        QStringLiteral("0"),
        QStringLiteral(u"\u00c4\u6f22\u0416 x"),
        QString(60, QLatin1Char('W')),
        QStringLiteral("a,b\tc"),
        QStringLiteral("99999999999"),
    };
    return texts;
}

const QList<const MoodyService::Fault *> &faults()
{
    static const QList<const MoodyService::Fault *> chosen = [] {
        QList<const MoodyService::Fault *> some;
        for (const MoodyService::Fault &fault : MoodyService::faults()) {
            // What is large takes long, and the requests here have come whole.
            if (fault.name != "64 MiB" && !fault.isEarly)
                some.append(&fault);
        }
        return some;
    }();
    return chosen;
}

QPointingDevice *touchScreen()
{
    static const std::unique_ptr<QPointingDevice> device(QTest::createTouchDevice());
    return device.get();
}

int transferCount(const QWidget *window)
{
    int count = 0;
    const QList<CHttpTolvex *> requests = window->findChildren<CHttpTolvex *>();
    for (const CHttpTolvex *request : requests) {
        const QList<QObject *> parts = request->findChildren<QObject *>();
        for (const QObject *part : parts)
            count += part->inherits("HttpTransfer") ? 1 : 0;
    }
    return count;
}

} // namespace

RandomWalk::RandomWalk(quint32 seed, QString folder)
    : m_random(seed)
    , m_folder(std::move(folder))
{
}

RandomWalk::~RandomWalk() = default;

bool RandomWalk::makeFiles(const QString &folder)
{
    QImage photo(40, 30, QImage::Format_RGB32);
    photo.fill(QColor(90, 150, 210));
    QFile broken(folder + QStringLiteral("/broken.gif"));
    QFile clip(folder + QStringLiteral("/clip.mp4"));
    return photo.save(folder + QStringLiteral("/photo.png")) && broken.open(QIODevice::WriteOnly)
        && broken.write("no picture") > 0 && clip.open(QIODevice::WriteOnly)
        && clip.write("no clip") > 0;
}

int RandomWalk::number(int below)
{
    return static_cast<int>(m_random() % static_cast<uint>(below));
}

bool RandomWalk::chance(int oneIn)
{
    return number(oneIn) == 0;
}

template <typename Item>
Item RandomWalk::one(const QList<Item> &items)
{
    return items.at(number(static_cast<int>(items.size())));
}

void RandomWalk::note(const QString &text)
{
    m_way.append(text);
    if (qEnvironmentVariableIsSet("KAVLOR_WALK_SEED"))
        qInfo().noquote() << text; // at once, should the program not survive it
}

int RandomWalk::actionCount() const
{
    return m_actions;
}

QStringList RandomWalk::way() const
{
    return m_way;
}

int RandomWalk::requestCount(const QByteArray &operation) const
{
    return m_service ? m_service->count(operation) : 0;
}

QString RandomWalk::run()
{
    testTimeConstants().startUpMinimum = 0;
    testTimeConstants().exitDelay = 0;
    testTimeConstants().categoryDelay = 0;
    testTimeConstants().rotationDelay = 0;
    testTimeConstants().formTimeout = never;
    testTimeConstants().uploadTimeout = never;
    testTimeConstants().connectionWait = 4 * shortTime;
    testTimeConstants().stateAnswerWait = shortTime;
    // A new process has no thumbnails. The cache is not emptied for them: the toolkit keeps the
    // names of whatever was in it.
    for (const QByteArray &id : MoodyService::auctions())
        QPixmapCache::remove(QStringLiteral("auctionid::") + QString::fromLatin1(id));
    const int filesBefore = temporaryFileCount();

    qApp->installEventFilter(this);
    m_window = std::make_unique<RootWindow>();
    m_service = std::make_unique<MoodyService>();
    m_service->holdReplies(true);
    m_goal = one(ways());
    if (chance(2))
        m_window->remember(QStringLiteral("m1"), QStringLiteral("secret"));
    start();
    for (int i = 0; i < stepCount && m_complaint.isEmpty(); ++i)
        step();
    if (m_complaint.isEmpty())
        m_complaint = finish();
    m_window->end();
    m_service->dropConnections();
    if (!waitUntil([=] { return temporaryFileCount() == filesBefore; }))
        m_complaint += QStringLiteral("a temporary file is left ");
    qApp->removeEventFilter(this);
    return m_complaint;
}

void RandomWalk::start()
{
    CKavlorCategoryStore::load(QString()); // a new process has none
    m_window->start();
    m_window->root()->activateWindow();
    settle();
}

// Counts how often the button of an operation is pressed: by the signal that comes right before
// clicked(), since the button may be gone by the time that all have heard of the click.
bool RandomWalk::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Polish) {
        if (auto *button = qobject_cast<QAbstractButton *>(watched)) {
            if (const Confirmation *confirmation = confirmationOf(button)) {
                connect(button, &QAbstractButton::released, this,
                        [=] { ++m_confirmed[confirmation->operation]; });
            }
        }
    }
    return false;
}

void RandomWalk::step()
{
    const QList<Action> possible = actions();
    int sum = 0;
    for (const Action &action : possible)
        sum += action.weight;
    int left = number(sum);
    for (const Action &action : possible) {
        left -= action.weight;
        if (left < 0) {
            perform(action);
            break;
        }
    }
    if (!m_window->root()->isVisible()) {
        note(QStringLiteral("start again"));
        m_window->end();
        start();
    }
    m_complaint = complaint();
}

QList<RandomWalk::Action> RandomWalk::actions() const
{
    using W = RandomWalk;
    QList<Action> all{
        {60, "tap a control", &W::tapControl},
        {8, "tap anywhere", &W::tapAnywhere},
        {6, "tap twice", &W::tapTwice},
        {18, "press a key", &W::pressKey},
        {10, "type", &W::typeSomething},
        {14, "complete the form", &W::completeForm},
        {6, "drag", &W::drag},
        {3, "resize", &W::resize},
        {1, "close the window", &W::closeWindow},
        {1, "open media", &W::openMedia},
        {1, "break connections", &W::breakConnections},
        {2, "lose patience", &W::losePatience},
        {m_isListening ? 1 : 60, "the service goes or comes", &W::toggleService},
        {m_isOnline ? 1 : 30, "the network goes or comes", &W::toggleNetwork},
    };
    if (m_service->heldCount() > 0)
        all.append({isStarting() ? 600 : 150, "answer", &W::answer});
    else if (m_service->connectionCount() > 0) // nothing comes of that any more
        all.append({5, "break connections", &W::breakConnections});
    return all;
}

bool RandomWalk::isStarting() const
{
    return m_window->find("progressMessage") != nullptr;
}

void RandomWalk::perform(const Action &action)
{
    ++m_actions;
    note(QLatin1String(action.name));
    if (!QGuiApplication::focusWindow())
        m_window->root()->activateWindow(); // as a window manager does
    m_window->dialogs.beforeNextAnswer([this] { duringDialog(); });
    QTimer inTheMidst; // in a wait for the network, for one
    inTheMidst.setSingleShot(true);
    connect(&inTheMidst, &QTimer::timeout, this, &RandomWalk::meanwhile);
    if (!m_isOnline || chance(8))
        inTheMidst.start(shortTime);
    m_isActing = true;
    (this->*action.act)();
    m_isActing = false;
    inTheMidst.stop();
    settle();
}

bool RandomWalk::isSettled() const
{
    return m_service->isQuiet()
        && (m_isDialogOpen || transferCount(m_window->root()) == m_service->connectionCount());
}

// Until what was done has had its effect: the service has what was sent, and the client what was
// answered.
void RandomWalk::settle()
{
    QElapsedTimer timer;
    timer.start();
    QTimer again; // not every change comes with an event
    again.start(1);
    int settled = 0;
    while (settled < 2 && !timer.hasExpired(longestSettling)) {
        QCoreApplication::processEvents(settled ? QEventLoop::AllEvents
                                                : QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        settled = isSettled() ? settled + 1 : 0;
    }
    if (settled < 2)
        note(QStringLiteral("(not settled)"));
    if (m_isImpatient) {
        m_isImpatient = false;
        loseTime(shortTime);
        testTimeConstants().formTimeout = never;
        testTimeConstants().uploadTimeout = never;
    }
}

// A timer that is as long as others that began before is over after them.
void RandomWalk::loseTime(int milliseconds)
{
    bool isOver = false;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, this, [&] { isOver = true; });
    while (!isOver)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// The member has had enough, and everything works again: he finds home, where a request is
// answered.
QString RandomWalk::finish()
{
    note(QStringLiteral("go home"));
    m_service->listenAgain();
    m_window->connector.reportState(OnlineConnector::Connected);
    m_service->dropConnections();
    m_service->holdReplies(false);

    const auto isThere = [this](const char *name) { return m_window->find(name) != nullptr; };
    const bool home = waitUntil([&] {
        if (!m_window->root()->isVisible()) {
            m_window->end();
            start();
        }
        if (isThere("buttonUpload") || isThere("createAccountButton"))
            return true;
        if (!m_window->click("backNavigationButton"))
            m_window->click("cancelNavigationButton");
        return false;
    });
    if (!home)
        return QStringLiteral("there is no way home");
    const bool isMember = isThere("buttonUpload");
    if (isMember) {
        m_window->click("buttonMyKavlor");
    } else {
        m_window->click("loginButton");
        m_window->type("lineUsername", QStringLiteral("m1"));
        m_window->type("linePassword", QStringLiteral("secret"));
        m_window->click("loginButton");
    }
    if (!waitUntil([&] { return isThere(isMember ? "myAuctionsTable" : "buttonUpload"); }))
        return QStringLiteral("the next request does not work");
    return complaint();
}

QString RandomWalk::complaint() const
{
    for (const Confirmation &confirmation : confirmations) {
        const int sent = m_service->count(confirmation.operation);
        const int confirmed = m_confirmed.value(confirmation.operation);
        if (sent > confirmed) {
            return QStringLiteral("%1 was sent %2 times, and confirmed %3 times")
                .arg(QLatin1String(confirmation.operation))
                .arg(sent)
                .arg(confirmed);
        }
    }
    for (const char *area : {"mainView", "navigationBar"}) {
        const auto *parent =
            m_window->root()->findChild<QFrame *>(QLatin1String(area), Qt::FindDirectChildrenOnly);
        int shown = 0;
        const QList<QFrame *> frames =
            parent->findChildren<QFrame *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QFrame *frame : frames)
            shown += frame->isVisible() ? 1 : 0;
        if (shown > 1)
            return QStringLiteral("%1 shows %2 frames").arg(QLatin1String(area)).arg(shown);
    }
    return {};
}

QWidget *RandomWalk::chosenControl()
{
    constexpr int drawn = 6; // times
    const auto weight = [this](const QWidget *control) {
        const QString name = control->objectName();
        return weightOf(name) * (m_goal.contains(name) ? drawn : 1);
    };
    const QList<QWidget *> controls = widgetsOf(m_window->root(), isControl);
    int sum = 0;
    for (const QWidget *control : controls)
        sum += weight(control);
    int left = sum > 0 ? number(sum) : 0;
    for (QWidget *control : controls) {
        left -= weight(control);
        if (left < 0)
            return control;
    }
    return nullptr;
}

// Through the window, as a finger does: whatever lies on top there gets it.
void RandomWalk::tap(QWidget *widget, const QPoint &point)
{
    QWidget *window = widget->window();
    if (window->windowHandle())
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, widget->mapTo(window, point));
}

QPoint RandomWalk::placeIn(QWidget *widget)
{
    if (const auto *tabs = qobject_cast<QTabBar *>(widget))
        return tabs->tabRect(number(tabs->count())).center();
    auto *table = qobject_cast<QTableView *>(widget);
    if (table && table->model() && table->model()->rowCount() > 0) {
        const QAbstractItemModel *model = table->model();
        const QModelIndex cell =
            model->index(number(model->rowCount()), number(model->columnCount()));
        return table->viewport()->mapTo(table, table->visualRect(cell).center());
    }
    if (const auto *label = qobject_cast<QLabel *>(widget))
        return {label->width() * 3 / 4, label->height() / 2};
    return widget->rect().center();
}

void RandomWalk::tapControl()
{
    QWidget *control = chosenControl();
    if (!control)
        return;
    note(QStringLiteral("  ") + control->objectName());
    if (control->objectName() == QLatin1String("photoClicker")) {
        static const QList<QString> names{QStringLiteral("/photo.png"),
                                          QStringLiteral("/photo.png"), QStringLiteral("/clip.mp4"),
                                          QStringLiteral("/broken.gif")};
        m_window->dialogs.chooseFile(chance(4) ? QString() : m_folder + one(names));
    }
    tap(control, placeIn(control));
}

void RandomWalk::tapAnywhere()
{
    const QSize size = m_window->root()->size();
    tap(m_window->root(), {number(size.width()), number(size.height())});
}

void RandomWalk::tapTwice()
{
    QWidget *control = chosenControl();
    if (!control || control->objectName() == QLatin1String("photoClicker"))
        return;
    note(QStringLiteral("  ") + control->objectName());
    QWidget *window = control->window();
    const QPoint point = control->mapTo(window, placeIn(control));
    QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {}, point);
}

void RandomWalk::pressKey()
{
    static const QList<Qt::Key> keys{
        Qt::Key_Tab,    Qt::Key_Tab,    Qt::Key_Tab,       Qt::Key_Backtab, Qt::Key_Return,
        Qt::Key_Return, Qt::Key_Enter,  Qt::Key_Escape,    Qt::Key_Back,    Qt::Key_Space,
        Qt::Key_Up,     Qt::Key_Down,   Qt::Key_Left,      Qt::Key_Right,   Qt::Key_PageDown,
        Qt::Key_Home,   Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_A};
    const int times = 1 + number(3);
    for (int i = 0; i < times; ++i) {
        const Qt::Key key = one(keys);
        note(QStringLiteral("  ") + QKeySequence(key).toString() + QLatin1String(" on ")
             + Keyboard::focus());
        Keyboard::press(key);
    }
}

void RandomWalk::typeInto(QWidget *field, const QString &text)
{
    note(QStringLiteral("  \"%1\" into %2").arg(text, field->objectName()));
    const QPointer<QWidget> guard(field);
    tap(field, placeIn(field));
    Keyboard::press(Qt::Key_A, Qt::ControlModifier);
    Keyboard::press(Qt::Key_Delete);
    for (const QChar letter : text) {
        if (QWindow *window = QGuiApplication::focusWindow(); window && guard)
            QTest::sendKeyEvent(QTest::Click, window, Qt::Key_unknown, QString(letter), {});
    }
}

QString RandomWalk::textFor(const QWidget *field)
{
    return chance(3) ? one(oddTexts()) : rightText(field->objectName());
}

void RandomWalk::typeSomething()
{
    const QList<QWidget *> fields = widgetsOf(m_window->root(), isField);
    if (!fields.isEmpty()) {
        QWidget *field = one(fields);
        typeInto(field, textFor(field));
    }
}

void RandomWalk::completeForm()
{
    // Which may go while the form is filled in.
    QList<QPointer<QWidget>> fields;
    for (QWidget *field : widgetsOf(m_window->root(), isField))
        fields.append(field);
    for (const QPointer<QWidget> &field : std::as_const(fields)) {
        if (field && field->isVisible())
            typeInto(field, rightText(field->objectName()));
    }
    if (!m_window->root()->isVisible())
        return;
    if (auto *tabs = m_window->find<QTabWidget>("tabWidget")) {
        tap(tabs->tabBar(), tabs->tabBar()->tabRect(tabs->count() - 1).center());
        auto *terms = m_window->find<QCheckBox>("checkTerms");
        if (terms && !terms->isChecked())
            tap(terms, placeIn(terms));
    }
}

void RandomWalk::drag()
{
    const QList<QWidget *> areas = widgetsOf(m_window->root(), [](const QWidget *widget) {
        return widget->isVisible() && qobject_cast<const QAbstractScrollArea *>(widget);
    });
    if (areas.isEmpty())
        return;
    const QPointer<QWidget> target = qobject_cast<QAbstractScrollArea *>(one(areas))->viewport();
    // Where a finger can be: the window may reach beyond the screen.
    const QRect reachable =
        QRect(target->mapToGlobal(QPoint()), target->size()) & target->screen()->geometry();
    if (reachable.isEmpty())
        return;
    QPoint point = target->mapFromGlobal(reachable.topLeft())
        + QPoint(number(reachable.width()), number(reachable.height()));
    const QPoint way(number(80) - 40, number(160) - 80);
    QTest::touchEvent(target, touchScreen()).press(0, point, target);
    constexpr int pieces = 4;
    for (int i = 0; i < pieces && target; ++i) {
        point += way / pieces;
        QTest::touchEvent(target, touchScreen()).move(0, point, target);
    }
    if (target)
        QTest::touchEvent(target, touchScreen()).release(0, point, target);
}

void RandomWalk::resize()
{
    // No larger than the screen of the offscreen platform.
    static const QList<QSize> sizes{QSize(800, 424), QSize(800, 480), QSize(800, 600),
                                    QSize(800, 800)};
    m_window->root()->resize(one(sizes));
}

void RandomWalk::closeWindow()
{
    m_window->root()->close();
}

void RandomWalk::answer()
{
    if (m_service->heldCount() == 0)
        return;
    const int which = number(m_service->heldCount());
    const MoodyService::Fault *fault = chance(isStarting() ? 30 : 6) ? one(faults()) : nullptr;
    note(QStringLiteral("  ") + QLatin1String(fault ? fault->name : QByteArray("well")));
    m_service->answerHeld(which, fault);
}

void RandomWalk::breakConnections()
{
    m_service->dropConnections();
}

void RandomWalk::toggleService()
{
    m_isListening = !m_isListening;
    if (m_isListening)
        m_service->listenAgain();
    else
        m_service->stopListening();
}

void RandomWalk::toggleNetwork()
{
    m_isOnline = !m_isOnline;
    m_window->connector.reportState(m_isOnline ? OnlineConnector::Connected
                                               : OnlineConnector::Disconnected);
}

// What is sent next times out.
void RandomWalk::losePatience()
{
    testTimeConstants().formTimeout = shortTime;
    testTimeConstants().uploadTimeout = shortTime;
    m_isImpatient = true;
    tapControl();
}

void RandomWalk::openMedia()
{
    m_window->root()->openMedia(m_folder + QStringLiteral("/photo.png"));
}

// A message box or the file dialog is there, and will be answered after this.
void RandomWalk::duringDialog()
{
    if (!m_window->root())
        return;            // it is only being made
    m_isDialogOpen = true; // a transfer whose end has opened it is not deleted yet
    QWidget *dialog = QApplication::activeModalWidget();
    const int choice = number(8);
    note(QStringLiteral("  dialog %1: %2")
             .arg(dialog ? dialog->windowTitle() : QString())
             .arg(choice));
    switch (choice) {
    case 0:
        answer();
        settle();
        break;
    case 1:
        breakConnections();
        settle();
        break;
    case 2:
        Keyboard::press(Qt::Key_Escape);
        break;
    case 3:
        m_window->root()->close(); // as when the session ends
        break;
    case 4:
        tapAnywhere(); // which it keeps out
        break;
    case 5:
        if (dialog) {
            const QList<QWidget *> buttons = widgetsOf(dialog, [](const QWidget *widget) {
                return isControl(widget) && qobject_cast<const QAbstractButton *>(widget);
            });
            if (!buttons.isEmpty() && qobject_cast<QMessageBox *>(dialog)) {
                QWidget *button = one(buttons);
                tap(button, placeIn(button));
            }
        }
        break;
    default:
        break; // only answered
    }
    m_isDialogOpen = false;
}

// Something happens while the client is still busy with what was done.
void RandomWalk::meanwhile()
{
    if (!m_isActing || qobject_cast<QFileDialog *>(QApplication::activeModalWidget()))
        return;
    const int choice = number(6);
    note(QStringLiteral("  meanwhile: %1").arg(choice));
    switch (choice) {
    case 0:
        toggleNetwork();
        break;
    case 1:
        closeWindow();
        break;
    case 2:
        answer();
        break;
    case 3:
        tapControl();
        break;
    case 4:
        pressKey();
        break;
    default:
        resize();
    }
}
