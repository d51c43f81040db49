#include "uploadmediacontroller.h"

#include "contentcolumn.h"
#include "fingerscroll.h"
#include "httptolvex.h"
#include "kavlorauctioncategorize.h"
#include "kavlorauctionconfirm.h"
#include "kavlorauctioncreate.h"
#include "kavloruser.h"
#include "leaveframe.h"
#include "messagebox.h"
#include "photofile.h"
#include "progressivemodel.h"
#include "rootviewcontroller.h"
#include "timeconstants.h"
#include "ui_uploadmediacontroller.h"
#include "uploadmediaconfirmation.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmapCache>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QTextCursor>
#include <QTransform>

namespace {

constexpr uint progressCells = 3;

QDateTime creationTime(const QString &fileName)
{
    const QFileInfo file(fileName);
    // Not every file system knows when a file was born.
    const QDateTime birth = file.birthTime();
    return birth.isValid() ? birth : file.metadataChangeTime();
}

bool isSideways(const QSize &image, const QSize &preview)
{
    const bool imageIsPortrait = image.height() > image.width();
    const bool imageIsLandscape = image.width() > image.height();
    const bool previewIsPortrait = preview.height() > preview.width();
    const bool previewIsLandscape = preview.width() > preview.height();
    return (imageIsPortrait && previewIsLandscape) || (imageIsLandscape && previewIsPortrait);
}

QPixmap paintVideoIcon(const QSize &size)
{
    QPixmap icon = QPixmap(QStringLiteral(":/videoicon.png"))
                       .scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QPainter painter(&icon);
    painter.setFont(QFont(QStringLiteral("SmallSystemFont"), 16, QFont::Normal));
    painter.setPen(QColor(41, 53, 95));
    const int half = size.height() / 2;
    painter.drawText(QRect(2, half, size.width() - 4, half), Qt::AlignCenter | Qt::TextWordWrap,
                     CUploadMediaController::tr("Your media\nhas been selected.\n"
                                                "Please describe\nand categorize it."));
    return icon;
}

// The text with a capital first letter; unchanged when it has one already.
QString capitalized(const QString &text)
{
    return text.isEmpty() ? text : text.at(0).toUpper() + text.mid(1);
}

// Whether the member, not the program, has moved the focus.
bool isDeliberate(const QFocusEvent *event)
{
    switch (event->reason()) {
    case Qt::MouseFocusReason:
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        return true;
    default:
        return false;
    }
}

// Whether the event, sent to a field, is about to put letters into it or shows that the member is.
bool isTouch(QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
        // A click or a tab into a field need not move its cursor.
        return isDeliberate(static_cast<QFocusEvent *>(event));
    case QEvent::KeyPress: {
        const QString letters = static_cast<QKeyEvent *>(event)->text();
        return !letters.isEmpty() && letters.at(0).isPrint();
    }
    case QEvent::InputMethod: {
        const auto *input = static_cast<QInputMethodEvent *>(event);
        return !input->preeditString().isEmpty() || !input->commitString().isEmpty();
    }
    default:
        return false;
    }
}

// What a member has given for a prompt that nobody had touched: all of a text that took its place,
// or the letters that were put into it.
QString withoutPrompt(const QString &text, const QString &prompt)
{
    const qsizetype shorter = qMin(text.size(), prompt.size());
    qsizetype before = 0;
    while (before < shorter && text.at(before) == prompt.at(before))
        ++before;
    qsizetype after = 0;
    while (after < shorter - before
           && text.at(text.size() - 1 - after) == prompt.at(prompt.size() - 1 - after))
        ++after;
    const QString given = text.mid(before, text.size() - before - after);
    const bool isPromptWhole = before + after == prompt.size();
    return isPromptWhole || given.isEmpty() ? given : text;
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

const char *editedProperty()
{
    return "edited";
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
    new ContentColumn(this, QSize(1280, 720));
    m_chooserText = m_ui->photoClicker->text();
    m_captionPrompt = m_ui->lineCaption->text();
    m_descriptionPrompt = m_ui->textDescription->toPlainText();
    m_ui->descriptionFrame->setEnabled(false);
    m_ui->progressUpload->setProgress(m_progress);
    m_rotationTimer.setSingleShot(true);
    connectForm();
    connectRequest();
    offerDraft();
}

CUploadMediaController::~CUploadMediaController()
{
    if (!m_leaving)
        keepDraft();
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
    connect(m_ui->lineCaption, &QLineEdit::textChanged, this,
            &CUploadMediaController::captionChanged);
    connect(m_ui->textDescription, &QPlainTextEdit::textChanged, this,
            &CUploadMediaController::descriptionChanged);
    connect(&m_rotationTimer, &QTimer::timeout, this, &CUploadMediaController::rotatePreview);
    m_ui->photoLabel->installEventFilter(this);
    new FingerScroll(m_ui->textDescription, FingerScroll::Text);
    m_ui->lineCaption->installEventFilter(this);
    m_ui->textDescription->installEventFilter(this);
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

bool CUploadMediaController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->lineCaption && isTouch(event))
        touchCaption();
    else if (watched == m_ui->textDescription && isTouch(event))
        touchDescription();
    else if (watched == m_ui->photoLabel && event->type() == QEvent::Resize
             && !m_ui->photoClicker->text().isEmpty())
        showPrompt();
    return QFrame::eventFilter(watched, event);
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
    m_ui->photoFrame->setMaximumHeight(m_ui->photoFrame->width() * 3 / 4);
    layout()->activate();
    m_ui->photoFrame->layout()->activate();
}

void CUploadMediaController::showPrompt()
{
    static const QImage background(QStringLiteral(":/UploadBG.png"));
    m_ui->photoLabel->setPixmap(QPixmap::fromImage(background.scaled(
        m_ui->photoLabel->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    m_ui->photoClicker->setText(m_chooserText);
}

void CUploadMediaController::setPercentage(int percentage)
{
    m_progress->setPercentage(percentage);
    m_ui->progressUpload->viewport()->repaint();
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
    m_rotationTimer.stop();
    showPrompt();

    const QPointer<CUploadMediaController> guard(this);
    QString fileName = QFileDialog::getOpenFileName(
        parentWidget(), tr("Choose Your Image Or Video"), startFolder(),
        tr("Images (*.png *.jpg *.bmp *.gif *.jpeg *.pbm *.pgm *.ppm *.tiff *.xbm *.xpm);; "
           "Video (*.mp4 *.3gp)"));
    // The reply to an upload may have come while the dialog was open.
    if (!guard || m_leaving || m_page)
        return;
    if (fileName.isEmpty())
        fileName = m_record.mediaPath;
    if (fileName.isEmpty())
        return;
    changeMedia(fileName, isVideo(fileName));
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
    m_rotationTimer.stop();
    m_ui->takeUpButton->hide();
    if (!m_previewSize.isValid()) {
        settleLayout();
        m_previewSize = m_ui->photoLabel->size();
    }
    if (aFileName.isEmpty())
        return;

    // The same file, chosen again, stays the record that is on auction.
    if (aFileName != m_record.mediaPath)
        m_placed = false;
    m_record.mediaPath = aFileName;
    m_record.captureDate = creationTime(aFileName);
    m_record.category = 0;
    if (aVideo) {
        showVideoIcon();
    } else if (!showImage()) {
        offerDraft();
        inform(tr("Cannot load %1.").arg(aFileName));
        return;
    }
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
    // No prompt is left to be wiped where something was entered.
    m_captionCleared = !m_record.caption.isEmpty();
    m_captionEmpty = m_record.caption.isEmpty();
    m_ui->lineCaption->setProperty(editedProperty(), m_captionCleared);
    m_descriptionCleared = !m_record.description.isEmpty();
    m_descriptionEmpty = m_record.description.isEmpty();
    m_ui->textDescription->setProperty(editedProperty(), m_descriptionCleared);
    showDescription();
    keepDraft();
}

// Of what is in the fields now; the record takes some of it later.
void CUploadMediaController::keepDraft()
{
    if (!m_draft || m_placed || m_step == ChoosingMedia)
        return;
    CAuctionRecord record = m_record;
    record.caption = m_captionEmpty ? QString() : m_ui->lineCaption->text();
    record.description = m_descriptionEmpty ? QString() : m_ui->textDescription->toPlainText();
    m_draft->save(m_user->field(CKavlorUser::Username), record);
}

bool CUploadMediaController::showImage()
{
    const QSize box(m_previewSize.height(), m_previewSize.height());
    const ShownPhoto photo = readPhoto(m_record.mediaPath, box);
    if (photo.image.isNull())
        return false;

    m_ui->photoClicker->setText(QString());
    m_imageTextKeys = photo.image.textKeys();
    m_imageSize = photo.originalSize;
    m_ui->photoLabel->setPixmap(QPixmap::fromImage(photo.image));
    if (isSideways(m_imageSize, m_previewSize))
        m_rotationTimer.start(timeConstants().rotationDelay);
    return true;
}

void CUploadMediaController::showVideoIcon()
{
    m_ui->photoClicker->setText(QString());
    const QString key = QStringLiteral(":/videoicon.png");
    QPixmap icon;
    if (!QPixmapCache::find(key, &icon)) {
        icon = paintVideoIcon(m_previewSize);
        QPixmapCache::insert(key, icon);
    }
    m_ui->photoLabel->setPixmap(icon);
}

void CUploadMediaController::rotatePreview()
{
    static const QTransform clockwise = QTransform().rotate(90);
    m_ui->photoLabel->setPixmap(m_ui->photoLabel->pixmap().transformed(clockwise));
}

void CUploadMediaController::showDescription()
{
    m_ui->DummylineEdit->setFocus();
    m_ui->photoClicker->setEnabled(true);
    setPercentage(1);
    m_ui->descriptionFrame->setEnabled(true);
    m_ui->descriptionFrame->show();
    if (!m_record.caption.isEmpty())
        m_ui->lineCaption->setText(m_record.caption);
    // Not when it is there already: putting it back would count as a touch of the prompt.
    if (!m_record.description.isEmpty()
        && m_record.description != m_ui->textDescription->toPlainText())
        m_ui->textDescription->setPlainText(m_record.description);
    m_step = Describing;
}

// True when this was the first touch and has left nothing in the field. It wipes the prompt; what
// has come into the field with it stays.
bool CUploadMediaController::touchCaption()
{
    QLineEdit *field = m_ui->lineCaption;
    if (m_captionCleared || !m_captionEmpty || field->property(editedProperty()).toBool())
        return false;
    m_captionCleared = true;
    field->setProperty(editedProperty(), true);
    const QString given = withoutPrompt(field->text(), m_captionPrompt);
    {
        // Selected and deleted, since to set a text would also take an input method's first letter.
        const QSignalBlocker quiet(field);
        field->selectAll();
    }
    field->insert(given);
    return given.isEmpty();
}

bool CUploadMediaController::touchDescription()
{
    QPlainTextEdit *field = m_ui->textDescription;
    if (m_descriptionCleared || !m_descriptionEmpty || field->property(editedProperty()).toBool())
        return false;
    m_descriptionCleared = true;
    field->setProperty(editedProperty(), true);
    const QString given = withoutPrompt(field->toPlainText(), m_descriptionPrompt);
    field->clear();
    field->insertPlainText(given);
    return given.isEmpty();
}

// Letters may come without a key and without a move of the cursor, as from a screen reader.
void CUploadMediaController::captionChanged()
{
    if (m_ui->lineCaption->text() != m_captionPrompt)
        touchCaption();
}

void CUploadMediaController::descriptionChanged()
{
    if (m_ui->textDescription->toPlainText() != m_descriptionPrompt)
        touchDescription();
}

void CUploadMediaController::captionPosChanged(int aOld, int aNew)
{
    Q_UNUSED(aOld)
    if (touchCaption())
        return;
    const QString text = m_ui->lineCaption->text();
    if (text.isEmpty())
        return;
    m_captionEmpty = false;
    if (text == capitalized(text))
        return;
    m_ui->lineCaption->setText(capitalized(text));
    m_ui->lineCaption->setCursorPosition(aNew);
}

void CUploadMediaController::descriptionPosChanged()
{
    if (touchDescription())
        return;
    QPlainTextEdit *field = m_ui->textDescription;
    const QString text = field->toPlainText();
    if (text.isEmpty())
        return;
    m_descriptionEmpty = false;
    if (text == capitalized(text))
        return;
    field->clear();
    field->appendPlainText(capitalized(text));
    // The cursor goes behind the first character, wherever the member was typing.
    QTextCursor cursor = field->textCursor();
    cursor.movePosition(QTextCursor::Start);
    cursor.movePosition(QTextCursor::NextCharacter);
    field->setTextCursor(cursor);
    field->ensureCursorVisible();
}

void CUploadMediaController::doneClick()
{
    if (m_captionEmpty) {
        MessageBox::tell(this, QMessageBox::NoIcon, QString(), tr("Please enter a caption."),
                         MessageBox::ByItself);
        return;
    }

    setPercentage(34);
    m_record.caption = m_ui->lineCaption->text();
    // Kept in the record is only the prompt, for showDescription(); a written text stays in its
    // field until categorized() takes it.
    m_record.description = m_descriptionEmpty ? m_ui->textDescription->toPlainText() : QString();
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
    m_record.caption = m_ui->lineCaption->text();
    m_record.description = m_descriptionEmpty ? QString() : m_ui->textDescription->toPlainText();
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
