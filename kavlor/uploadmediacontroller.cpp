// SPDX-License-Identifier: MIT

#include "uploadmediacontroller.h"

#include "announce.h"
#include "fingerscroll.h"
#include "httptolvex.h"
#include "kavlorauctioncategorize.h"
#include "kavlorauctionconfirm.h"
#include "kavlorauctioncreate.h"
#include "kavloruser.h"
#include "leaveframe.h"
#include "mediadialog.h"
#include "messagebox.h"
#include "progressivemodel.h"
#include "promptedfield.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "startfocus.h"
#include "timeconstants.h"
#include "ui_uploadmediacontroller.h"
#include "uploadmediaconfirmation.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace {

constexpr uint progressCells = 3;

QDateTime creationTime(const QString &fileName)
{
    const QFileInfo file(fileName);
    // Not every file system knows when a file was born.
    const QDateTime birth = file.birthTime();
    return birth.isValid() ? birth : file.metadataChangeTime();
}

bool isVideo(const QString &fileName)
{
    return fileName.endsWith(QLatin1String("mp4"));
}

std::optional<UploadDraft> draftOf(const QWidget *contentFrame)
{
    const RootViewController *root = RootViewController::of(contentFrame);
    return root ? std::optional(root->uploadDraft()) : std::nullopt;
}

} // namespace

CUploadMediaController::CUploadMediaController(CKavlorUser *user, QWidget *parent)
    : QFrame(parent)
    , m_user(user)
    , m_request(new CHttpTolvex(this))
    , m_progress(new CProgressiveModel(this, progressCells, 0))
    , m_ui(std::make_unique<Ui::CUploadMediaController>())
    , m_draft(draftOf(this))
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    auto *scale = new RoomScale(this);
    scale->apply([this](qreal factor) {
        // The description fills a page that is higher than the handheld's.
        if (factor > 1)
            m_ui->textDescription->setMaximumHeight(QWIDGETSIZE_MAX);
    });
    new StartFocus(this, m_ui->photoClicker);
    m_chooserText = m_ui->photoClicker->text();
    m_ui->descriptionFrame->setEnabled(false);
    m_ui->progressUpload->setProgress(m_progress);
    scale->apply([this](qreal factor) { m_ui->progressUpload->setScale(factor); });
    connectForm();
    connectRequest();
    offerDraft();
}

CUploadMediaController::~CUploadMediaController()
{
    if (!m_leaving)
        keepDraft();
}

void CUploadMediaController::sayPrompts()
{
    m_caption->setPrompt(tr("Caption"));
    m_description->setPrompt(tr("Description"));
}

void CUploadMediaController::retranslate()
{
    const bool isPrompting = !m_ui->photoClicker->text().isEmpty();
    m_ui->retranslateUi(this);
    m_chooserText = m_ui->photoClicker->text();
    if (!isPrompting)
        m_ui->photoClicker->setText(QString());
    if (m_uploading)
        m_ui->progressUpload->setAccessibleName(tr("Your auction is being uploaded. Please wait."));
    sayPrompts();
    // Where the prompt waits in the record, it would come back from there.
    if (m_description->isEmpty() && !m_record.description.isEmpty())
        m_record.description = m_description->text();
}

void CUploadMediaController::connectForm()
{
    connect(m_ui->photoClicker, &QToolButton::clicked, this,
            &CUploadMediaController::chooseMediaClick);
    connect(this, &CUploadMediaController::pictureIsChosen, this,
            &CUploadMediaController::changeMedia);
    connect(this, &CUploadMediaController::descriptionToBeShown, this,
            &CUploadMediaController::showDescription);
    connect(m_ui->takeUpButton, &QPushButton::clicked, this, &CUploadMediaController::takeUpDraft);
    connect(m_ui->doneButton, &QPushButton::clicked, this, &CUploadMediaController::doneClick);
    connect(this, &CUploadMediaController::uploadCancel, this,
            &CUploadMediaController::cancelClicked);
    connect(m_ui->textDescription, &QPlainTextEdit::cursorPositionChanged, this,
            &CUploadMediaController::descriptionPosChanged);
    connect(m_ui->lineCaption, &QLineEdit::cursorPositionChanged, this,
            &CUploadMediaController::captionPosChanged);
    connect(m_ui->lineCaption, &QLineEdit::selectionChanged, this, [this] { captionPosChanged(); });
    new FingerScroll(m_ui->textDescription, FingerScroll::Text);
    m_caption = new PromptedField(m_ui->lineCaption);
    m_description = new PromptedField(m_ui->textDescription);
    sayPrompts();
}

void CUploadMediaController::connectRequest()
{
    // Queued, since a request that cannot even be sent reports so from within createAuction().
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &CUploadMediaController::requestDone, Qt::QueuedConnection);
}

bool CUploadMediaController::event(QEvent *event)
{
    const bool isHandled = QFrame::event(event);
    if (event->type() == QEvent::LayoutRequest)
        settleLayout();
    return isHandled;
}

void CUploadMediaController::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    settleLayout();
}

// Brings the preview to its final size. It stays wider than tall in a window of any shape, which
// can only be seen to once its width is final: the margins of a large window come late.
void CUploadMediaController::settleLayout()
{
    layout()->activate();
    // The larger the room, the nearer to the square that a photo is shown in.
    const qreal height = 0.75 + (RoomScale::of(this) - 1) / 3;
    m_ui->photoFrame->setMaximumHeight(static_cast<int>(m_ui->photoFrame->width() * height));
    layout()->activate();
    m_ui->photoFrame->layout()->activate();
}

void CUploadMediaController::setPercentage(int percentage)
{
    m_progress->setPercentage(percentage);
    m_ui->progressUpload->viewport()->repaint();
}

// What the moving strip shows, in words.
void CUploadMediaController::sayProgress(const QString &text)
{
    m_ui->progressUpload->setAccessibleName(text);
    announce(m_ui->progressUpload);
}

void CUploadMediaController::showPage(QFrame *page)
{
    // The real fields must not get the focus that the old page gives up.
    m_ui->DummylineEdit->setFocus();
    m_ui->photoClicker->setEnabled(false);
    m_ui->descriptionFrame->hide();
    page->show();
    keepDraft();
    QFrame *previous = m_page;
    m_page = page;
    retire(previous);
}

// Not deleted at once: it may be its own signal that asked for the next page.
void CUploadMediaController::retire(QFrame *page)
{
    if (!page)
        return;
    page->disconnect(this);
    leaveFrame(page);
}

bool CUploadMediaController::inform(const QString &text)
{
    return MessageBox::tell(this, QMessageBox::Information, tr("kavlor media"), text);
}

void CUploadMediaController::chooseMediaClick()
{
    m_ui->photoLabel->showPrompt();
    m_ui->photoClicker->setText(m_chooserText);

    const QPointer<CUploadMediaController> guard(this);
    QString fileName = MediaDialog::choose(
        parentWidget(), tr("Choose Your Image Or Video"), startFolder(),
        tr("Images (*.png *.jpg *.bmp *.gif *.jpeg *.pbm *.pgm *.ppm *.tiff *.xbm *.xpm);; "
           "Video (*.mp4 *.3gp)"));
    // The reply to an upload may have come while the dialog was open.
    if (!guard || !canOpenMedia())
        return;
    if (fileName.isEmpty())
        fileName = m_record.mediaPath;
    if (fileName.isEmpty())
        return;
    changeMedia(fileName, isVideo(fileName));
}

bool CUploadMediaController::canOpenMedia() const
{
    return !m_leaving && !m_page;
}

void CUploadMediaController::openMedia(const QString &path)
{
    // A clip is not looked into, and would pass though it is not there.
    if (QFileInfo(path).isFile())
        emit pictureIsChosen(path, isVideo(path));
    else
        inform(tr("Cannot load %1.").arg(path));
}

QString CUploadMediaController::startFolder() const
{
    if (QFileInfo::exists(m_record.mediaPath))
        return m_record.mediaPath;
    const QString camera = QStringLiteral("/home/user/MyDocs/DCIM");
    if (QFileInfo::exists(camera))
        return camera;
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

void CUploadMediaController::changeMedia(const QString &aFileName, bool aVideo)
{
    m_ui->takeUpButton->hide();
    settleLayout();
    m_ui->photoLabel->keepSize();
    if (aFileName.isEmpty())
        return;

    // The same file, chosen again, stays the record that is on auction.
    if (aFileName != m_record.mediaPath)
        m_placed = false;
    m_record.mediaPath = aFileName;
    m_record.captureDate = creationTime(aFileName);
    m_record.category = 0;
    if (aVideo) {
        m_ui->photoLabel->showClip();
    } else if (!m_ui->photoLabel->showPhoto(aFileName)) {
        offerDraft();
        inform(tr("Cannot load %1.").arg(aFileName));
        return;
    }
    m_ui->photoClicker->setText(QString());
    emit descriptionToBeShown();
    keepDraft();
}

// Shows the button only on the first page, and only while there is something to take up.
void CUploadMediaController::offerDraft()
{
    const bool isOffered =
        m_step == ChoosingMedia && m_draft && m_draft->load(m_user->field(CKavlorUser::Username));
    m_ui->takeUpButton->setVisible(isOffered);
}

void CUploadMediaController::takeUpDraft()
{
    std::optional<CAuctionRecord> left = m_draft->load(m_user->field(CKavlorUser::Username));
    if (!left) {
        m_ui->takeUpButton->hide();
        return;
    }
    if (!QFileInfo::exists(left->mediaPath)) {
        inform(tr("%1 is no longer there.").arg(left->mediaPath));
        return;
    }
    const QPointer<CUploadMediaController> guard(this);
    changeMedia(left->mediaPath, isVideo(left->mediaPath));
    if (!guard || m_step != Describing)
        return; // it could not be loaded

    left->captureDate = m_record.captureDate;
    m_record = *left;
    m_caption->resume(m_record.caption);
    m_description->resume(m_record.description);
    showDescription();
    keepDraft();
}

// The record gets caption and description only when the member goes on to the next page, so both
// are taken from their fields.
void CUploadMediaController::keepDraft()
{
    if (!m_draft || m_placed || m_step == ChoosingMedia)
        return;
    CAuctionRecord record = m_record;
    record.caption = m_caption->entered();
    record.description = m_description->entered();
    m_draft->save(m_user->field(CKavlorUser::Username), record);
}

void CUploadMediaController::showDescription()
{
    m_ui->photoClicker->setEnabled(true);
    // Not to the fields, whose prompts wait for a touch; they come next.
    m_ui->photoClicker->setFocus();
    setPercentage(1);
    m_ui->descriptionFrame->setEnabled(true);
    m_ui->descriptionFrame->show();
    if (!m_record.caption.isEmpty())
        m_ui->lineCaption->setText(m_record.caption);
    // Not when it is there already: putting it back would count as a touch of the prompt.
    if (!m_record.description.isEmpty() && m_record.description != m_description->text())
        m_ui->textDescription->setPlainText(m_record.description);
    m_step = Describing;
}

void CUploadMediaController::captionPosChanged(int aOld, int aNew)
{
    Q_UNUSED(aOld)
    m_caption->cursorMoved(aNew);
}

void CUploadMediaController::descriptionPosChanged()
{
    m_description->cursorMoved();
}

void CUploadMediaController::doneClick()
{
    if (m_caption->isEmpty()) {
        MessageBox::tell(this, QMessageBox::NoIcon, QString(), tr("Please enter a caption."),
                         MessageBox::ByItself);
        return;
    }

    setPercentage(34);
    m_record.caption = m_caption->text();
    // An untouched prompt goes into the record, from where showDescription() puts it back; a
    // written text stays in its field, from where categorized() takes it.
    m_record.description = m_description->isEmpty() ? m_description->text() : QString();
    auto *page = new CKavlorAuctionCategorize(m_ui->pageArea, m_record.category, false);
    connect(page, &CKavlorAuctionCategorize::categoryChosen, this,
            &CUploadMediaController::categorized);
    m_step = Categorizing;
    showPage(page);
}

void CUploadMediaController::categorized(int aCategory)
{
    setPercentage(69);
    m_record.category = aCategory;
    m_record.caption = m_caption->text();
    m_record.description = m_description->entered();
    auto *page = new CKavlorAuctionCreate(static_cast<int>(m_record.reservePrice),
                                          static_cast<int>(m_record.buyItNowPrice),
                                          static_cast<int>(m_record.startPrice), m_ui->pageArea);
    connect(page, &CKavlorAuctionCreate::finalized, this, &CUploadMediaController::pricesSet);
    m_step = Pricing;
    showPage(page);
}

void CUploadMediaController::pricesSet(int aReserve, int aBuyItNow, int aStart)
{
    // The price page removes itself.
    m_step = ChoosingMedia;
    m_page.clear();
    m_record.reservePrice = static_cast<quint32>(aReserve);
    m_record.buyItNowPrice = static_cast<quint32>(aBuyItNow);
    m_record.startPrice = static_cast<quint32>(aStart);

    setPercentage(99);
    auto *page = new CKavlorAuctionConfirm(&m_record, m_ui->pageArea);
    connect(page, &CKavlorAuctionConfirm::CreateAuction, this,
            &CUploadMediaController::createAuction);
    m_step = Confirming;
    showPage(page);
}

void CUploadMediaController::createAuction()
{
    if (!m_request) {
        if (inform(tr("Cannot upload %1.").arg(m_record.mediaPath)))
            cancelClicked();
        return;
    }
    if (m_uploading) {
        // The member went back during the upload; a second one would be a second auction.
        inform(tr("Your auction is already being uploaded as you confirmed it before. "
                  "Please wait for the result."));
        return;
    }
    if (m_placed
        && !MessageBox::ask(this, tr("kavlor media"),
                            tr("You have placed this on auction already. "
                               "Do you want to place it on auction once more?")))
        return;
    m_placed = false;
    keepDraft();
    setPercentage(1);
    m_progress->animate(true, static_cast<uint>(timeConstants().progressStep), 0);
    sayProgress(tr("Your auction is being uploaded. Please wait."));
    m_uploading = true;
    m_request->createAuction(*m_user, m_record);
}

void CUploadMediaController::requestDone(const QString &aResponse, const QString &aError)
{
    m_progress->animate(false, 0, 0);
    setPercentage(100);
    if (!m_uploading)
        return;
    m_uploading = false;
    m_ui->progressUpload->setAccessibleName(tr("Progress of the upload"));

    if (!CHttpTolvex::succeeded(aResponse, aError)) {
        if (MessageBox::tell(this, QMessageBox::NoIcon, QString(),
                             tr("Media uploading failed. Reason: %1%2").arg(aError, aResponse),
                             MessageBox::ByItself))
            emit uploadCancel();
        return;
    }
    m_placed = true;
    if (m_draft)
        m_draft->remove();
    if (!RootViewController::of(this))
        return;
    auto *page = new CUploadMediaConfirmation(m_ui->pageArea);
    connect(page, &CUploadMediaConfirmation::nextClicked, this,
            &CUploadMediaController::showNotificationsOptions);
    showPage(page);
}

void CUploadMediaController::showNotificationsOptions()
{
    if (m_leaving)
        return;
    m_leaving = true;
    emit uploadComplete();
    leaveFrame(this);
}

void CUploadMediaController::cancelClicked()
{
    if (m_leaving)
        return;
    keepDraft();
    m_leaving = true;
    m_uploading = false;
    // Copies, since the root loads the record anew.
    const QString userName = m_user->field(CKavlorUser::Username);
    const QString password = m_user->field(CKavlorUser::Password);
    if (RootViewController *root = RootViewController::of(this))
        root->ShowLoginOptions(userName, password, true);
    leaveFrame(this);
}

void CUploadMediaController::backClicked()
{
    if (m_leaving)
        return;
    QFrame *aside = m_page;
    m_page.clear();
    switch (m_step) {
    case ChoosingMedia:
    case Describing:
        cancelClicked();
        break;
    case Categorizing:
        m_step = Describing;
        showDescription();
        break;
    case Pricing:
        m_step = Categorizing;
        doneClick();
        break;
    case Confirming:
        m_step = Pricing;
        categorized(m_record.category);
        break;
    case Uploading:
        m_step = Confirming;
        m_progress->animate(false, 0, 0);
        m_uploading = false;
        if (m_request)
            m_request->cancelRequest(QString());
        pricesSet(static_cast<int>(m_record.reservePrice), static_cast<int>(m_record.buyItNowPrice),
                  static_cast<int>(m_record.startPrice));
        break;
    }
    retire(aside);
}
