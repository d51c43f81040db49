// SPDX-License-Identifier: MIT

#include "framecreateaccount.h"

#include "announce.h"
#include "fingerscroll.h"
#include "framewelcomekavlor.h"
#include "httptolvex.h"
#include "kavloruser.h"
#include "leaveframe.h"
#include "messagebox.h"
#include "offlinedocument.h"
#include "plaintooltip.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "startfocus.h"
#include "timeconstants.h"
#include "ui_framecreateaccount.h"

#include <QPlainTextDocumentLayout>
#include <QRegularExpression>

namespace {

constexpr int whileEditing = 0; // levels of CKavlorUser::validate()
constexpr int beforeSending = 3;

// The terms are written for print: what they set in 10 points is too small to read here.
QString withReadableSize(QString html)
{
    static const QRegularExpression printSize(QStringLiteral("'\\s*font-size\\s*:\\s*10.0pt\\s*'"),
                                              QRegularExpression::UseUnicodePropertiesOption);
    return html.replace(printSize, QStringLiteral("'font-size:22.0pt'"));
}

QString withSizesTimes(qreal scale, const QString &html)
{
    static const QRegularExpression size(QStringLiteral("font-size\\s*:\\s*[0-9.]+p[tx]"));
    QString sized;
    qsizetype done = 0;
    for (auto each = size.globalMatch(html); each.hasNext();) {
        const QRegularExpressionMatch found = each.next();
        sized += QStringView(html).mid(done, found.capturedStart() - done);
        sized += RoomScale::styleSheet(found.captured(), scale);
        done = found.capturedEnd();
    }
    return sized + html.mid(done);
}

} // namespace

FrameCreateAccount::FrameCreateAccount(QSettings *settings, CKavlorUser *user, QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::FrameCreateAccount>())
    , m_request(new CHttpTolvex(this))
    , m_user(user ? user : new CKavlorUser(settings, this, false, CKavlorUser::defaultFields()))
    , m_settings(settings)
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    auto *scale = new RoomScale(this, QSize(1040, 640));
    new StartFocus(this, m_ui->lineUsername);
    setUpTerms();
    new PlainToolTip(m_ui->tabWidget);
    m_ui->errorLabelText->clear();

    for (QLineEdit *line :
         {m_ui->lineUsername, m_ui->linePassword, m_ui->lineAgain, m_ui->lineEmailaddress}) {
        connect(line, &QLineEdit::textChanged, this, &FrameCreateAccount::UserChanged);
        connect(line, &QLineEdit::returnPressed, m_ui->submitButton, &QPushButton::click);
    }
    connect(m_ui->checkTerms, &QCheckBox::clicked, this, &FrameCreateAccount::TermsClicked);
    connect(m_ui->submitButton, &QPushButton::clicked, this, &FrameCreateAccount::Submit);
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &FrameCreateAccount::ResponseReceived);

    if (const RootViewController *root = RootViewController::of(this))
        m_termsText = root->termsText();
    if (m_termsText.isEmpty())
        fetchTerms();
    scale->apply([this](qreal) {
        if (!m_termsText.isEmpty())
            showTerms(); // in which sizes are set that no style sheet reaches
    });
}

FrameCreateAccount::~FrameCreateAccount() = default;

void FrameCreateAccount::retranslate()
{
    const bool toldFault = !m_ui->errorLabelText->text().isEmpty();
    const bool toldMissing = !m_ui->tabWidget->toolTip().isEmpty();
    m_ui->retranslateUi(this);
    if (!m_termsText.isEmpty())
        showTerms();
    if (toldMissing)
        UserChanged();
    if (toldFault)
        showFault(faultBeforeSending());
    RootViewController *root = RootViewController::of(this);
    if (root && !isHidden())
        root->setNavigationTextAndIcon(FrameWelcomeKavlor::tr("Create account "), QString(), true);
}

void FrameCreateAccount::setUpTerms()
{
    auto *document = new OfflineDocument(m_ui->termsEdit);
    document->setDocumentLayout(new QPlainTextDocumentLayout(document));
    document->setPlainText(m_ui->termsEdit->toPlainText());
    m_ui->termsEdit->setDocument(document);
    new FingerScroll(m_ui->termsEdit, FingerScroll::Text);
}

void FrameCreateAccount::fetchTerms()
{
    m_requestKind = TermsRequested;
    m_request->getServiceTerms();
}

void FrameCreateAccount::showTerms()
{
    m_ui->termsEdit->clear();
    if (OfflineDocument::isModest(m_termsText))
        m_ui->termsEdit->appendHtml(
            withSizesTimes(RoomScale::of(this), withReadableSize(m_termsText)));
    else
        m_ui->termsEdit->setPlainText(OfflineDocument::withShortLines(m_termsText));
    QTextCursor cursor = m_ui->termsEdit->textCursor();
    cursor.movePosition(QTextCursor::Start);
    m_ui->termsEdit->setTextCursor(cursor);
    m_ui->termsEdit->ensureCursorVisible();
    m_ui->checkTerms->setEnabled(true);
}

void FrameCreateAccount::takeFormOver()
{
    // Made anew, so that the number of whoever was signed in before is forgotten.
    CKavlorUser::Fields fields;
    for (int row = 0; row < CKavlorUser::fieldCount; ++row)
        fields[row] = m_user->field(static_cast<CKavlorUser::Field>(row));
    fields[CKavlorUser::Username] = m_ui->lineUsername->text();
    fields[CKavlorUser::Password] = m_ui->linePassword->text();
    fields[CKavlorUser::EmailAddress] = m_ui->lineEmailaddress->text();
    *m_user = CKavlorUser(m_settings, nullptr, true, fields);
}

// The message of the first fault; empty when there is none.
QString FrameCreateAccount::validate(int level)
{
    QString message;
    m_formValid = m_user->validate(m_ui->lineAgain->text(), level,
                                   m_user->field(CKavlorUser::TwitterPassword), &message, false);
    return message;
}

// What keeps the form from being sent; empty when nothing does.
QString FrameCreateAccount::faultBeforeSending()
{
    const QString message = validate(beforeSending);
    if (!m_formValid)
        return message;
    return m_ui->checkTerms->isChecked() ? QString() : tr("Accept Terms of Service");
}

void FrameCreateAccount::UserChanged()
{
    takeFormOver();
    const QString message = validate(whileEditing);
    m_ui->errorLabelText->clear();
    if (!m_formValid)
        m_ui->tabWidget->setToolTip(message);
    else if (m_termsAccepted)
        m_ui->tabWidget->setToolTip(tr("All mandatory fields are filled in"));
    else
        m_ui->tabWidget->setToolTip(tr("Accept Terms of Service"));
}

void FrameCreateAccount::TermsClicked()
{
    m_termsAccepted = m_ui->checkTerms->checkState() != Qt::Unchecked;
    UserChanged();
}

void FrameCreateAccount::Submit()
{
    const QString fault = faultBeforeSending();
    if (!fault.isEmpty()) {
        showFault(fault);
        return;
    }

    const QString patience = tr("Please wait, while your account is created on site.");
    m_ui->errorLabelText->clear();
    m_ui->tabWidget->setToolTip(patience);
    m_ui->submitButton->setToolTip(patience);
    m_ui->errorLabelText->setAccessibleName(patience); // while it shows nothing
    announce(m_ui->errorLabelText);
    setProgressRunning(true);
    // Also against a second click, and against changes of the record that is under way.
    setFormEnabled(false);
    m_requestKind = AccountRequested;
    m_request->createAccount(*m_user);
}

void FrameCreateAccount::showFault(const QString &message)
{
    m_ui->tabWidget->setToolTip(message);
    m_ui->errorLabelText->setText(message);
    m_ui->errorLabelText->setVisible(true);
    announce(m_ui->errorLabelText);
}

void FrameCreateAccount::setProgressRunning(bool running)
{
    RootViewController *root = RootViewController::of(this);
    if (!root)
        return;
    const auto step = static_cast<uint>(timeConstants().progressStep);
    if (running) {
        root->setProgressVisible(true);
        root->progressAnimation(true, step);
    } else {
        root->progressAnimation(false, step);
        root->setProgressVisible(false);
    }
}

void FrameCreateAccount::setFormEnabled(bool enabled)
{
    m_ui->submitButton->setEnabled(enabled);
    m_ui->tabWidget->setEnabled(enabled);
}

void FrameCreateAccount::ResponseReceived(const QString &aResponse, const QString &aError)
{
    switch (m_requestKind) {
    case Ignored:
        break;
    case TermsRequested:
        m_requestKind = NothingRequested;
        if (aError.isEmpty()) {
            m_termsText = aResponse;
            showTerms();
        }
        break;
    case AccountRequested:
        accountAnswered(aResponse, aError);
        break;
    case NothingRequested:
        MessageBox::tell(this, QMessageBox::Information, tr("HTTP"),
                         tr("Unknown response received: %1 %2.").arg(aResponse, aError));
        break;
    }
}

void FrameCreateAccount::accountAnswered(const QString &response, const QString &error)
{
    setProgressRunning(false);
    setFormEnabled(true);
    m_ui->submitButton->setToolTip(QString());
    m_ui->errorLabelText->setAccessibleName(QString());
    m_ui->submitButton->setFocus();
    if (CHttpTolvex::succeeded(response, error))
        accountCreated(response);
    else
        accountRefused(response, error);
}

void FrameCreateAccount::accountCreated(const QString &response)
{
    // The request object may still report a time-out while the next screen is made.
    m_request->disconnect(this);
    m_user->setUserId(response.toInt());
    m_user->save();
    if (RootViewController *root = RootViewController::of(this)) {
        root->ShowLoginOptions(m_user->field(CKavlorUser::Username),
                               m_user->field(CKavlorUser::Password), false);
    }
    leaveFrame(this);
}

void FrameCreateAccount::accountRefused(const QString &response, const QString &error)
{
    m_requestKind = NothingRequested;
    if (!MessageBox::tell(
            this, QMessageBox::NoIcon, QString(),
            tr("kavlor experienced at least one error during record submission:\n%1\n%2")
                .arg(error, response)))
        return;
    m_ui->errorLabelText->setText(error);
    m_ui->tabWidget->setToolTip(response);
}

void FrameCreateAccount::lower()
{
    m_request->disconnect(this);
    if (RootViewController *root = RootViewController::of(this))
        root->ShowLoginOptions(QString(), QString(), false);
    leaveFrame(this);
}
