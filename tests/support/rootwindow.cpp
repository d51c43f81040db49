// SPDX-License-Identifier: MIT

#include "rootwindow.h"

#include "framewelcomekavlor.h"
#include "httptolvex.h"
#include "kavlorcategorystore.h"
#include "kavlorknownuser.h"
#include "waituntil.h"
#include "widgettext.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

// Puts off the deletion of an object that asked for it, for as long as this lives.
class DeletionHold : public QObject
{
public:
    explicit DeletionHold(QObject *object)
        : m_object(object)
    {
        object->installEventFilter(this);
    }
    ~DeletionHold() override
    {
        m_object->removeEventFilter(this);
        if (m_isHeld)
            delete m_object; // the toolkit takes no second wish
    }
    Q_DISABLE_COPY_MOVE(DeletionHold)

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::DeferredDelete)
            return false;
        m_isHeld = true;
        return true;
    }

    QObject *m_object;
    bool m_isHeld = false;
};

} // namespace

RootWindow::RootWindow()
    : settings(folder.filePath(QStringLiteral("kavlor.conf")), QSettings::IniFormat)
{
    // The store is the process's; every test starts like a new one.
    CKavlorCategoryStore::load(QString());
}

RootWindow::~RootWindow() = default;

void RootWindow::remember(const QString &userName, const QString &password)
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = userName;
    fields[CKavlorUser::Password] = password;
    fields[CKavlorUser::EmailAddress] = userName + QStringLiteral("@example.org");
    CKavlorUser(&settings, nullptr, false, fields).save();
}

void RootWindow::scriptStart()
{
    service.expect("GetServiceTerms", "<p>terms</p>");
    service.expect("GetCountryList", "countries");
}

void RootWindow::scriptSignedInStart()
{
    service.expect("ValidateLogin", "1");
    service.expect("GetCategoryList",
                   "categories\n1,Public Figures,0\n4,Sports,0\n10,Football,4\n");
    service.expect("GetNotificationOptions", "options\n1,0,0,1\n");
    scriptStart();
}

void RootWindow::start()
{
    m_root = std::make_unique<RootViewController>(&settings);
}

bool RootWindow::startAtWelcome()
{
    scriptStart();
    start();
    return waitUntil([this] { return shown<FrameWelcomeKavlor>() != nullptr; });
}

bool RootWindow::startAtHome()
{
    remember(QStringLiteral("m1"), QStringLiteral("secret"));
    scriptSignedInStart();
    start();
    return waitUntil([this] { return shown<KavlorKnownUser>() != nullptr; });
}

void RootWindow::end()
{
    m_root.reset();
}

RootViewController *RootWindow::root() const
{
    return m_root.get();
}

QString RootWindow::title() const
{
    return text("labelNavigationTitle");
}

QWidget *RootWindow::find(const char *name) const
{
    const QList<QWidget *> widgets = m_root->findChildren<QWidget *>(QLatin1String(name));
    for (QWidget *widget : widgets) {
        if (widget->isVisible())
            return widget;
    }
    return nullptr;
}

bool RootWindow::click(const char *name)
{
    QWidget *widget = find(name);
    if (!widget || !widget->isEnabled())
        return false;
    QTest::mouseClick(widget, Qt::LeftButton);
    return true;
}

bool RootWindow::clickAsReplyComes(const char *name, QFrame *frame)
{
    const auto *request = frame->findChild<CHttpTolvex *>(QString(), Qt::FindDirectChildrenOnly);
    if (!request)
        return false;
    QSignalSpy results(request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    DeletionHold hold(frame);
    return click(name) && service.release() && results.wait(patience);
}

bool RootWindow::type(const char *name, const QString &text)
{
    QWidget *widget = find(name);
    if (!widget || !widget->isEnabled())
        return false;
    QTest::mouseClick(widget, Qt::LeftButton);
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Delete);
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_unknown, QString(letter), Qt::NoModifier);
    return true;
}

QString RootWindow::text(const char *name) const
{
    const QWidget *widget = find(name);
    return widget ? widgetText(widget) : QString();
}

QImage RootWindow::picture(const char *name) const
{
    const QWidget *widget = find(name);
    if (!widget)
        return {};
    return m_root->grab({widget->mapTo(m_root.get(), QPoint()), widget->size()}).toImage();
}
