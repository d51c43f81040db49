// SPDX-License-Identifier: MIT

#include "framestage.h"
#include "httptolvex.h"
#include "kavlorauctioncategorize.h"
#include "kavlorauctionconfirm.h"
#include "kavlorauctioncreate.h"
#include "kavlorcategorystore.h"
#include "kavlorknownuser.h"
#include "notificationscontroller.h"
#include "picturecomparison.h"
#include "processmemory.h"
#include "progressivemodel.h"
#include "roomscale.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "uploadmediaconfirmation.h"
#include "uploadmediacontroller.h"

#include <QAccessible>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPixmapCache>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTableView>
#include <QTextBrowser>
#include <QToolButton>
#include <QWindow>

#include <functional>
#include <optional>

using Wizard = CUploadMediaController;

namespace {

constexpr int noCell = -1;

// A member in the wizard of the real root window.
class WizardDriver
{
public:
    // Signs in, makes the window as small as it gets and opens the wizard.
    bool open()
    {
        if (!window.startAtHome())
            return false;
        CKavlorCategoryStore::load(
            QStringLiteral("h\n1,Sports,0\n2,Event,0\n10,Football,1\n11,Tennis,1"));
        window.root()->resize(800, 424);
        if (!window.click("buttonUpload"))
            return false;
        wizard = window.shown<Wizard>();
        return wizard && waitForWindow();
    }

    QString makePhoto(const QString &name, int width, int height)
    {
        QImage photo(width, height, QImage::Format_RGB32);
        photo.fill(Qt::blue);
        QPainter(&photo).fillRect(0, 0, width / 2, height / 2, Qt::red); // its upper left corner
        const QString path = window.folder.filePath(name);
        return photo.save(path) ? path : QString();
    }

    QString makeFile(const QString &name, const QByteArray &content = "no picture")
    {
        QFile file(window.folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
            ? file.fileName()
            : QString();
    }

    // The file dialog opens on the click; an empty path cancels it.
    void choose(const QString &path)
    {
        window.dialogs.chooseFile(path);
        window.click("photoClicker");
        waitForWindow();
    }

    // A dialog took the activation with it; without it no field gets the focus.
    bool waitForWindow()
    {
        window.root()->activateWindow();
        return QTest::qWaitForWindowActive(window.root());
    }

    bool describe(const QString &caption)
    {
        choose(makePhoto(QStringLiteral("photo.png"), 40, 30));
        return type("lineCaption", caption);
    }

    // Clicks into a field and types, without wiping it first.
    bool type(const char *name, const QString &text)
    {
        QWidget *field = window.find(name);
        if (!field || !field->isEnabled())
            return false;
        auto *area = qobject_cast<QAbstractScrollArea *>(field);
        QTest::mouseClick(area ? area->viewport() : field, Qt::LeftButton);
        QTest::keyClicks(field, text);
        return true;
    }

    bool toCategories()
    {
        return describe(QStringLiteral("a caption")) && window.click("doneButton")
            && window.find("categoriesTable");
    }

    bool pick(int row)
    {
        auto *table = window.find<QTableView>("categoriesTable");
        if (!table)
            return false;
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                          table->visualRect(table->model()->index(row, 1)).center());
        return true;
    }

    bool waitForPrices()
    {
        return waitUntil([this] { return window.find("finalizeButton") != nullptr; });
    }

    bool toPrices()
    {
        return toCategories() && pick(0) && pick(0) && waitForPrices();
    }

    bool setPrice(const char *name, const QString &digits)
    {
        auto *field = window.find<QSpinBox>(name);
        if (!field)
            return false;
        field->selectAll();
        QTest::keyClicks(field, digits);
        return true;
    }

    bool toConfirmation()
    {
        return toPrices() && setPrice("startPrice", QStringLiteral("10"))
            && setPrice("reservePrice", QStringLiteral("20"))
            && setPrice("buyItNowPrice", QStringLiteral("30")) && window.click("finalizeButton")
            && window.find("createAuctionButton");
    }

    // Comes home and opens the wizard anew.
    bool reopen()
    {
        if (!waitForHome() || !window.click("buttonUpload"))
            return false;
        wizard = window.shown<Wizard>();
        return wizard && waitForWindow();
    }

    // The end of the program, and its next start.
    bool restart()
    {
        window.end();
        return open();
    }

    bool takeUp()
    {
        return window.click("takeUpButton") && window.find("doneButton")->isEnabled();
    }

    // Up to an upload that the service has received and not yet answered.
    bool toHeldUpload(const QByteArray &reply = "42")
    {
        window.service.expectHeld("CreateAuction", reply);
        return toConfirmation() && window.click("createAuctionButton")
            && waitUntil([this] { return window.service.isHolding(); });
    }

    bool waitForHome()
    {
        return waitUntil([this] { return window.shown<KavlorKnownUser>() != nullptr; })
            && waitUntil([this] { return !wizard; });
    }

    // Which cell of the progress strip is lit.
    int litCell() const
    {
        const auto *strip = wizard->findChild<QTableView *>(QStringLiteral("progressUpload"));
        const QAbstractItemModel *model = strip->model();
        const QImage normal = unlitCell();
        int lit = noCell;
        for (int column = 0; column < model->columnCount(); ++column) {
            if (model->index(0, column).data(Qt::DecorationRole).value<QImage>() != normal)
                lit = column;
        }
        return lit;
    }

    QPixmap preview() const
    {
        return wizard->findChild<QLabel *>(QStringLiteral("photoLabel"))->pixmap();
    }

    QSize previewSize() const
    {
        return wizard->findChild<QLabel *>(QStringLiteral("photoLabel"))->size();
    }

    QString chooserText() const
    {
        return wizard->findChild<QToolButton *>(QStringLiteral("photoClicker"))->text();
    }

    template <typename Widget>
    Widget *part(const char *name) const
    {
        return wizard->findChild<Widget *>(QLatin1String(name));
    }

    QString caption() const
    {
        return part<QLineEdit>("lineCaption")->text();
    }

    QString description() const
    {
        return part<QPlainTextEdit>("textDescription")->toPlainText();
    }

    QString lastBox() const
    {
        return window.dialogs.boxes().isEmpty() ? QString() : window.dialogs.boxes().last().text;
    }

    // The value of a text part of the upload.
    QByteArray sentPart(const QByteArray &name) const
    {
        const QByteArray body = window.service.requests().last().body;
        const QByteArray head = "name=\"" + name + "\"\r\n\r\n";
        const qsizetype start = body.indexOf(head);
        if (start < 0)
            return "no such part";
        return body.mid(start + head.size(), body.indexOf("\r\n--", start) - start - head.size());
    }

    int uploads() const
    {
        return static_cast<int>(window.service.operations().count("CreateAuction"));
    }

    RootWindow window;
    QPointer<Wizard> wizard;

private:
    static QImage unlitCell()
    {
        const CProgressiveModel dark(nullptr, 3, 0);
        return dark.index(0, 0).data(Qt::DecorationRole).value<QImage>();
    }
};

// A grey JPEG of any size. Only its first block is encoded; all others repeat it, in six bits each.
QByteArray greyJpeg(const QSize &size)
{
    QImage block(8, 8, QImage::Format_Grayscale8);
    block.fill(128);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    block.save(&buffer, "JPEG");

    const qsizetype frame = bytes.indexOf("\xff\xc0");
    bytes[frame + 5] = static_cast<char>(size.height() >> 8);
    bytes[frame + 6] = static_cast<char>(size.height() & 0xff);
    bytes[frame + 7] = static_cast<char>(size.width() >> 8);
    bytes[frame + 8] = static_cast<char>(size.width() & 0xff);
    const qsizetype scan = bytes.indexOf("\xff\xda");
    constexpr qsizetype scanHeader = 10;
    const qsizetype blocks =
        ((size.width() + qsizetype(7)) / 8) * ((size.height() + qsizetype(7)) / 8);
    return bytes.left(scan + scanHeader) + QByteArray("\x28\xa2\x8a").repeated((blocks + 3) / 4)
        + "\xff\xd9";
}

QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QByteArray png(const QSize &size, QImage::Format format)
{
    QImage image(size, format);
    image.fill(0);
    return encoded(image, "PNG");
}

// A black bitmap; its pixels are a hole in the file.
bool makeBmp(const QString &path, const QSize &size)
{
    QByteArray header = encoded(QImage(1, 1, QImage::Format_RGB888), "BMP").left(54);
    const auto put = [&header](int position, quint32 value) {
        for (int i = 0; i < 4; ++i)
            header[position + i] = static_cast<char>(value >> (8 * i));
    };
    put(18, static_cast<quint32>(size.width()));
    put(22, static_cast<quint32>(size.height()));
    put(34, 0); // it is not compressed, and its length is plain
    QFile file(path);
    const qint64 line = (static_cast<qint64>(size.width()) * 3 + 3) / 4 * 4;
    return file.open(QIODevice::WriteOnly) && file.write(header) == header.size()
        && file.resize(header.size() + line * size.height());
}

QString cannotLoad(const QString &path)
{
    return QStringLiteral("Cannot load %1.").arg(path);
}

} // namespace

Q_DECLARE_METATYPE(std::function<void(QWidget *)>)

class tst_UploadMediaController : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void formHasTheStatedTextsAndSettings();
    void nothingCanBeDescribedBeforeMediaIsChosen();
    void everythingFitsTheSmallWindow();
    void tabsGoInReadingOrder();

    void aPhotoOpensTheDescription();
    void theDialogStartsInThePicturesFolder();
    void theDialogStartsWhereTheCurrentMediaIs();
    void cancellingTheFirstDialogChangesNothing();
    void cancellingTheDialogWithMediaReloadsTheFile();
    void filesThatCannotBeLoaded_data();
    void filesThatCannotBeLoaded();
    void aFileThatCannotBeLoadedIsTakenAllTheSame();
    void clipMp4ShowsThePaintedVideoIcon();
    void theVideoIconIsKept();
    void theCaptureDateIsWhenTheFileWasMade();
    void aChosenPictureSignalShowsThePicture();

    void photosOfAnyCameraOpen_data();
    void photosOfAnyCameraOpen();
    void aPhotoThatCannotBeReadInPartOpens();
    void absurdPhotosAreRefused_data();
    void absurdPhotosAreRefused();

    void photosStandUprightInAnyWindow_data();
    void photosStandUprightInAnyWindow();
    void aChosenPhotoFollowsTheWindow();
    void theStripGrowsWithTheWindow();
    void thePromptPictureIsWholeInAnyWindow_data();
    void thePromptPictureIsWholeInAnyWindow();
    void previewIsScaledIntoASquareOfThePreviewsHeight_data();
    void previewIsScaledIntoASquareOfThePreviewsHeight();
    void previewIsScaledFast_data();
    void previewIsScaledFast();
    void aPortraitIsTurnedClockwiseAfterTheDelay();
    void aNewChoiceInTheDelayIsNotTurned();
    void leavingInTheDelayIsSafe();

    void theFirstTouchWipesThePrompt_data();
    void theFirstTouchWipesThePrompt();
    void noFirstLetterIsLost_data();
    void noFirstLetterIsLost();
    void thePromptGoesBeforeTheFirstLetterIsComposed();
    void theFirstLetterBecomesACapital();
    void typingInTheMiddleOfTheCaptionKeepsThePlace();
    void aCapitalizedDescriptionPutsTheCursorBehindTheFirstLetter();
    void captionsEndAtTheirMaximumLength();
    void withoutACaptionThePageStays();
    void aCaptionThatWasErasedStillPasses();
    void deletionWithTheCaptionSelectedIsSafe();

    void theStripFollowsTheSteps();
    void aPageTakesThePlaceOfTheDescription();
    void anUntouchedDescriptionIsSentEmpty();
    void backFromMediaChoiceGoesHome();
    void backFromTheDescriptionGoesHome();
    void backFromTheCategoriesRestoresTheDescription();
    void backFromThePricesRestoresTheCategory();
    void backFromTheConfirmationRestoresThePrices();
    void backInTheCategoryDelayDoesNotGoOn();
    void cancelGoesHomeFromEveryStep_data();
    void cancelGoesHomeFromEveryStep();
    void cancelTwiceGoesHomeOnce();
    void doubleClickOnFinalizeDoesNotCreateTheAuction();

    void theUploadCarriesWhatTheMemberEntered();
    void successLeadsToTheAlerts();
    void withoutARootThereIsNoSuccessPage();
    void nextTwiceLeavesOnce();
    void createAuctionTwiceSendsOnce();
    void theStripIsAnimatedDuringTheUpload();
    void failedUploads_data();
    void failedUploads();
    void a404CountsAsASuccessWithoutText();
    void noConnectionFails();
    void anUnreadableFileFails();
    void timeoutFailsOnceThoughTwoResultsCome();
    void withoutARequestObjectNothingCanBeUploaded();
    void cancelDuringTheUploadGoesHome();
    void backDuringTheUploadReopensThePricesAndLetsItRun();
    void aFailureAfterBackGoesHome();
    void aSecondUploadIsNotStartedDuringTheFirst();
    void placingTwiceIsAskedFirst();
    void anotherPhotoIsNotAskedFor();
    void withNothingToTakeUpThereIsNoButton();
    void aFailedUploadIsTakenUp_data();
    void aFailedUploadIsTakenUp();
    void anUploadThatWasLeftIsTakenUp_data();
    void anUploadThatWasLeftIsTakenUp();
    void anUploadThatWasStartedSurvivesTheEnd();
    void nothingIsLeftToTakeUp_data();
    void nothingIsLeftToTakeUp();
    void aPhotoThatIsGoneSaysSo();
    void aPhotoThatIsSpoiltMeanwhileSaysSo();
    void aPhotoThatCannotBeLoadedLeavesTheDraft();
    void anUntouchedFieldOfADraftShowsItsPrompt();
    void aReplyDuringAMessageIsSafe();
    void aFailureDuringTheFileDialogIsSafe();
    void aReplyWithoutAnUploadOnlySetsTheStrip();
    void theEndOfTheProgramDuringTheUploadIsSafe();
};

void tst_UploadMediaController::init()
{
    TestCase::init();
    QPixmapCache::clear();
    testTimeConstants().categoryDelay = 1;
}

void tst_UploadMediaController::formHasTheStatedTextsAndSettings()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QCOMPARE(driver.wizard->windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(driver.window.title(), QStringLiteral("Upload"));
    QVERIFY(driver.window.find("backNavigationButton"));
    QCOMPARE(driver.window.text("cancelNavigationButton"), QStringLiteral("Cancel"));

    const auto *clicker = driver.part<QToolButton>("photoClicker");
    QCOMPARE(clicker->text(), QStringLiteral("\nselect here to\nchoose a photo\n or video"));
    QCOMPARE(clicker->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QVERIFY(clicker->autoRaise());
    QCOMPARE(clicker->property("beEmpty"), QVariant(false));
    QVERIFY(!clicker->accessibleName().isEmpty());

    const auto *caption = driver.part<QLineEdit>("lineCaption");
    QCOMPARE(caption->text(), QStringLiteral("Caption"));
    QCOMPARE(caption->toolTip(), QStringLiteral("Enter a caption"));
    QCOMPARE(caption->maxLength(), 500);
    QCOMPARE(caption->focusPolicy(), Qt::WheelFocus);
    QCOMPARE(caption->property("edited"), QVariant(false));

    const auto *description = driver.part<QPlainTextEdit>("textDescription");
    QCOMPARE(description->toPlainText(), QStringLiteral("Description"));
    QCOMPARE(description->maximumHeight(), 192);
    QCOMPARE(description->property("edited"), QVariant(false));
    QCOMPARE(driver.part<QPushButton>("doneButton")->text(), QStringLiteral("Set Category"));
    QCOMPARE(driver.part<QLineEdit>("DummylineEdit")->size(), QSize(1, 1));
    QCOMPARE(driver.litCell(), noCell);
}

void tst_UploadMediaController::nothingCanBeDescribedBeforeMediaIsChosen()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
    QVERIFY(!driver.type("lineCaption", QStringLiteral("hello")));
    QVERIFY(!driver.window.click("doneButton"));
    QVERIFY(!driver.preview().isNull());
}

void tst_UploadMediaController::everythingFitsTheSmallWindow()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    const auto fits = [&driver](const char *name) {
        const QWidget *widget = driver.window.find(name);
        const QRect place(widget->mapTo(driver.wizard, QPoint()), widget->size());
        return driver.wizard->rect().contains(place)
            && widget->height() >= widget->minimumSizeHint().height();
    };
    QVERIFY(driver.wizard->width() == 800 && driver.wizard->height() <= 344);
    QVERIFY(fits("photoFrame") && fits("progressUpload") && fits("doneButton"));
    QVERIFY(driver.previewSize().width() > driver.previewSize().height());
    QVERIFY(driver.toCategories());
    QVERIFY(fits("unselect") && fits("categorySelected") && fits("categoriesTable"));
    QVERIFY(driver.window.find("categoriesTable")->width() >= 480);
    QVERIFY(driver.window.find("categoriesTable")->height() >= 2 * 87);
    driver.pick(0);
    driver.pick(0);
    QVERIFY(driver.waitForPrices());
    QVERIFY(fits("label_4") && fits("startPrice") && fits("buyItNowPrice"));
    QVERIFY(fits("finalizeButton"));
    QVERIFY(driver.window.click("finalizeButton"));
    QVERIFY(fits("auctionOverallInfo") && fits("createAuctionButton"));
    QVERIFY(driver.window.find("createAuctionButton")->height() >= 70);
    QCOMPARE(driver.window.root()->size(), QSize(800, 424));
}

void tst_UploadMediaController::tabsGoInReadingOrder()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("a")));
    driver.part<QToolButton>("photoClicker")->setFocus();
    for (const char *name : {"lineCaption", "textDescription", "doneButton"}) {
        QTest::keyClick(driver.wizard->focusWidget(), Qt::Key_Tab);
        QCOMPARE(driver.wizard->focusWidget()->objectName(), QLatin1String(name));
    }
    QTest::keyClick(driver.wizard->focusWidget(), Qt::Key_Space);
    QVERIFY(driver.window.find("categoriesTable"));
}

void tst_UploadMediaController::aPhotoOpensTheDescription()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QSignalSpy toBeShown(driver.wizard, &Wizard::descriptionToBeShown);
    driver.choose(driver.makePhoto(QStringLiteral("a.jpg"), 400, 300));
    QCOMPARE(driver.window.dialogs.fileDialogCount(), 1);
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
    QCOMPARE(toBeShown.count(), 1);
    QVERIFY(driver.part<QFrame>("descriptionFrame")->isEnabled());
    QCOMPARE(driver.chooserText(), QString());
    QCOMPARE(driver.litCell(), 0);
    // Nobody has touched the fields yet.
    QCOMPARE(driver.caption(), QStringLiteral("Caption"));
    QCOMPARE(driver.description(), QStringLiteral("Description"));
}

void tst_UploadMediaController::theDialogStartsInThePicturesFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    QVERIFY(QDir().mkpath(pictures));
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(QString());
    QCOMPARE(driver.window.dialogs.lastFolder(), pictures);
}

void tst_UploadMediaController::theDialogStartsWhereTheCurrentMediaIs()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString photo = driver.makePhoto(QStringLiteral("a.png"), 40, 30);
    driver.choose(photo);
    driver.choose(QString());
    QCOMPARE(driver.window.dialogs.lastFolder(), driver.window.folder.path());
    QVERIFY(QFile::remove(photo));
    driver.choose(QString());
    QVERIFY(driver.window.dialogs.lastFolder() != driver.window.folder.path());
    QCOMPARE(driver.lastBox(), cannotLoad(photo));
}

void tst_UploadMediaController::cancellingTheFirstDialogChangesNothing()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString prompt = driver.chooserText();
    driver.choose(QString());
    QCOMPARE(driver.window.dialogs.fileDialogCount(), 1);
    QCOMPARE(driver.chooserText(), prompt);
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
    QCOMPARE(driver.litCell(), noCell);
}

void tst_UploadMediaController::cancellingTheDialogWithMediaReloadsTheFile()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toPrices());
    QVERIFY(driver.window.click("backNavigationButton"));
    QCOMPARE(driver.window.text("categorySelected"), QStringLiteral("Sports>Football"));
    QVERIFY(driver.window.click("backNavigationButton"));

    const QImage before = driver.preview().toImage();
    driver.makePhoto(QStringLiteral("photo.png"), 30, 30); // another picture under that name
    driver.choose(QString());
    QVERIFY(driver.preview().toImage() != before);
    QCOMPARE(driver.preview().width(), driver.preview().height());
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.window.text("categorySelected"), QStringLiteral("None"));
}

void tst_UploadMediaController::filesThatCannotBeLoaded_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a clip named 3gp") << QStringLiteral("clip.3gp");
    QTest::newRow("a clip named MP4") << QStringLiteral("clip.MP4");
    QTest::newRow("a broken photo") << QStringLiteral("photo.jpg");
}

void tst_UploadMediaController::filesThatCannotBeLoaded()
{
    QFETCH(QString, name);
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString prompt = driver.chooserText();
    const QString path = driver.makeFile(name);
    driver.choose(path);
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QCOMPARE(driver.window.dialogs.boxes().at(0).title, QStringLiteral("kavlor media"));
    QCOMPARE(driver.lastBox(), cannotLoad(path));
    QPixmap icon;
    QVERIFY(!QPixmapCache::find(QStringLiteral(":/videoicon.png"), &icon));
    QCOMPARE(driver.chooserText(), prompt);
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
}

void tst_UploadMediaController::aFileThatCannotBeLoadedIsTakenAllTheSame()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toPrices());
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.click("backNavigationButton"));
    driver.choose(driver.makeFile(QStringLiteral("broken.jpg")));
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.window.text("categorySelected"), QStringLiteral("None"));
    driver.pick(1);
    QVERIFY(driver.waitForPrices());
    QVERIFY(driver.window.click("finalizeButton"));
    QVERIFY(driver.window.find<QTextBrowser>("auctionOverallInfo")
                ->toPlainText()
                .contains(QLatin1String("broken.jpg")));
}

void tst_UploadMediaController::clipMp4ShowsThePaintedVideoIcon()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makeFile(QStringLiteral("clip.mp4")));
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
    QCOMPARE(driver.chooserText(), QString());
    QCOMPARE(driver.preview().size(), driver.previewSize());
    QVERIFY(driver.part<QFrame>("descriptionFrame")->isEnabled());

    const QImage bare =
        QPixmap(QStringLiteral(":/videoicon.png"))
            .scaled(driver.previewSize(), Qt::IgnoreAspectRatio, Qt::FastTransformation)
            .toImage();
    const QImage painted = driver.preview().toImage().convertToFormat(bare.format());
    const int half = bare.height() / 2;
    QCOMPARE(painted.copy(0, 0, bare.width(), half), bare.copy(0, 0, bare.width(), half));
    QVERIFY(painted.copy(0, half, bare.width(), half) != bare.copy(0, half, bare.width(), half));
}

void tst_UploadMediaController::theVideoIconIsKept()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makeFile(QStringLiteral("clip.mp4")));
    QPixmap icon;
    QVERIFY(QPixmapCache::find(QStringLiteral(":/videoicon.png"), &icon));
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    driver.choose(driver.makeFile(QStringLiteral("other.mp4")));
    QCOMPARE(driver.preview().cacheKey(), icon.cacheKey());
}

void tst_UploadMediaController::theCaptureDateIsWhenTheFileWasMade()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    const QFileInfo file(driver.window.folder.filePath(QStringLiteral("photo.png")));
    const QDateTime birth = file.birthTime();
    const QDateTime made = birth.isValid() ? birth : file.metadataChangeTime();
    QVERIFY(made.isValid());
    QCOMPARE(driver.sentPart("CaptureDate"),
             made.toString(QStringLiteral("yyyyMMddhhmmss")).toLatin1());
}

void tst_UploadMediaController::aChosenPictureSignalShowsThePicture()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    emit driver.wizard->pictureIsChosen(QString());
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
    emit driver.wizard->pictureIsChosen(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    QVERIFY(driver.part<QFrame>("descriptionFrame")->isEnabled());
    emit driver.wizard->pictureIsChosen(driver.makeFile(QStringLiteral("clip.avi")), true);
    QCOMPARE(driver.preview().size(), driver.previewSize());
}

void tst_UploadMediaController::photosOfAnyCameraOpen_data()
{
    QTest::addColumn<QByteArray>("photo");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<qint64>("enough"); // KiB
    constexpr qint64 inPart = 64LL * 1024;
    // The toolkit's newer releases read a PNG whole, with four bytes a pixel.
    constexpr qint64 whole = inPart + 4LL * 6000 * 5700 / 1024;
    const QSize upright(12288, 16384);
    QTest::newRow("48 megapixels") << greyJpeg({8000, 6000}) << QSize(8000, 6000) << inPart;
    QTest::newRow("60 megapixels") << greyJpeg({9504, 6336}) << QSize(9504, 6336) << inPart;
    QTest::newRow("200 megapixels") << greyJpeg({16384, 12288}) << QSize(16384, 12288) << inPart;
    QTest::newRow("200 megapixels, upright") << greyJpeg(upright) << upright << inPart;
    QTest::newRow("34 megapixels as PNG")
        << png({6000, 5700}, QImage::Format_RGB888) << QSize(6000, 5700) << whole;
}

void tst_UploadMediaController::photosOfAnyCameraOpen()
{
    QFETCH(QByteArray, photo);
    QFETCH(QSize, size);
    QFETCH(qint64, enough);
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString path = driver.makeFile(QStringLiteral("photo.jpg"), photo);
    const int side = driver.previewSize().height();
    QSize shown = size.scaled(side, side, Qt::KeepAspectRatio);
    if (size.height() > size.width())
        shown.transpose(); // it lies on its side in the end

    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    emit driver.wizard->pictureIsChosen(path);
    QCOMPARE(driver.lastBox(), QString());
    QVERIFY(driver.part<QFrame>("descriptionFrame")->isEnabled());
    QTRY_COMPARE(driver.preview().size(), shown);
    const qint64 spent = peakMemory() - before;
    QVERIFY2(spent < enough, QByteArray::number(spent).constData());
}

// More than the toolkit allows at first, and read whole by its reader.
void tst_UploadMediaController::aPhotoThatCannotBeReadInPartOpens()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString path = driver.window.folder.filePath(QStringLiteral("photo.bmp"));
    const QSize size(8224, 8200);
    QVERIFY(makeBmp(path, size));
    const int limit = QImageReader::allocationLimit();
    emit driver.wizard->pictureIsChosen(path);
    QCOMPARE(driver.lastBox(), QString());
    const int side = driver.previewSize().height();
    QCOMPARE(driver.preview().size(), size.scaled(side, side, Qt::KeepAspectRatio));
    QCOMPARE(QImageReader::allocationLimit(), limit);
}

void tst_UploadMediaController::absurdPhotosAreRefused_data()
{
    QTest::addColumn<QByteArray>("photo");
    QTest::newRow("JPEG") << greyJpeg({16384, 16384});
    QTest::newRow("JPEG without its pixels") << greyJpeg({65000, 65000}).left(1000);
    QTest::newRow("PNG") << png({16000, 16001}, QImage::Format_Mono);
    QTest::newRow("PPM") << QByteArray("P6\n20000 20000\n255\n") + QByteArray(1000, 'x');
}

void tst_UploadMediaController::absurdPhotosAreRefused()
{
    QFETCH(QByteArray, photo);
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString path = driver.makeFile(QStringLiteral("photo.jpg"), photo);
    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    driver.choose(path);
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QCOMPARE(driver.window.dialogs.boxes().at(0).title, QStringLiteral("kavlor media"));
    QCOMPARE(driver.lastBox(), cannotLoad(path));
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
    QVERIFY(peakMemory() - before < 64LL * 1024);
}

void tst_UploadMediaController::photosStandUprightInAnyWindow_data()
{
    QTest::addColumn<QSize>("window"); // empty = maximised
    QTest::addColumn<QSize>("photo");
    for (const QSize &window : {QSize(800, 424), QSize(1280, 800), QSize(1920, 1080), QSize(),
                                QSize(3840, 2160), QSize(900, 1600)}) {
        const QByteArray name = window.isValid()
            ? QByteArray::number(window.width()) + "x" + QByteArray::number(window.height())
            : QByteArray("maximised");
        QTest::newRow(name + ", landscape") << window << QSize(400, 300);
        QTest::newRow(name + ", square") << window << QSize(300, 300);
        QTest::newRow(name + ", portrait") << window << QSize(300, 400);
    }
}

void tst_UploadMediaController::photosStandUprightInAnyWindow()
{
    QFETCH(QSize, window);
    QFETCH(QSize, photo);
    WizardDriver driver;
    QVERIFY(driver.open());
    // The window system takes its time; the layout may still have to follow when it has.
    if (!window.isValid()) {
        driver.window.root()->showMaximized();
        QTRY_VERIFY(driver.window.root()->height() > 424);
    } else {
        driver.window.root()->resize(window);
    }
    emit driver.wizard->pictureIsChosen(
        driver.makePhoto(QStringLiteral("a.png"), photo.width(), photo.height()));
    const bool isPortrait = photo.height() > photo.width();
    // A portrait is turned, as it is in the small window; nothing else ever is.
    QTest::qWait(2 * testTimeConstants().rotationDelay);
    const QImage shown = driver.preview().toImage();
    QCOMPARE(shown.height() < shown.width(), photo.height() != photo.width());
    const QPoint red = isPortrait ? QPoint(shown.width() - 2, 1) : QPoint(1, 1);
    QCOMPARE(shown.pixelColor(red), QColor(Qt::red));
    QVERIFY(driver.previewSize().width() > driver.previewSize().height());
    QCOMPARE(QRect(QPoint(), driver.previewSize()).united(shown.rect()).size(),
             driver.previewSize());
}

void tst_UploadMediaController::aChosenPhotoFollowsTheWindow()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.window.root()->resize(1280, 800);
    emit driver.wizard->pictureIsChosen(driver.makePhoto(QStringLiteral("a.png"), 400, 300));
    const QPixmap chosen = driver.preview();
    const QImage before = driver.window.picture("photoLabel");
    for (const QSize &size : {QSize(800, 424), QSize(1920, 1080)}) {
        driver.window.root()->resize(size);
        QCoreApplication::processEvents();
        // The whole photo, of which a quarter is red, in the same part of the preview.
        const QImage label = driver.window.picture("photoLabel");
        const int side = label.height();
        const QRect photo(label.width() / 2 - side / 2, side / 8, side, side * 3 / 4);
        QCOMPARE(label.pixelColor(photo.topLeft() + QPoint(4, 4)), QColor(Qt::red));
        QCOMPARE(label.pixelColor(photo.center() - QPoint(4, 4)), QColor(Qt::red));
        QCOMPARE(label.pixelColor(photo.center() + QPoint(4, 4)), QColor(Qt::blue));
        QCOMPARE(label.pixelColor(photo.bottomRight() - QPoint(4, 4)), QColor(Qt::blue));
        QVERIFY(label.pixelColor(photo.left() - 6, side / 2) != QColor(Qt::red));
        QCOMPARE(driver.preview().toImage(), chosen.toImage());
    }
    driver.window.root()->resize(1280, 800);
    QCoreApplication::processEvents();
    QCOMPARE(pictureDifference(driver.window.picture("photoLabel"), before), QString());
}

void tst_UploadMediaController::theStripGrowsWithTheWindow()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.window.root()->resize(800, 424);
    const auto *strip = driver.wizard->findChild<QTableView *>(QStringLiteral("progressUpload"));
    QTRY_COMPARE(RoomScale::of(driver.wizard), 1);
    const int width = strip->columnWidth(0);
    driver.window.root()->resize(1920, 1080);
    QTRY_VERIFY(RoomScale::of(driver.wizard) > 1.3);
    QCOMPARE(strip->columnWidth(0), qRound(width * RoomScale::of(driver.wizard)));
}

void tst_UploadMediaController::thePromptPictureIsWholeInAnyWindow_data()
{
    QTest::addColumn<QSize>("window");
    QTest::newRow("small") << QSize(800, 424);
    QTest::newRow("1280 x 800") << QSize(1280, 800);
    QTest::newRow("1920 x 1080") << QSize(1920, 1080);
    QTest::newRow("3840 x 2160") << QSize(3840, 2160);
    QTest::newRow("upright") << QSize(900, 1600);
}

void tst_UploadMediaController::thePromptPictureIsWholeInAnyWindow()
{
    QFETCH(QSize, window);
    const QSize background = QImage(QStringLiteral(":/UploadBG.png")).size();
    WizardDriver driver;
    QVERIFY(driver.open());
    for (const QSize &size : {window, QSize(800, 424)}) {
        driver.window.root()->resize(size);
        QTRY_COMPARE(driver.wizard->width(), size.width());
        QCoreApplication::processEvents(); // layouts follow
        QCOMPARE(driver.preview().size(),
                 background.scaled(driver.previewSize(), Qt::KeepAspectRatio));
    }
}

void tst_UploadMediaController::previewIsScaledIntoASquareOfThePreviewsHeight_data()
{
    QTest::addColumn<QSize>("photo");
    QTest::newRow("landscape") << QSize(800, 600);
    QTest::newRow("square") << QSize(500, 500);
    QTest::newRow("small landscape") << QSize(8, 6);
}

void tst_UploadMediaController::previewIsScaledIntoASquareOfThePreviewsHeight()
{
    QFETCH(QSize, photo);
    WizardDriver driver;
    QVERIFY(driver.open());
    const int side = driver.previewSize().height();
    const QSize scaled = photo.scaled(side, side, Qt::KeepAspectRatio);
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), photo.width(), photo.height()));
    QCOMPARE(driver.preview().size(), scaled);

    // Neither is turned, and the size is measured once.
    driver.window.root()->resize(1000, 700);
    QTest::qWait(2 * testTimeConstants().rotationDelay);
    QCOMPARE(driver.preview().size(), scaled);
    QCOMPARE(driver.preview().toImage().pixelColor(1, 1), QColor(Qt::red));
    driver.choose(QString());
    QCOMPARE(driver.preview().size(), scaled);
}

void tst_UploadMediaController::previewIsScaledFast_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("photo");
    QTest::newRow("enlarged") << QStringLiteral("a.png") << QSize(8, 6);
    // Of a format that cannot be read at another size than its own.
    QTest::newRow("reduced") << QStringLiteral("a.bmp") << QSize(1602, 1198);
}

// Its edges stay sharp.
void tst_UploadMediaController::previewIsScaledFast()
{
    QFETCH(QString, name);
    QFETCH(QSize, photo);
    WizardDriver driver;
    QVERIFY(driver.open());
    const int side = driver.previewSize().height();
    const QString path = driver.makePhoto(name, photo.width(), photo.height());
    driver.choose(path);
    const QImage expected =
        QImage(path).scaled(side, side, Qt::KeepAspectRatio, Qt::FastTransformation);
    QCOMPARE(driver.preview().toImage().convertToFormat(QImage::Format_RGB32),
             expected.convertToFormat(QImage::Format_RGB32));
}

void tst_UploadMediaController::aPortraitIsTurnedClockwiseAfterTheDelay()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    const int side = driver.previewSize().height();
    const QSize upright = QSize(600, 800).scaled(side, side, Qt::KeepAspectRatio);
    QElapsedTimer clock;
    clock.start();
    emit driver.wizard->pictureIsChosen(driver.makePhoto(QStringLiteral("a.png"), 600, 800));
    QCOMPARE(driver.preview().size(), upright);
    QTRY_COMPARE(driver.preview().size(), upright.transposed());
    QVERIFY(clock.elapsed() >= 45);
    const QImage turned = driver.preview().toImage();
    QCOMPARE(turned.pixelColor(turned.width() - 2, 1), QColor(Qt::red));
    QCOMPARE(turned.pixelColor(1, 1), QColor(Qt::blue));
}

void tst_UploadMediaController::aNewChoiceInTheDelayIsNotTurned()
{
    testTimeConstants().rotationDelay = 100;
    WizardDriver driver;
    QVERIFY(driver.open());
    const QString portrait = driver.makePhoto(QStringLiteral("a.png"), 60, 80);
    const QString clip = driver.makeFile(QStringLiteral("clip.mp4"));
    emit driver.wizard->pictureIsChosen(portrait);
    emit driver.wizard->pictureIsChosen(clip, true);
    const QImage icon = driver.preview().toImage();
    QTest::qWait(2 * testTimeConstants().rotationDelay);
    QCOMPARE(driver.preview().toImage(), icon);
}

void tst_UploadMediaController::leavingInTheDelayIsSafe()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    emit driver.wizard->pictureIsChosen(driver.makePhoto(QStringLiteral("a.png"), 60, 80));
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.waitForHome());
    QTest::qWait(2 * testTimeConstants().rotationDelay);
}

void tst_UploadMediaController::theFirstTouchWipesThePrompt_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("byKey");
    QTest::newRow("caption by mouse") << QStringLiteral("lineCaption") << false;
    QTest::newRow("caption by key") << QStringLiteral("lineCaption") << true;
    QTest::newRow("description by mouse") << QStringLiteral("textDescription") << false;
    QTest::newRow("description by key") << QStringLiteral("textDescription") << true;
}

void tst_UploadMediaController::theFirstTouchWipesThePrompt()
{
    QFETCH(QString, field);
    QFETCH(bool, byKey);
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    auto *widget = driver.wizard->findChild<QWidget *>(field);
    auto *area = qobject_cast<QAbstractScrollArea *>(widget);
    if (byKey) {
        widget->previousInFocusChain()->setFocus();
        while (driver.wizard->focusWidget() != widget)
            QTest::keyClick(driver.wizard->focusWidget(), Qt::Key_Tab);
    } else {
        // Where a click does not move the cursor.
        QTest::mouseClick(area ? area->viewport() : widget, Qt::LeftButton, {}, QPoint(1, 8));
    }
    const auto text = [&] { return area ? driver.description() : driver.caption(); };
    QCOMPARE(text(), QString());
    QCOMPARE(widget->property("edited"), QVariant(true));
    QTest::keyClicks(widget, QStringLiteral("hello"));
    QCOMPARE(text(), QStringLiteral("Hello"));

    // The second touch wipes nothing.
    driver.part<QLineEdit>("DummylineEdit")->setFocus();
    QTest::mouseClick(area ? area->viewport() : widget, Qt::LeftButton);
    QCOMPARE(text(), QStringLiteral("Hello"));
}

void tst_UploadMediaController::noFirstLetterIsLost_data()
{
    using Way = std::function<void(QWidget *)>;
    QTest::addColumn<QString>("field");
    QTest::addColumn<Way>("enter");
    QTest::addColumn<QString>("text");

    const auto focus = [](QWidget *field) { field->setFocus(Qt::ActiveWindowFocusReason); };
    const auto insert = [](QWidget *field, int place, const QString &text) {
        QAccessible::queryAccessibleInterface(field)->editableTextInterface()->insertText(place,
                                                                                          text);
    };
    const QList<std::pair<QByteArray, Way>> ways{
        {"keys in a window that was not active",
         [=](QWidget *field) {
             focus(field);
             QTest::keyClicks(field, QStringLiteral("hello"));
         }},
        {"keys after a click that moves no focus",
         [=](QWidget *field) {
             focus(field);
             auto *area = qobject_cast<QAbstractScrollArea *>(field);
             QTest::mouseClick(area ? area->viewport() : field, Qt::LeftButton, {}, QPoint(1, 8));
             QTest::keyClicks(field, QStringLiteral("hello"));
         }},
        {"an on-screen keyboard",
         [=](QWidget *field) {
             focus(field);
             for (const char *letter : {"h", "e", "l", "l", "o"}) {
                 QInputMethodEvent event;
                 event.setCommitString(QLatin1String(letter));
                 QCoreApplication::sendEvent(field, &event);
             }
         }},
        {"an input method that composes",
         [=](QWidget *field) {
             focus(field);
             for (const char *letters : {"h", "he", "hel"}) {
                 QInputMethodEvent event(QLatin1String(letters), {});
                 QCoreApplication::sendEvent(field, &event);
             }
             QInputMethodEvent event;
             event.setCommitString(QStringLiteral("hello"));
             QCoreApplication::sendEvent(field, &event);
         }},
        {"the clipboard",
         [=](QWidget *field) {
             focus(field);
             QGuiApplication::clipboard()->setText(QStringLiteral("hello"));
             QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
         }},
        {"a screen reader, in front",
         [=](QWidget *field) { insert(field, 0, QStringLiteral("hello")); }},
        {"a screen reader, in the middle",
         [=](QWidget *field) { insert(field, 3, QStringLiteral("hello")); }},
        {"a screen reader, letter by letter",
         [=](QWidget *field) {
             insert(field, 0, QStringLiteral("h"));
             insert(field, 1, QStringLiteral("ello"));
         }},
        {"a screen reader, all at once",
         [=](QWidget *field) {
             QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(field);
             const int end = reader->textInterface()->characterCount();
             reader->editableTextInterface()->replaceText(0, end, QStringLiteral("hello"));
         }},
    };
    for (const char *field : {"lineCaption", "textDescription"}) {
        for (const auto &[name, way] : ways)
            QTest::newRow(field + (": " + name))
                << QString::fromLatin1(field) << way << QStringLiteral("Hello");
    }
    // As long as the prompt, and with its beginning and its end.
    for (const char *text : {"Sunsets", "Capital", "Cannon", "Action"}) {
        const Way set = [text](QWidget *field) {
            QAccessible::queryAccessibleInterface(field)->setText(QAccessible::Value,
                                                                  QLatin1String(text));
        };
        QTest::newRow(text) << QStringLiteral("lineCaption") << set << QString::fromLatin1(text);
    }
}

void tst_UploadMediaController::noFirstLetterIsLost()
{
    QFETCH(QString, field);
    QFETCH(std::function<void(QWidget *)>, enter);
    QFETCH(QString, text);
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    enter(driver.wizard->findChild<QWidget *>(field));
    if (field == QLatin1String("lineCaption")) {
        QCOMPARE(driver.caption(), text);
        QCOMPARE(driver.description(), QStringLiteral("Description"));
        QVERIFY(driver.window.click("doneButton"));
        QVERIFY(driver.window.find("categoriesTable"));
    } else {
        QCOMPARE(driver.description(), text);
        QCOMPARE(driver.caption(), QStringLiteral("Caption"));
    }
    QCOMPARE(driver.lastBox(), QString());
}

void tst_UploadMediaController::thePromptGoesBeforeTheFirstLetterIsComposed()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    QInputMethodEvent event(QStringLiteral("h"), {});
    QCoreApplication::sendEvent(driver.part<QLineEdit>("lineCaption"), &event);
    QCOMPARE(driver.caption(), QString());
    QCOMPARE(driver.part<QLineEdit>("lineCaption")->displayText(), QString());
    QCoreApplication::sendEvent(driver.part<QPlainTextEdit>("textDescription"), &event);
    QCOMPARE(driver.description(), QString());
}

void tst_UploadMediaController::theFirstLetterBecomesACapital()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    QVERIFY(driver.type("lineCaption", QStringLiteral("hello World")));
    QCOMPARE(driver.caption(), QStringLiteral("Hello World"));
    QVERIFY(driver.type("textDescription", QStringLiteral("two words")));
    QCOMPARE(driver.description(), QStringLiteral("Two words"));
    QCOMPARE(driver.caption(), QStringLiteral("Hello World"));

    auto *caption = driver.part<QLineEdit>("lineCaption");
    QTest::keyClick(caption, Qt::Key_Home);
    QTest::keyClick(caption, Qt::Key_Delete);
    QCOMPARE(driver.caption(), QStringLiteral("ello World")); // no cursor moved
    QTest::keyClick(caption, Qt::Key_End);
    QCOMPARE(driver.caption(), QStringLiteral("Ello World"));
}

void tst_UploadMediaController::typingInTheMiddleOfTheCaptionKeepsThePlace()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("hello")));
    auto *caption = driver.part<QLineEdit>("lineCaption");
    QTest::keyClick(caption, Qt::Key_Left);
    QTest::keyClick(caption, Qt::Key_Left);
    QTest::keyClicks(caption, QStringLiteral("XY"));
    QCOMPARE(driver.caption(), QStringLiteral("HelXYlo"));
    QTest::keyClick(caption, Qt::Key_Home);
    QTest::keyClicks(caption, QStringLiteral("ab"));
    QCOMPARE(driver.caption(), QStringLiteral("AbHelXYlo"));
}

void tst_UploadMediaController::aCapitalizedDescriptionPutsTheCursorBehindTheFirstLetter()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    QVERIFY(driver.type("textDescription", QStringLiteral("Hello you")));
    auto *field = driver.part<QPlainTextEdit>("textDescription");
    QTest::keyClick(field, Qt::Key_Home);
    QTest::keyClick(field, Qt::Key_Delete);
    QCOMPARE(driver.description(), QStringLiteral("ello you"));
    QTest::keyClick(field, Qt::Key_End);
    QCOMPARE(driver.description(), QStringLiteral("Ello you"));
    QCOMPARE(field->textCursor().position(), 1);
}

void tst_UploadMediaController::captionsEndAtTheirMaximumLength()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("a")));
    auto *caption = driver.part<QLineEdit>("lineCaption");
    caption->insert(QString(600, QLatin1Char('b')));
    QCOMPARE(driver.caption().size(), 500);
}

void tst_UploadMediaController::withoutACaptionThePageStays()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    QVERIFY(driver.window.click("doneButton")); // never touched
    QCOMPARE(driver.lastBox(), QStringLiteral("Please enter a caption."));
    QVERIFY(driver.type("lineCaption", QString())); // touched, nothing typed
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 2);
    QVERIFY(driver.window.find("doneButton"));
    QVERIFY(!driver.window.find("categoriesTable"));
    QCOMPARE(driver.litCell(), 0);
}

void tst_UploadMediaController::aCaptionThatWasErasedStillPasses()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("x")));
    QTest::keyClick(driver.part<QLineEdit>("lineCaption"), Qt::Key_Backspace);
    QCOMPARE(driver.caption(), QString());
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
    QVERIFY(driver.window.find("categoriesTable"));
}

void tst_UploadMediaController::deletionWithTheCaptionSelectedIsSafe()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("hello")));
    QVERIFY(driver.type("textDescription", QStringLiteral("more")));
    QTest::keyClick(driver.part<QPlainTextEdit>("textDescription"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(driver.wizard->focusWidget(), Qt::Key_Backtab);
    QVERIFY(driver.part<QLineEdit>("lineCaption")->hasSelectedText());
    delete driver.wizard;
}

void tst_UploadMediaController::theStripFollowsTheSteps()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QCOMPARE(driver.litCell(), noCell);
    QVERIFY(driver.describe(QStringLiteral("a")));
    QCOMPARE(driver.litCell(), 0); // 1 percent
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.litCell(), 1); // 34
    driver.pick(1);
    QVERIFY(driver.waitForPrices());
    QCOMPARE(driver.litCell(), 2); // 69
    QVERIFY(driver.window.click("finalizeButton"));
    QCOMPARE(driver.litCell(), 2); // 99
    driver.window.service.expectHeld("CreateAuction", "42");
    QVERIFY(driver.window.click("createAuctionButton"));
    QCOMPARE(driver.litCell(), 0); // starts again at 1
    QTRY_VERIFY(driver.window.service.isHolding());
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.litCell(), noCell); // 100
}

void tst_UploadMediaController::aPageTakesThePlaceOfTheDescription()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    auto *area = driver.part<QWidget>("pageArea");
    const auto shownPages = [area] {
        QList<QFrame *> shown;
        const QList<QFrame *> pages =
            area->findChildren<QFrame *>(QString(), Qt::FindDirectChildrenOnly);
        for (QFrame *page : pages) {
            if (page->isVisible() && page->size() == area->size())
                shown.append(page);
        }
        return shown;
    };
    QCOMPARE(shownPages().size(), 1);
    QVERIFY(driver.toCategories());
    QCOMPARE(shownPages().size(), 1);
    QVERIFY(qobject_cast<CKavlorAuctionCategorize *>(shownPages().at(0)));
    QVERIFY(!driver.part<QToolButton>("photoClicker")->isEnabled());
    driver.pick(1);
    QVERIFY(driver.waitForPrices());
    QCOMPARE(shownPages().size(), 1);
    QVERIFY(qobject_cast<CKavlorAuctionCreate *>(shownPages().at(0)));
    QVERIFY(driver.window.click("finalizeButton"));
    QCOMPARE(shownPages().size(), 1);
    QVERIFY(qobject_cast<CKavlorAuctionConfirm *>(shownPages().at(0)));
    // The pages before are gone, not only hidden.
    QTRY_VERIFY(!area->findChild<CKavlorAuctionCategorize *>());
    QTRY_VERIFY(!area->findChild<CKavlorAuctionCreate *>());
}

void tst_UploadMediaController::anUntouchedDescriptionIsSentEmpty()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toPrices());
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.click("backNavigationButton"));
    QCOMPARE(driver.description(), QStringLiteral("Description"));
    QVERIFY(driver.window.click("doneButton"));
    driver.pick(1);
    QVERIFY(driver.waitForPrices());
    QVERIFY(driver.window.click("finalizeButton"));
    driver.window.service.expect("CreateAuction", "42");
    QVERIFY(driver.window.click("createAuctionButton"));
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.sentPart("LongDescription"), QByteArray());
    QCOMPARE(driver.sentPart("CategoryID"), QByteArray("11")); // the second beside the first choice
}

void tst_UploadMediaController::backFromMediaChoiceGoesHome()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.title(), QStringLiteral("welcome to kavlor!"));
}

void tst_UploadMediaController::backFromTheDescriptionGoesHome()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("a")));
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.waitForHome());
}

void tst_UploadMediaController::backFromTheCategoriesRestoresTheDescription()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("hello")));
    QVERIFY(driver.type("textDescription", QStringLiteral("long story")));
    QVERIFY(driver.window.click("doneButton"));
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(!driver.window.find("categoriesTable"));
    QVERIFY(driver.window.find("lineCaption"));
    QCOMPARE(driver.caption(), QStringLiteral("Hello"));
    QCOMPARE(driver.description(), QStringLiteral("Long story"));
    QVERIFY(driver.part<QToolButton>("photoClicker")->isEnabled());
    QCOMPARE(driver.litCell(), 0);
}

void tst_UploadMediaController::backFromThePricesRestoresTheCategory()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toPrices());
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(!driver.window.find("finalizeButton"));
    QCOMPARE(driver.window.text("categorySelected"), QStringLiteral("Sports>Football"));
    QCOMPARE(driver.litCell(), 1);
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.find("lineCaption"));
}

void tst_UploadMediaController::backFromTheConfirmationRestoresThePrices()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toConfirmation());
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(!driver.window.find("createAuctionButton"));
    QCOMPARE(driver.window.find<QSpinBox>("startPrice")->value(), 10);
    QCOMPARE(driver.window.find<QSpinBox>("reservePrice")->value(), 20);
    QCOMPARE(driver.window.find<QSpinBox>("buyItNowPrice")->value(), 30);
    QCOMPARE(driver.litCell(), 2);
    QVERIFY(driver.window.click("backNavigationButton"));
    QCOMPARE(driver.window.text("categorySelected"), QStringLiteral("Sports>Football"));
}

void tst_UploadMediaController::backInTheCategoryDelayDoesNotGoOn()
{
    testTimeConstants().categoryDelay = 60;
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toCategories());
    driver.pick(1);
    QVERIFY(driver.window.click("backNavigationButton"));
    QTest::qWait(2 * testTimeConstants().categoryDelay);
    QVERIFY(!driver.window.find("finalizeButton"));
    QVERIFY(driver.window.find("lineCaption"));
}

void tst_UploadMediaController::cancelGoesHomeFromEveryStep_data()
{
    QTest::addColumn<int>("step");
    QTest::newRow("media choice") << 0;
    QTest::newRow("description") << 1;
    QTest::newRow("categories") << 2;
    QTest::newRow("prices") << 3;
    QTest::newRow("confirmation") << 4;
}

void tst_UploadMediaController::cancelGoesHomeFromEveryStep()
{
    QFETCH(int, step);
    WizardDriver driver;
    QVERIFY(driver.open());
    bool there = true;
    if (step == 1)
        there = driver.describe(QStringLiteral("a"));
    else if (step == 2)
        there = driver.toCategories();
    else if (step == 3)
        there = driver.toPrices();
    else if (step == 4)
        there = driver.toConfirmation();
    QVERIFY(there);
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.waitForHome());
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());
}

void tst_UploadMediaController::cancelTwiceGoesHomeOnce()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    auto *button = driver.window.find<QPushButton>("cancelNavigationButton");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    driver.wizard->cancelClicked();
    driver.wizard->backClicked();
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.root()->findChildren<KavlorKnownUser *>().size(), 1);
}

void tst_UploadMediaController::doubleClickOnFinalizeDoesNotCreateTheAuction()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toPrices());
    QWidget *button = driver.window.find("finalizeButton");
    const QPoint place = button->mapTo(driver.window.root(), button->rect().center());
    // By way of the window: the second half goes to whatever is there by then.
    QTest::mouseDClick(driver.window.root()->windowHandle(), Qt::LeftButton, {}, place);
    QVERIFY(driver.window.find("createAuctionButton"));
    QVERIFY(driver.window.find("createAuctionButton")->isEnabled());
    QCOMPARE(driver.uploads(), 0);
}

void tst_UploadMediaController::theUploadCarriesWhatTheMemberEntered()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("sunset <1>")));
    QVERIFY(driver.type("textDescription", QStringLiteral("by the bay")));
    QVERIFY(driver.window.click("doneButton"));
    driver.pick(0);
    driver.pick(1);
    QVERIFY(driver.waitForPrices());
    QVERIFY(driver.setPrice("startPrice", QStringLiteral("7")));
    QVERIFY(driver.setPrice("buyItNowPrice", QStringLiteral("5")));
    QVERIFY(driver.window.click("finalizeButton"));
    QVERIFY(driver.window.find<QTextBrowser>("auctionOverallInfo")
                ->toPlainText()
                .contains(QLatin1String("Sunset <1>")));
    driver.window.service.expect("CreateAuction", "42");
    QVERIFY(driver.window.click("createAuctionButton"));
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());

    QCOMPARE(driver.sentPart("Username"), QByteArray("m1"));
    QCOMPARE(driver.sentPart("Password"), QByteArray("secret"));
    QCOMPARE(driver.sentPart("CategoryID"), QByteArray("11"));
    QCOMPARE(driver.sentPart("Description"), QByteArray("Sunset <1>"));
    QCOMPARE(driver.sentPart("LongDescription"), QByteArray("By the bay"));
    QCOMPARE(driver.sentPart("StartPrice"), QByteArray("7"));
    QCOMPARE(driver.sentPart("ReservePrice"), QByteArray("1")); // not set
    QCOMPARE(driver.sentPart("BuyItNowPrice"), QByteArray("5"));
    QFile photo(driver.window.folder.filePath(QStringLiteral("photo.png")));
    QVERIFY(photo.open(QIODevice::ReadOnly));
    QVERIFY(driver.window.service.requests().last().body.contains(photo.readAll()));
}

void tst_UploadMediaController::successLeadsToTheAlerts()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QSignalSpy complete(driver.window.root(), &RootViewController::UploadComplete);
    QVERIFY(driver.toHeldUpload());
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QVERIFY(!driver.window.find("createAuctionButton"));
    QCOMPARE(complete.count(), 0);
    QVERIFY(driver.window.click("buttonOk"));
    QCOMPARE(complete.count(), 1);
    QTRY_VERIFY(driver.window.shown<CNotificationsController>());
    QTRY_VERIFY(!driver.wizard);
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
}

void tst_UploadMediaController::withoutARootThereIsNoSuccessPage()
{
    FrameStage stage;
    CKavlorUser user(nullptr, nullptr, true, memberFields());
    CKavlorCategoryStore::load(QStringLiteral("h\n2,Event,0"));
    auto *wizard = new Wizard(&user, stage.area());
    QVERIFY(stage.show(wizard));
    const auto click = [wizard](const char *name) {
        auto *button = wizard->findChild<QAbstractButton *>(QLatin1String(name));
        QTest::mouseClick(button, Qt::LeftButton);
    };

    const QString photo = stage.folder.filePath(QStringLiteral("a.png"));
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::blue);
    QVERIFY(image.save(photo));
    stage.dialogs.chooseFile(photo);
    click("photoClicker");
    typeInto(wizard->findChild<QLineEdit *>(QStringLiteral("lineCaption")),
             QStringLiteral("a caption"));
    click("doneButton");
    auto *table = wizard->findChild<QTableView *>(QStringLiteral("categoriesTable"));
    QVERIFY(table);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                      table->visualRect(table->model()->index(0, 1)).center());
    QTRY_VERIFY(wizard->findChild<CKavlorAuctionCreate *>());
    click("finalizeButton");

    // Heard after the wizard has heard it.
    bool answered = false;
    connect(
        wizard->findChild<CHttpTolvex *>(),
        qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
        [&answered] { answered = true; }, Qt::QueuedConnection);
    stage.service.expect("CreateAuction", "42");
    click("createAuctionButton");
    QTRY_VERIFY(answered);
    QVERIFY(!wizard->findChild<CUploadMediaConfirmation *>());
    QVERIFY(wizard->findChild<CKavlorAuctionConfirm *>()->isVisible());
    QVERIFY(stage.dialogs.boxes().isEmpty());
}

void tst_UploadMediaController::nextTwiceLeavesOnce()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QSignalSpy complete(driver.window.root(), &RootViewController::UploadComplete);
    QVERIFY(driver.toHeldUpload());
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("buttonOk"));
    auto *button = driver.window.find<QPushButton>("buttonOk");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    driver.wizard->showNotificationsOptions();
    driver.wizard->cancelClicked();
    QCOMPARE(complete.count(), 1);
    QTRY_VERIFY(driver.window.shown<CNotificationsController>());
}

void tst_UploadMediaController::createAuctionTwiceSendsOnce()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toConfirmation());
    driver.window.service.expect("CreateAuction", "42");
    auto *button = driver.window.find<QPushButton>("createAuctionButton");
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseDClick(button, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.uploads(), 1);
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
}

void tst_UploadMediaController::theStripIsAnimatedDuringTheUpload()
{
    testTimeConstants().progressStep = 5;
    WizardDriver driver;
    QVERIFY(driver.open());
    auto *model = driver.wizard->findChild<CProgressiveModel *>();
    QSignalSpy steps(model, &CProgressiveModel::occuredTimerEvent);
    QVERIFY(driver.toHeldUpload());
    QTRY_VERIFY(steps.count() >= 6);
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    steps.clear();
    QVERIFY(!steps.wait(50));
}

void tst_UploadMediaController::failedUploads_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("reason");
    QTest::newRow("ERROR") << ScriptedService::reply("ERROR: no such category")
                           << QStringLiteral("ERROR: no such category");
    QTest::newRow("ERROR within the text")
        << ScriptedService::reply("42\nsome ERROR") << QStringLiteral("42\nsome ERROR");
    QTest::newRow("ERROR with percent signs")
        << ScriptedService::reply("ERROR %1 %2") << QStringLiteral("ERROR %1 %2");
    QTest::newRow("connection closed without a reply") << QByteArray() << QString();
}

void tst_UploadMediaController::failedUploads()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, reason);
    WizardDriver driver;
    QVERIFY(driver.open());
    ScriptedService::Step step;
    step.operation = "CreateAuction";
    step.bytes = reply;
    step.then = reply.isEmpty() ? ScriptedService::Reset : ScriptedService::KeepOpen;
    driver.window.service.expect(step);
    QVERIFY(driver.toConfirmation());
    QVERIFY(driver.window.click("createAuctionButton"));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    const QString prefix = QStringLiteral("Media uploading failed. Reason: ");
    if (reason.isEmpty()) { // the words are the toolkit's
        QVERIFY(driver.lastBox().startsWith(prefix));
        QVERIFY(driver.lastBox().size() > prefix.size());
    } else {
        QCOMPARE(driver.lastBox(), prefix + reason);
    }
    QCOMPARE(driver.uploads(), 1);
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());
}

void tst_UploadMediaController::a404CountsAsASuccessWithoutText()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    ScriptedService::Step step;
    step.operation = "CreateAuction";
    step.bytes = ScriptedService::reply("no ERROR is read here", "text/plain", "404 Not Found");
    driver.window.service.expect(step);
    QVERIFY(driver.toConfirmation());
    QVERIFY(driver.window.click("createAuctionButton"));
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
}

void tst_UploadMediaController::noConnectionFails()
{
    testTimeConstants().connectionWait = 20;
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toConfirmation());
    driver.window.connector.reportState(OnlineConnector::Disconnected);
    QVERIFY(driver.window.click("createAuctionButton"));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.lastBox(),
             QStringLiteral("Media uploading failed. Reason: Unable to create a connection"
                            "ERROR:no connection"));
    QCOMPARE(driver.uploads(), 0);
}

void tst_UploadMediaController::anUnreadableFileFails()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toConfirmation());
    QVERIFY(QFile::remove(driver.window.folder.filePath(QStringLiteral("photo.png"))));
    QVERIFY(driver.window.click("createAuctionButton"));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.lastBox(),
             QStringLiteral("Media uploading failed. Reason: Unable to read a posted fileI/O "
                            "issue"));
    QCOMPARE(driver.uploads(), 0);
}

void tst_UploadMediaController::timeoutFailsOnceThoughTwoResultsCome()
{
    testTimeConstants().uploadTimeout = 50;
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    QVERIFY(driver.waitForHome());
    driver.window.service.release();
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QCOMPARE(driver.lastBox(),
             QStringLiteral("Media uploading failed. Reason: Unable to get a server response"
                            "ERROR:timeout"));
}

void tst_UploadMediaController::withoutARequestObjectNothingCanBeUploaded()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toConfirmation());
    delete driver.wizard->findChild<CHttpTolvex *>();
    QVERIFY(driver.window.click("createAuctionButton"));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QCOMPARE(driver.window.dialogs.boxes().at(0).title, QStringLiteral("kavlor media"));
    QCOMPARE(driver.lastBox(),
             QStringLiteral("Cannot upload %1.")
                 .arg(driver.window.folder.filePath(QStringLiteral("photo.png"))));
}

void tst_UploadMediaController::cancelDuringTheUploadGoesHome()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload("ERROR"));
    QVERIFY(driver.window.click("cancelNavigationButton"));
    driver.window.service.release(); // comes when the frame has left, and changes nothing
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
    QVERIFY(driver.window.shown<KavlorKnownUser>());
}

void tst_UploadMediaController::backDuringTheUploadReopensThePricesAndLetsItRun()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    QVERIFY(driver.window.click("backNavigationButton"));
    QCOMPARE(driver.window.find<QSpinBox>("startPrice")->value(), 10);
    // The auction is there when the reply comes, and the member has to know.
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QVERIFY(!driver.window.find("finalizeButton"));
    QCOMPARE(driver.uploads(), 1);
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());
}

void tst_UploadMediaController::aFailureAfterBackGoesHome()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload("ERROR"));
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.find("lineCaption"));
    driver.window.service.release();
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.lastBox(), QStringLiteral("Media uploading failed. Reason: ERROR"));
}

void tst_UploadMediaController::aSecondUploadIsNotStartedDuringTheFirst()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.setPrice("startPrice", QStringLiteral("12")));
    QVERIFY(driver.window.click("finalizeButton"));
    QVERIFY(driver.window.click("createAuctionButton"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QCOMPARE(driver.window.dialogs.boxes().at(0).title, QStringLiteral("kavlor media"));
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.uploads(), 1);
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());
}

void tst_UploadMediaController::placingTwiceIsAskedFirst()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.click("finalizeButton"));
    QVERIFY(driver.window.click("createAuctionButton"));
    // The answer was the default one.
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QVERIFY(driver.lastBox().contains(QLatin1String("once more?")));
    QCOMPARE(driver.uploads(), 1);
    QCOMPARE(driver.litCell(), 2);

    QVERIFY(driver.window.click("backNavigationButton"));
    QVERIFY(driver.window.click("finalizeButton"));
    driver.window.service.expect("CreateAuction", "43");
    driver.window.dialogs.beforeNextAnswer([] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        QVERIFY(box);
        QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
    });
    QVERIFY(driver.window.click("createAuctionButton"));
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.uploads(), 2);
    QVERIFY2(driver.window.service.isDone(), driver.window.service.report());
}

void tst_UploadMediaController::anotherPhotoIsNotAskedFor()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    driver.window.service.release();
    QTRY_VERIFY(driver.window.find("alertLabel"));
    for (int i = 0; i < 3; ++i)
        QVERIFY(driver.window.click("backNavigationButton"));
    driver.choose(driver.makePhoto(QStringLiteral("b.png"), 40, 30));
    QVERIFY(driver.window.click("doneButton"));
    driver.pick(1);
    QVERIFY(driver.waitForPrices());
    QVERIFY(driver.window.click("finalizeButton"));
    driver.window.service.expect("CreateAuction", "43");
    QVERIFY(driver.window.click("createAuctionButton"));
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
    QCOMPARE(driver.uploads(), 2);
}

void tst_UploadMediaController::withNothingToTakeUpThereIsNoButton()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(!driver.window.find("takeUpButton"));
    QVERIFY(driver.window.click("cancelNavigationButton")); // nothing was begun
    QVERIFY(driver.reopen());
    QVERIFY(!driver.window.find("takeUpButton"));
}

void tst_UploadMediaController::aFailedUploadIsTakenUp_data()
{
    QTest::addColumn<bool>("ends");
    QTest::newRow("at once") << false;
    QTest::newRow("after the end of the program") << true;
}

void tst_UploadMediaController::aFailedUploadIsTakenUp()
{
    QFETCH(bool, ends);
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("sunset")));
    QVERIFY(driver.type("textDescription", QStringLiteral("by the bay")));
    QVERIFY(driver.window.click("doneButton"));
    driver.pick(0);
    driver.pick(0);
    QVERIFY(driver.waitForPrices());
    QVERIFY(driver.setPrice("startPrice", QStringLiteral("10")));
    QVERIFY(driver.setPrice("reservePrice", QStringLiteral("20")));
    QVERIFY(driver.setPrice("buyItNowPrice", QStringLiteral("30")));
    QVERIFY(driver.window.click("finalizeButton"));
    driver.window.service.expect("CreateAuction", "ERROR: later");
    QVERIFY(driver.window.click("createAuctionButton"));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.lastBox(), QStringLiteral("Media uploading failed. Reason: ERROR: later"));
    QVERIFY(ends ? driver.restart() : driver.reopen());

    const QWidget *button = driver.window.find("takeUpButton");
    QVERIFY(button && button->height() >= 45);
    QVERIFY(button->mapTo(driver.wizard, QPoint()).y()
            >= driver.window.find("photoFrame")->geometry().bottom());
    QVERIFY(driver.takeUp());
    QVERIFY(!driver.window.find("takeUpButton"));
    QCOMPARE(driver.caption(), QStringLiteral("Sunset"));
    QCOMPARE(driver.description(), QStringLiteral("By the bay"));
    QVERIFY(driver.preview().height() < driver.previewSize().height());
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.window.text("categorySelected"), QStringLiteral("Sports>Football"));
    driver.pick(0);
    QVERIFY(driver.waitForPrices());
    QCOMPARE(driver.window.find<QSpinBox>("startPrice")->value(), 10);
    QCOMPARE(driver.window.find<QSpinBox>("reservePrice")->value(), 20);
    QCOMPARE(driver.window.find<QSpinBox>("buyItNowPrice")->value(), 30);
    QVERIFY(driver.window.click("finalizeButton"));
    driver.window.service.expect("CreateAuction", "42");
    QVERIFY(driver.window.click("createAuctionButton"));
    QTRY_VERIFY(driver.window.find("alertLabel"));
    QCOMPARE(driver.sentPart("LongDescription"), QByteArray("By the bay"));
    QVERIFY(!driver.sentPart("CaptureDate").isEmpty());
}

void tst_UploadMediaController::anUploadThatWasLeftIsTakenUp_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<bool>("ends");
    for (const bool ends : {false, true}) {
        const QByteArray way = ends ? "ended at the " : "cancelled at the ";
        QTest::newRow(way + "description") << 1 << ends;
        QTest::newRow(way + "categories") << 2 << ends;
        QTest::newRow(way + "prices") << 3 << ends;
        QTest::newRow(way + "confirmation") << 4 << ends;
        QTest::newRow(way + "upload") << 5 << ends;
    }
}

void tst_UploadMediaController::anUploadThatWasLeftIsTakenUp()
{
    QFETCH(int, step);
    QFETCH(bool, ends);
    WizardDriver driver;
    QVERIFY(driver.open());
    bool there = false;
    if (step == 1)
        there = driver.describe(QStringLiteral("a caption"));
    else if (step == 2)
        there = driver.toCategories();
    else if (step == 3)
        there = driver.toPrices();
    else if (step == 4)
        there = driver.toConfirmation();
    else
        there = driver.toHeldUpload();
    QVERIFY(there);
    if (!ends)
        QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(ends ? driver.restart() : driver.reopen());

    QVERIFY(driver.takeUp());
    QCOMPARE(driver.caption(), QStringLiteral("A caption"));
    QCOMPARE(driver.description(), QStringLiteral("Description"));
    QVERIFY(driver.window.click("doneButton"));
    QCOMPARE(driver.window.text("categorySelected"),
             step > 2 ? QStringLiteral("Sports>Football") : QStringLiteral("None"));
}

// Nobody says goodbye to a program that is killed.
void tst_UploadMediaController::anUploadThatWasStartedSurvivesTheEnd()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    const QString path = driver.window.folder.filePath(QStringLiteral("upload.draft"));
    QCOMPARE(QFile::permissions(path) & ~(QFile::ReadUser | QFile::WriteUser),
             QFile::ReadOwner | QFile::WriteOwner);
    const std::optional<CAuctionRecord> kept =
        driver.window.root()->uploadDraft().load(QStringLiteral("m1"));
    QVERIFY(kept);
    QCOMPARE(kept->caption, QStringLiteral("A caption"));
    QCOMPARE(kept->description, QString());
    QCOMPARE(kept->category, 10);
    QCOMPARE(kept->startPrice, 10U);
    QCOMPARE(kept->reservePrice, 20U);
    QCOMPARE(kept->buyItNowPrice, 30U);
}

void tst_UploadMediaController::nothingIsLeftToTakeUp_data()
{
    QTest::addColumn<QString>("after");
    QTest::newRow("it succeeded") << QStringLiteral("success");
    QTest::newRow("another member signed in") << QStringLiteral("other member");
    QTest::newRow("the file is broken") << QStringLiteral("broken");
}

void tst_UploadMediaController::nothingIsLeftToTakeUp()
{
    QFETCH(QString, after);
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    if (after == QLatin1String("success")) {
        driver.window.service.release();
        QTRY_VERIFY(driver.window.find("alertLabel"));
    }
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.waitForHome());
    if (after == QLatin1String("other member")) {
        const QString other = QStringLiteral("m2");
        driver.window.service.expect("GetNotificationOptions", "options\n1,0,0,1\n");
        driver.window.root()->ShowLoginOptions(QString(), QString(), false);
        driver.window.root()->ShowLoginOptions(other, other, false);
        driver.window.root()->ShowLoginOptions(QString(), QString(), false);
        driver.window.root()->ShowLoginOptions(QStringLiteral("m1"), QStringLiteral("secret"),
                                               false);
    } else if (after == QLatin1String("broken")) {
        QVERIFY(!driver.makeFile(QStringLiteral("upload.draft"), "{\"member\": \"m1\"").isEmpty());
    }
    QVERIFY(driver.reopen());
    QVERIFY(!driver.window.find("takeUpButton"));
}

void tst_UploadMediaController::aPhotoThatIsGoneSaysSo()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("a")));
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.reopen());
    const QString photo = driver.window.folder.filePath(QStringLiteral("photo.png"));
    QVERIFY(QFile::rename(photo, photo + QStringLiteral(".away")));
    QVERIFY(driver.window.click("takeUpButton"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QVERIFY(driver.lastBox().contains(photo));
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
    // A card that is put in again brings it back.
    QVERIFY(QFile::rename(photo + QStringLiteral(".away"), photo));
    QVERIFY(driver.takeUp());
}

void tst_UploadMediaController::aPhotoThatIsSpoiltMeanwhileSaysSo()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("a")));
    const QString caption = driver.caption();
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.reopen());
    const QString photo = driver.window.folder.filePath(QStringLiteral("photo.png"));
    const QString whole = photo + QStringLiteral(".whole");
    QVERIFY(QFile::rename(photo, whole));
    QVERIFY(QFile::rename(driver.makeFile(QStringLiteral("broken.png")), photo));
    QVERIFY(driver.window.click("takeUpButton"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QVERIFY(!driver.part<QFrame>("descriptionFrame")->isEnabled());
    // Nothing is lost of what was told of it.
    QVERIFY(QFile::remove(photo) && QFile::rename(whole, photo));
    QVERIFY(driver.takeUp());
    QCOMPARE(driver.caption(), caption);
}

void tst_UploadMediaController::aPhotoThatCannotBeLoadedLeavesTheDraft()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.describe(QStringLiteral("a")));
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.reopen());
    driver.choose(driver.makeFile(QStringLiteral("broken.jpg")));
    QVERIFY(driver.window.find("takeUpButton"));
    // A new one that has begun takes its place.
    driver.choose(driver.makePhoto(QStringLiteral("b.png"), 40, 30));
    QVERIFY(!driver.window.find("takeUpButton"));
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.reopen());
    QVERIFY(driver.takeUp());
    QCOMPARE(driver.caption(), QStringLiteral("Caption"));
}

void tst_UploadMediaController::anUntouchedFieldOfADraftShowsItsPrompt()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    driver.choose(driver.makePhoto(QStringLiteral("a.png"), 40, 30));
    QVERIFY(driver.type("textDescription", QStringLiteral("story")));
    QVERIFY(driver.window.click("cancelNavigationButton"));
    QVERIFY(driver.reopen());
    QVERIFY(driver.takeUp());
    QCOMPARE(driver.caption(), QStringLiteral("Caption"));
    QVERIFY(driver.type("lineCaption", QStringLiteral("hello")));
    QCOMPARE(driver.caption(), QStringLiteral("Hello"));
    QVERIFY(driver.type("textDescription", QString()));
    QCOMPARE(driver.description(), QStringLiteral("Story"));
}

// A failure that is told over another message ends the wizard under that message.
void tst_UploadMediaController::aReplyDuringAMessageIsSafe()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload("ERROR"));
    for (int i = 0; i < 3; ++i)
        QVERIFY(driver.window.click("backNavigationButton"));
    const QString broken = driver.makeFile(QStringLiteral("broken.jpg"));
    driver.window.dialogs.beforeNextAnswer([&driver] {
        driver.window.service.release();
        QVERIFY(waitUntil([&driver] { return !driver.wizard; }));
    });
    emit driver.wizard->pictureIsChosen(broken);
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
    QCOMPARE(driver.lastBox(), QStringLiteral("Media uploading failed. Reason: ERROR"));
}

void tst_UploadMediaController::aFailureDuringTheFileDialogIsSafe()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload("ERROR"));
    for (int i = 0; i < 3; ++i)
        QVERIFY(driver.window.click("backNavigationButton"));
    driver.window.dialogs.beforeNextAnswer([&driver] {
        driver.window.service.release();
        QVERIFY(waitUntil([&driver] { return !driver.wizard; }));
    });
    driver.choose(driver.makePhoto(QStringLiteral("b.png"), 40, 30));
    QVERIFY(driver.waitForHome());
    QCOMPARE(driver.window.dialogs.boxes().size(), 1);
}

void tst_UploadMediaController::aReplyWithoutAnUploadOnlySetsTheStrip()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toCategories());
    QCOMPARE(driver.litCell(), 1);
    emit driver.wizard->findChild<CHttpTolvex *>()->requestIsFinished(QString(), QString());
    QTRY_COMPARE(driver.litCell(), noCell);
    emit driver.wizard->findChild<CHttpTolvex *>()->requestIsFinished(QStringLiteral("ERROR"),
                                                                      QString());
    QVERIFY(driver.window.find("categoriesTable"));
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
}

void tst_UploadMediaController::theEndOfTheProgramDuringTheUploadIsSafe()
{
    WizardDriver driver;
    QVERIFY(driver.open());
    QVERIFY(driver.toHeldUpload());
    driver.window.end();
    driver.window.service.release();
    QCOMPARE(driver.window.dialogs.boxes().size(), 0);
}

KAVLOR_TEST_MAIN(tst_UploadMediaController)
#include "tst_uploadmediacontroller.moc"
