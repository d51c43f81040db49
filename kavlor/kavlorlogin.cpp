// SPDX-License-Identifier: MIT

#include "kavlorlogin.h"

#include "announce.h"
#include "framewelcomekavlor.h"
#include "httptolvex.h"
#include "leaveframe.h"
#include "messagebox.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "servicehost.h"
#include "startfocus.h"
#include "ui_kavlorlogin.h"

#include <QDesktopServices>
#include <QShortcut>
#include <QUrl>

namespace {

QString passwordPage()
{
    return QStringLiteral("http://") + serviceHost() + QStringLiteral("/index.php?do=forgotpass");
}

} // namespace

KavlorLogin::KavlorLogin(QSettings *settings, QWidget *parent)
    : QFrame(parent)
    , m_request(new CHttpTolvex(this))
    , m_ui(std::make_unique<Ui::KavlorLogin>())
    , m_settings(settings)
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    new RoomScale(this, QSize(960, 480));
    new StartFocus(this, m_ui->lineUsername);
    m_ui->labelError->clear();
    m_ui->loginButton->setEnabled(false);
    sayForgotten();

    connect(m_ui->loginButton, &QPushButton::clicked, this, &KavlorLogin::loginClick);
    for (QLineEdit *line : {m_ui->lineUsername, m_ui->linePassword}) {
        connect(line, &QLineEdit::textChanged, this, &KavlorLogin::UserChanged);
        connect(line, &QLineEdit::returnPressed, m_ui->loginButton, &QPushButton::click);
    }
    // The toolkit opens it only once another press of the tab key has led from the text to its
    // link.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, m_ui->forgotPassword);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [] { QDesktopServices::openUrl(QUrl(passwordPage())); });
    }
}

KavlorLogin::~KavlorLogin() = default;

void KavlorLogin::sayForgotten()
{
    m_ui->forgotPassword->setText(tr("I forgot <a href=\"%1\">password</a>").arg(passwordPage()));
}

void KavlorLogin::retranslate()
{
    m_ui->retranslateUi(this);
    sayForgotten();
    if (!m_ui->labelError->text().isEmpty())
        m_ui->labelError->setText(tr("kavlor authentication failed."));
    RootViewController *root = RootViewController::of(this);
    if (root && !isHidden())
        root->setNavigationTextAndIcon(FrameWelcomeKavlor::tr("Please login to "), QString(), true);
}

void KavlorLogin::UserChanged()
{
    const bool complete =
        !m_ui->lineUsername->text().isEmpty() && !m_ui->linePassword->text().isEmpty();
    if (complete)
        m_ui->labelError->clear();
    m_ui->loginButton->setEnabled(complete);
}

void KavlorLogin::loginClick()
{
    m_ui->labelError->clear();
    setFormEnabled(false);
    // For this answer only: the request object may report more when nothing is waited for.
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &KavlorLogin::ValidationDone, Qt::SingleShotConnection);
    m_request->validateLogin(m_ui->lineUsername->text(), m_ui->linePassword->text());
}

void KavlorLogin::ValidationDone(const QString &aUnoOnSuccess, const QString &aError)
{
    if (aError.isEmpty()) {
        if (aUnoOnSuccess.toInt() == 1) {
            if (RootViewController *root = RootViewController::of(this)) {
                root->ShowLoginOptions(m_ui->lineUsername->text(), m_ui->linePassword->text(),
                                       true);
            }
            leaveFrame(this);
            return;
        }
        m_ui->labelError->setText(tr("kavlor authentication failed."));
        announce(m_ui->labelError);
    } else {
        if (!MessageBox::tell(this, QMessageBox::Information, tr("Authentication failed:"), aError))
            return;
    }
    setFormEnabled(true);
    m_ui->linePassword->setFocus();
    m_ui->linePassword->selectAll(); // to be typed anew
}

void KavlorLogin::lower()
{
    if (RootViewController *root = RootViewController::of(this))
        root->ShowLoginOptions(QString(), QString(), false);
    leaveFrame(this);
}

void KavlorLogin::setFormEnabled(bool enabled)
{
    m_ui->lineUsername->setEnabled(enabled);
    m_ui->linePassword->setEnabled(enabled);
    m_ui->loginButton->setEnabled(enabled);
}
