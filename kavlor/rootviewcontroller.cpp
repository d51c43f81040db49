// SPDX-License-Identifier: MIT

#include "rootviewcontroller.h"

#include "doubletapguard.h"
#include "enterkey.h"
#include "firstpaint.h"
#include "framearea.h"
#include "framecreateaccount.h"
#include "framewelcomekavlor.h"
#include "httptolvex.h"
#include "kavlorcategorystore.h"
#include "kavlorknownuser.h"
#include "kavlormyauctionscontroller.h"
#include "kavlorsettings.h"
#include "kavlorsplashwindow.h"
#include "leaveframe.h"
#include "mediadrop.h"
#include "messagebox.h"
#include "navigationcontrolableframe.h"
#include "navigationframe.h"
#include "retranslation.h"
#include "roomscale.h"
#include "theme.h"
#include "timeconstants.h"
#include "ui_rootviewcontroller.h"
#include "uploadmediacontroller.h"

#include <QPixmapCache>
#include <QPushButton>
#include <QSettings>
#include <QTimer>

#include <utility>

namespace {

QString lastUserKey()
{
    return QStringLiteral("last/USERID");
}

} // namespace

RootViewController::RootViewController(QSettings *settings, QWidget *parent)
    : QFrame(parent)
    , m_user(nullptr, this, false, CKavlorUser::defaultFields())
    , m_notificationOptions(this)
    , m_ui(std::make_unique<Ui::RootViewController>())
    , m_settings(settings)
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] {
        m_ui->retranslateUi(this);
        QPixmapCache::clear(); // painted texts are painted anew
    });
    setStyleSheet(rootStyleSheet());
    m_ui->navigationBar->setStyleSheet(themeStyleSheet());
    m_ui->mainView->setStyleSheet(themeStyleSheet());
    new RoomScale(this);

    new DoubleTapGuard(m_ui->navigationBar);
    new EnterKey(this);
    const auto *drop = new MediaDrop(this);
    // Queued, since a box may open on it, and whoever has dropped the file must not wait for that.
    connect(drop, &MediaDrop::dropped, this, &RootViewController::openMedia, Qt::QueuedConnection);

    connect(this, &RootViewController::WelcomeKavlor, this, &RootViewController::ShowLoginOptions);
    makeRequest();
    connect(this, &RootViewController::UploadComplete, this,
            &RootViewController::showNotifications);

    m_user.setSettings(m_settings);
    const QString lastUser = m_settings->value(lastUserKey(), QString()).toString();
    m_user.load(lastUser);

    m_splash = new CKavlorSplashWindow(this, lastUser, m_settings, m_ui->mainView);
    connect(m_splash, &CKavlorSplashWindow::initFails, this, &RootViewController::exitInitiated);
    // The first request takes the HTTP library with all that is under it, which takes its time.
    connect(new FirstPaint(m_splash), &FirstPaint::painted, m_splash,
            &CKavlorSplashWindow::startRequests);
    m_splash->show();
}

RootViewController::~RootViewController()
{
    m_settings->setValue(lastUserKey(), userName());
    if (!userName().isEmpty())
        m_user.save();

    // The frames go before the records that they look at.
    qDeleteAll(m_ui->mainView->findChildren<QFrame *>(QString(), Qt::FindDirectChildrenOnly));
    delete m_bar;
    delete m_request;
}

RootViewController *RootViewController::of(const QWidget *contentFrame)
{
    const QWidget *area = contentFrame->parentWidget();
    return area ? qobject_cast<RootViewController *>(area->parentWidget()) : nullptr;
}

const QString &RootViewController::termsText() const
{
    return m_termsText;
}

const QString &RootViewController::countriesText() const
{
    return m_countriesText;
}

void RootViewController::setTermsText(const QString &text)
{
    m_termsText = text;
}

void RootViewController::setCountriesText(const QString &text)
{
    m_countriesText = text;
}

void RootViewController::setCategoriesText(const QString &text)
{
    m_categoriesText = text;
}

void RootViewController::setNotificationOptionsText(const QString &text)
{
    m_notificationOptionsText = text;
}

CKavlorUser *RootViewController::user()
{
    return &m_user;
}

const QString &RootViewController::userName() const
{
    return m_user.field(CKavlorUser::Username);
}

const QString &RootViewController::password() const
{
    return m_user.field(CKavlorUser::Password);
}

UploadDraft RootViewController::uploadDraft() const
{
    return UploadDraft(m_settings->fileName());
}

void RootViewController::deleteBar()
{
    // Not deleted at once: it may be its own button that asked for the next screen.
    if (m_bar)
        leaveFrame(m_bar);
    m_bar.clear();
}

// @p say gives the bar the texts that its screen begins with, now and in every other language.
NavigationControlableFrame *RootViewController::makeControlableBar(const SayInBar &say)
{
    auto *bar = new NavigationControlableFrame(m_ui->navigationBar);
    bar->setElementVisible(true, NavigationControlableFrame::All);
    say(bar);
    new Retranslation(bar, [bar, say] {
        bar->retranslate();
        say(bar);
    });
    m_bar = bar;
    return bar;
}

// By value: callers pass references into the record, which is loaded anew here.
// cppcheck-suppress passedByValue
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void RootViewController::ShowLoginOptions(QString userName, QString password, bool aValidated)
{
    deleteBar();
    if (userName.isEmpty() || password.isEmpty())
        showWelcome();
    else
        showHome(userName, password, aValidated);
}

void RootViewController::showWelcome()
{
    m_categoriesText.clear();
    m_notificationOptionsText.clear();
    m_user.setField(CKavlorUser::Username, QString());
    m_user.save();
    forgetMember();

    auto *bar = new NavigationFrame(m_ui->navigationBar, false, false);
    bar->setWelcomeText(tr("welcome to "));
    new Retranslation(bar, [bar] {
        bar->retranslate();
        bar->setWelcomeText(tr("welcome to "));
    });
    m_bar = bar;
    bar->show();

    auto *frame = new FrameWelcomeKavlor(m_settings, m_ui->mainView);
    frame->show();
}

void RootViewController::closeEvent(QCloseEvent *event)
{
    // An account form that is left like this counts as cancelled: the live record has followed it,
    // and is saved at the end.
    const QList<FrameCreateAccount *> forms = m_ui->mainView->findChildren<FrameCreateAccount *>();
    for (FrameCreateAccount *form : forms) {
        if (!form->isHidden())
            form->lower();
    }
    QFrame::closeEvent(event);
}

// Leaves nothing of the former member for the next.
void RootViewController::forgetMember()
{
    m_user = CKavlorUser(nullptr, nullptr, true, CKavlorUser::defaultFields());
    m_notificationOptions = CKavlorNotificationOptions();
    // Whatever is still asked for in the former member's name is not heard any more.
    m_requestState = NothingRequested;
    m_request->disconnect(this);
    m_request->deleteLater();
    makeRequest();
}

void RootViewController::makeRequest()
{
    m_request = new CHttpTolvex(this);
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &RootViewController::requestDone);
}

void RootViewController::showHome(const QString &userName, const QString &password, bool aValidated)
{
    uploadDraft().keepOnlyOf(userName);
    m_user.load(userName);
    if (!aValidated || this->userName() != userName || this->password() != password) {
        m_user.setField(CKavlorUser::Username, userName);
        m_user.setField(CKavlorUser::Password, password);
        m_user.save();
    }

    if (m_notificationOptionsText.isEmpty()) {
        m_requestState = NotificationOptionsRequested;
        m_request->getNotificationOptions(userName, password);
    } else if (!m_notificationOptions.isInitialized()) {
        // Only once: the text dates from the start of the program, and the member may have changed
        // the alerts since.
        m_notificationOptions.parse(m_notificationOptionsText);
    }
    if (CKavlorCategoryStore::isEmpty() && !m_categoriesText.isEmpty())
        CKavlorCategoryStore::load(m_categoriesText);

    NavigationControlableFrame *bar = makeControlableBar([](NavigationControlableFrame *shown) {
        shown->setTitleAndIcon(tr("welcome to kavlor!"), QStringLiteral(":/KavlorMicroLogo.png"));
        shown->setElementText(NavigationControlableFrame::CancelButton, tr("Sign out"));
    });
    bar->setElementVisible(false, NavigationControlableFrame::BackButton);

    auto *frame = new KavlorKnownUser(userName, password, m_ui->mainView);
    connect(bar->cancelButton(), &QPushButton::clicked, frame, &KavlorKnownUser::logoutClick);
    bar->show();
    frame->show();
    // Not at once: who asked for the home screen has not left yet.
    QMetaObject::invokeMethod(this, &RootViewController::openWaitingMedia, Qt::QueuedConnection);
}

void RootViewController::comeForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
}

// The frame of this type that the member sees.
template <typename Frame>
Frame *RootViewController::shownFrame() const
{
    const QList<Frame *> frames =
        m_ui->mainView->findChildren<Frame *>(QString(), Qt::FindDirectChildrenOnly);
    for (Frame *frame : frames) {
        if (!frame->isHidden())
            return frame;
    }
    return nullptr;
}

void RootViewController::openMedia(const QString &mediaPath)
{
    m_waitingMedia = mediaPath;
    openWaitingMedia();
    if (!m_waitingMedia.isEmpty() && qobject_cast<NavigationControlableFrame *>(m_bar)) {
        MessageBox::tell(
            this, QMessageBox::Information, tr("kavlor media"),
            tr("%1 will be opened when you are back on the home screen.").arg(m_waitingMedia));
    }
}

void RootViewController::openWaitingMedia()
{
    if (m_waitingMedia.isEmpty())
        return;
    if (auto *home = shownFrame<KavlorKnownUser>())
        home->uploadClick();
    auto *wizard = shownFrame<CUploadMediaController>();
    if (wizard && wizard->canOpenMedia())
        wizard->openMedia(std::exchange(m_waitingMedia, QString()));
}

void RootViewController::requestDone(const QString &aResponse, const QString &aError)
{
    const bool usable = CHttpTolvex::succeeded(aResponse, aError) && !aResponse.isEmpty();
    if (m_requestState == NotificationOptionsRequested) {
        if (usable)
            m_notificationOptions.parse(aResponse);
        // When the categories are loaded already, the state stays NotificationOptionsRequested.
        if (CKavlorCategoryStore::isEmpty()) {
            m_requestState = CategoriesRequested;
            m_request->getCategoryList(userName(), password());
        }
    } else if (m_requestState == CategoriesRequested) {
        if (usable)
            CKavlorCategoryStore::load(aResponse);
        emit CategoriesDone();
        m_requestState = NothingRequested;
    }
}

void RootViewController::ShowSettingsOptions(const QString &userName, const QString &password,
                                             int aNotificationAtOnce)
{
    deleteBar();
    if (userName.isEmpty() || password.isEmpty()) {
        ShowLoginOptions(QString(), QString(), false);
        return;
    }

    const bool isOpenedOnAlerts = aNotificationAtOnce != 0;
    NavigationControlableFrame *bar =
        makeControlableBar([isOpenedOnAlerts](NavigationControlableFrame *shown) {
            shown->setTitleAndIcon(tr("Settings"), QStringLiteral(":/MySettingsIcon.png"));
            if (isOpenedOnAlerts)
                shown->setElementText(NavigationControlableFrame::BackButton, tr("Home"));
        });
    auto *frame = new CKavlorSettings(&m_user, &m_notificationOptions, m_ui->mainView);
    connect(bar, &NavigationControlableFrame::backClicked, frame, &CKavlorSettings::backClicked);
    bar->setElementVisible(false, NavigationControlableFrame::CancelButton);
    bar->show();
    frame->show();
    if (isOpenedOnAlerts)
        frame->notificationsClicked(false); // gives the bar its own title
}

void RootViewController::showNotifications()
{
    ShowSettingsOptions(userName(), password(), 1);
}

void RootViewController::ShowMyKavlorOptions()
{
    deleteBar();
    NavigationControlableFrame *bar = makeControlableBar([](NavigationControlableFrame *shown) {
        shown->setTitleAndIcon(tr("My kavlor"), QStringLiteral(":/myKavlor.png"));
        shown->setElementText(NavigationControlableFrame::CancelButton, tr("Cancel"));
    });
    bar->setElementVisible(false, NavigationControlableFrame::CancelButton);
    bar->show();

    auto *frame = new CKavlorMyAuctionsController(&m_user, m_ui->mainView);
    connect(bar, &NavigationControlableFrame::backClicked, frame,
            &CKavlorMyAuctionsController::backClicked);
    connect(bar, &NavigationControlableFrame::cancelClicked, frame,
            &CKavlorMyAuctionsController::cancelClicked);
    frame->show();
}

void RootViewController::ShowUploadOptions()
{
    deleteBar();
    NavigationControlableFrame *bar = makeControlableBar([](NavigationControlableFrame *shown) {
        shown->setTitleAndIcon(tr("Upload"), QStringLiteral(":/UploadIcon.png"));
        shown->setElementText(NavigationControlableFrame::CancelButton, tr("Cancel"));
    });
    bar->show();

    auto *frame = new CUploadMediaController(&m_user, m_ui->mainView);
    connect(bar, &NavigationControlableFrame::backClicked, frame,
            &CUploadMediaController::backClicked);
    connect(bar, &NavigationControlableFrame::cancelClicked, frame,
            &CUploadMediaController::cancelClicked);
    connect(frame, &CUploadMediaController::uploadComplete, this,
            &RootViewController::UploadComplete);
    frame->show();
}

bool RootViewController::setNavigationTextAndIcon(const QString &text, const QString &icon,
                                                  bool aShowCancel, QFrame *aLogoutFrame)
{
    if (auto *controlable = qobject_cast<NavigationControlableFrame *>(m_bar)) {
        controlable->setTitleAndIcon(text, icon);
        return true;
    }
    auto *bar = qobject_cast<NavigationFrame *>(m_bar);
    if (!bar)
        return false;

    bar->setWelcomeText(text);
    bar->cancelButton()->setVisible(aShowCancel);
    if (aShowCancel && aLogoutFrame) {
        // By name, since QWidget::lower() is not virtual and the frame's own is meant.
        connect(bar->cancelButton(), SIGNAL(clicked()), aLogoutFrame, SLOT(lower()));
    }
    return true;
}

bool RootViewController::setProgressVisible(bool aVisible)
{
    auto *bar = qobject_cast<NavigationFrame *>(m_bar);
    if (!bar)
        return false;
    bar->setProgressVisible(aVisible);
    return true;
}

bool RootViewController::progressAnimation(bool aStart, uint aHowOften, uint aHowLong)
{
    auto *bar = qobject_cast<NavigationFrame *>(m_bar);
    if (!bar)
        return false;
    bar->progressAnimation(aStart, aHowOften, aHowLong);
    return true;
}

void RootViewController::exitInitiated()
{
    QTimer::singleShot(timeConstants().exitDelay, this, &RootViewController::doExit);
}

void RootViewController::doExit()
{
    delete m_splash;
    m_splash.clear();
    // Closing hides it, too. One that is hidden already would not count as the last window, with
    // which the application ends.
    close();
}
