// SPDX-License-Identifier: MIT

#include "kavlorsplashwindow.h"

#include "httptolvex.h"
#include "leaveframe.h"
#include "messagebox.h"
#include "progressivemodel.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "timeconstants.h"
#include "ui_kavlorsplashwindow.h"

#include <QTimer>

namespace {

constexpr uint cellCount = 8;
constexpr int initialPosition = 5; // percent

} // namespace

bool CKavlorSplashWindow::s_errorShown = false;

CKavlorSplashWindow::CKavlorSplashWindow(RootViewController *root, const QString &lastUserName,
                                         QSettings *settings, QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CKavlorSplashWindow>())
    , m_progress(new CProgressiveModel(this, cellCount, initialPosition))
    , m_root(root)
    , m_user(settings, this, true, CKavlorUser::defaultFields())
    , m_request(new CHttpTolvex(this))
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    auto *scale = new RoomScale(this);
    scale->setPicture(m_ui->kavlorLogoLabel, QStringLiteral(":/Kavlor Logo Small.png"), 124);
    s_errorShown = false;

    m_ui->splashProgress->setProgress(m_progress);
    scale->apply([this](qreal factor) { m_ui->splashProgress->setScale(factor); });
    m_progress->animate(true, static_cast<uint>(timeConstants().progressStep), 0);

    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &CKavlorSplashWindow::requestDone);
    connect(this, &CKavlorSplashWindow::GoodExit, this, &CKavlorSplashWindow::runOnGoodExit);

    sayProgress();
    m_user.load(lastUserName);
    m_root->show();
}

CKavlorSplashWindow::~CKavlorSplashWindow() = default;

void CKavlorSplashWindow::retranslate()
{
    m_ui->retranslateUi(this);
    sayProgress();
}

void CKavlorSplashWindow::startRequests()
{
    QTimer::singleShot(timeConstants().startUpMinimum, Qt::PreciseTimer, this,
                       &CKavlorSplashWindow::timerExpired);
    if (password().isEmpty()) {
        enter(FetchingTerms, QT_TR_NOOP("requesting terms data"));
        m_request->getServiceTerms();
    } else {
        enter(ValidatingLogin, QT_TR_NOOP("validating login"));
        m_request->validateLogin(userName(), password());
    }
}

void CKavlorSplashWindow::requestDone(const QString &aResponse, const QString &aError)
{
    if (s_errorShown)
        return;
    if (aError.isEmpty())
        advance(aResponse);
    else
        fail(aError);
}

void CKavlorSplashWindow::fail(const QString &error)
{
    s_errorShown = true;
    m_progress->animate(false, static_cast<uint>(timeConstants().progressStep), 0);

    if (!m_root->isVisible()) {
        emit initFails(); // closed by the member, who needs no more telling
        return;
    }
    if (!MessageBox::tell(this, QMessageBox::NoIcon, QString(),
                          tr("kavlor experienced an error contacting a server.\n"
                             "Please check your network settings.\n\n%1")
                              .arg(error)))
        return;
    hide();
    emit initFails();
}

// One reply has come without a transport error: stores it and sends the next request.
void CKavlorSplashWindow::advance(const QString &response)
{
    const bool succeeded = CHttpTolvex::succeeded(response, QString());
    switch (m_state) {
    case ValidatingLogin:
        m_loggedIn = succeeded && response.toInt() != 0;
        if (m_loggedIn) {
            enter(FetchingCategories, QT_TR_NOOP("requesting categories"));
            m_request->getCategoryList(userName(), password());
        } else {
            enter(FetchingTerms, QT_TR_NOOP("requesting terms data"));
            m_request->getServiceTerms();
        }
        break;
    case FetchingCategories:
        if (succeeded)
            m_root->setCategoriesText(response);
        enter(FetchingNotificationOptions, QT_TR_NOOP("requesting user options"));
        m_request->getNotificationOptions(userName(), password());
        break;
    case FetchingNotificationOptions:
        if (succeeded)
            m_root->setNotificationOptionsText(response);
        enter(FetchingTerms, QT_TR_NOOP("data is ok, launching..."));
        m_request->getServiceTerms();
        break;
    case FetchingTerms:
        m_root->setTermsText(response);
        enter(FetchingCountries, QT_TR_NOOP("requesting countries data"));
        m_request->getCountryList();
        break;
    case FetchingCountries:
        if (succeeded)
            m_root->setCountriesText(response);
        enter(Done, QT_TR_NOOP("data is ok, launching..."));
        emit GoodExit();
        break;
    case Done:
        break;
    }
}

void CKavlorSplashWindow::timerExpired()
{
    m_timeIsUp = true;
    emit GoodExit();
}

void CKavlorSplashWindow::runOnGoodExit()
{
    if (!m_timeIsUp || m_state != Done)
        return;
    m_root->ShowLoginOptions(userName(), password(), m_loggedIn);
    leaveFrame(this);
}

void CKavlorSplashWindow::enter(State state, const char *message)
{
    m_state = state;
    m_message = message;
    sayProgress();
}

void CKavlorSplashWindow::sayProgress()
{
    m_ui->version->setText(tr("kavlor %1 beta").arg(QStringLiteral(KAVLOR_VERSION)));
    m_ui->progressMessage->setText(tr(m_message));
}

const QString &CKavlorSplashWindow::userName() const
{
    return m_user.field(CKavlorUser::Username);
}

const QString &CKavlorSplashWindow::password() const
{
    return m_user.field(CKavlorUser::Password);
}
