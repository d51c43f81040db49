// SPDX-License-Identifier: MIT

#include "modifyaccountcontroller.h"

#include "announce.h"
#include "httptolvex.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "startfocus.h"
#include "ui_modifyaccountcontroller.h"

namespace {

constexpr int beforeSending = 3; // level of CKavlorUser::validate()

void setLocked(QLineEdit *line, bool locked)
{
    line->setReadOnly(locked);
    // Locking a line turns its input method off.
    line->setAttribute(Qt::WA_InputMethodEnabled);
}

void focusOn(QLineEdit *line)
{
    line->activateWindow();
    line->setFocus(Qt::OtherFocusReason);
}

// After a lock was clicked: an open line is ready to be typed over, a locked one shows @p text.
void selectOrRestore(QLineEdit *line, bool select, const QString &text)
{
    if (select) {
        line->selectAll();
    } else {
        line->deselect();
        line->setText(text);
    }
}

} // namespace

CModifyAccountController::CModifyAccountController(CKavlorUser *user, QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CModifyAccountController>())
    , m_request(new CHttpTolvex(this))
    , m_user(user)
    , m_edited(new CKavlorUser(*user))
{
    m_edited->setParent(this);
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    new RoomScale(this, QSize(1040, 520));
    new StartFocus(this, m_ui->checkBoxEmail);
    m_ui->errorLabelText->clear();
    m_ui->lineEmail->setText(m_edited->field(CKavlorUser::EmailAddress));
    m_ui->linePassword->setText(m_edited->field(CKavlorUser::Password));
    m_ui->linePaypal->setText(m_edited->field(CKavlorUser::PaypalAddress));
    m_ui->lineConfirm->setText(m_edited->field(CKavlorUser::Password));
    for (QLineEdit *line : {m_ui->lineEmail, m_ui->linePaypal})
        line->setCursorPosition(0); // a long address is shown from its beginning

    connect(m_ui->checkBoxEmail, &QCheckBox::clicked, this,
            &CModifyAccountController::checkboxEmailClicked);
    connect(m_ui->checkBoxPassword, &QCheckBox::clicked, this,
            &CModifyAccountController::checkboxPasswordClicked);
    connect(m_ui->checkBoxPaypal, &QCheckBox::clicked, this,
            &CModifyAccountController::checkboxPaypalClicked);
    connect(m_ui->lineEmail, &QLineEdit::cursorPositionChanged, this,
            &CModifyAccountController::emailPosChanged);
    connect(m_ui->pushButtonDone, &QPushButton::clicked, this,
            &CModifyAccountController::doneClicked);
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &CModifyAccountController::requestDone);

    sayTitle();
    for (QLineEdit *line :
         {m_ui->lineEmail, m_ui->linePassword, m_ui->linePaypal, m_ui->lineConfirm}) {
        setLocked(line, true);
        connect(line, &QLineEdit::returnPressed, m_ui->pushButtonDone, &QPushButton::click);
    }
}

CModifyAccountController::~CModifyAccountController() = default;

void CModifyAccountController::sayTitle()
{
    if (RootViewController *root = RootViewController::of(this))
        root->setNavigationTextAndIcon(tr("My Account"), QStringLiteral(":/MyAccountIcon.png"));
}

// What keeps the record from being sent; empty when nothing does.
QString CModifyAccountController::fault() const
{
    QString message;
    m_edited->validate(m_ui->lineConfirm->text(), beforeSending,
                       m_edited->field(CKavlorUser::TwitterPassword), &message, true);
    return message;
}

void CModifyAccountController::retranslate()
{
    const bool toldFault = !m_ui->errorLabelText->text().isEmpty();
    m_ui->retranslateUi(this);
    sayTitle();
    if (toldFault)
        m_ui->errorLabelText->setText(fault());
}

void CModifyAccountController::lockClicked(const QCheckBox *box, QLineEdit *line,
                                           CKavlorUser::Field field)
{
    const bool locked = box->isChecked();
    setLocked(line, locked);
    selectOrRestore(line, !locked, m_edited->field(field));
    if (!locked)
        focusOn(line);
}

void CModifyAccountController::checkboxEmailClicked()
{
    lockClicked(m_ui->checkBoxEmail, m_ui->lineEmail, CKavlorUser::EmailAddress);
}

void CModifyAccountController::checkboxPaypalClicked()
{
    lockClicked(m_ui->checkBoxPaypal, m_ui->linePaypal, CKavlorUser::PaypalAddress);
}

void CModifyAccountController::checkboxPasswordClicked()
{
    const bool locked = m_ui->checkBoxPassword->isChecked();
    // It is the lock of the e-mail line that decides whether the passwords are selected or put
    // back.
    const bool emailUnlocked = !m_ui->checkBoxEmail->isChecked();
    for (QLineEdit *line : {m_ui->linePassword, m_ui->lineConfirm}) {
        setLocked(line, locked);
        selectOrRestore(line, emailUnlocked, m_edited->field(CKavlorUser::Password));
    }
    if (emailUnlocked)
        focusOn(m_ui->linePassword);
}

void CModifyAccountController::emailPosChanged(int aOld, int aNew)
{
    Q_UNUSED(aOld)
    QString text = m_ui->lineEmail->text();
    if (text.isEmpty() || !text.at(0).isUpper())
        return;
    text[0] = text.at(0).toLower();
    m_ui->lineEmail->setText(text);
    m_ui->lineEmail->setCursorPosition(aNew);
}

void CModifyAccountController::takeFormOver()
{
    *m_edited = *m_user;
    if (!m_ui->lineEmail->isReadOnly())
        m_edited->setField(CKavlorUser::EmailAddress, m_ui->lineEmail->text());
    if (!m_ui->linePassword->isReadOnly())
        m_edited->setField(CKavlorUser::Password, m_ui->linePassword->text());
    if (!m_ui->linePaypal->isReadOnly())
        m_edited->setField(CKavlorUser::PaypalAddress, m_ui->linePaypal->text());
}

void CModifyAccountController::doneClicked()
{
    if (m_requestPending)
        return;
    takeFormOver();
    const QString message = fault();
    if (!message.isEmpty()) {
        m_ui->errorLabelText->setText(message);
        m_ui->errorLabelText->setVisible(true);
        announce(m_ui->errorLabelText);
        return;
    }

    m_ui->errorLabelText->clear();
    m_ui->errorLabelText->setVisible(false);
    m_requestPending = true;
    // Before the request: it may wait for a connection, and this frame may be left meanwhile.
    m_ui->frameControls->setEnabled(false);
    m_ui->pushButtonDone->setEnabled(false);
    m_request->modifyAccount(*m_user, *m_edited);
}

void CModifyAccountController::requestDone(const QString &aResponse, const QString &aError)
{
    // One result is the end of it; the request object may report a time-out after that.
    m_request->disconnect(this);
    m_requestPending = false;
    const int userId = aError.isEmpty() ? aResponse.toInt() : 0;
    if (userId == 0) {
        emit CancelOnError();
        return;
    }
    *m_user = *m_edited;
    m_user->setUserId(userId);
    m_user->save();
    emit Done();
}
