// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "contrast.h"
#include "focusring.h"
#include "framecreateaccount.h"
#include "framestage.h"
#include "httptolvex.h"
#include "kavlorauctioncreate.h"
#include "kavlorlogin.h"
#include "kavlormodifyauction.h"
#include "kavlormyauctionscontroller.h"
#include "kavlorsplashwindow.h"
#include "messagebox.h"
#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadmediacontroller.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>

#include <functional>

/**
 * Message boxes by themselves, and every one that the program shows, from the frame that shows it.
 */
class tst_MessageBox : public TestCase
{
    Q_OBJECT

private slots:
    void everyBoxOfTheProgram_data();
    void everyBoxOfTheProgram();
    void aReplyOfManyMegabytesIsShownAtOnce();
    void detailsStayOnTheScreen();
    void growsWithTheWindowThatTells();
    void noDesktopsStyleChangesIt();
    void focusIsSeen_data();
    void focusIsSeen();

    void tellSaysWhetherTheFrameIsStillThere_data();
    void tellSaysWhetherTheFrameIsStillThere();
    void askIsTrueForYesAlone_data();
    void askIsTrueForYesAlone();
    void askOfAFrameThatHasGoneIsNoYes();

private:
    using Site = QString (tst_MessageBox::*)(const QString &);

    QString splash(const QString &part);
    QString login(const QString &part);
    QString unknownReply(const QString &part);
    QString refusedAccount(const QString &part);
    QString captionMissing(const QString &);
    QString unloadablePhoto(const QString &part);
    QString noRequestObject(const QString &part);
    QString uploadFailed(const QString &part);
    QString pricesRefused(const QString &);
    QString auctionFinished(const QString &);
    QString priceChangeFailed(const QString &part);
    QString priceChangeDone(const QString &);

    void expectBox(DialogAnswers &dialogs, const QString &text);
    void lookAt(QMessageBox *box, const QString &text);
    void checkPlaces(const QMessageBox *box, const char *when);
    void checkText(const QMessageBox *box, const QString &text);
    void checkLook(const QMessageBox *box);

    QStringList m_faults;
    int m_looks = 0;
    QStringList m_look; // of the first box of the run
};

Q_DECLARE_METATYPE(MessageBox::Place)

namespace {

constexpr QSize largestBox(800, 424);
constexpr int touchHeight = 45;
constexpr int alwaysFits = 100; // letters

// As the styles of most desktops have it.
class StyleOfADesktop : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override
    {
        if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
            return 1;
        if (hint == SH_MessageBox_TextInteractionFlags)
            return Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

QString lines(int count)
{
    QString text = QStringLiteral("ERROR: the service has much to say");
    for (int line = 1; line < count; ++line)
        text += QStringLiteral("\nreason number %1, in a few words").arg(line);
    return text;
}

// A path as long as the system takes, without a blank in it.
QString longPath()
{
    QString path = QStringLiteral("/home/user");
    while (path.size() < 3800)
        path += QLatin1Char('/') + QString(200, QLatin1Char('w'));
    return path + QStringLiteral("/photo.png");
}

QMessageBox *openBox()
{
    return qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
}

// How much ink there is on a picture, in pixels that are fully covered by it.
double inkOn(const QImage &image, const QColor &paper, const QColor &ink)
{
    const double span = luminance(paper) - luminance(ink);
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += (luminance(paper) - luminance(image.pixelColor(x, y))) / span;
    }
    return sum;
}

// The ink that a text takes when there is room enough.
double inkOf(const QString &text, const QFont &font, const QColor &paper, const QColor &ink)
{
    double sum = 0;
    const QFontMetrics metrics(font);
    const QStringList parts = text.split(QLatin1Char('\n'));
    for (const QString &part : parts) {
        QImage image(metrics.horizontalAdvance(part) + 40, metrics.height() + 40,
                     QImage::Format_RGB32);
        image.fill(paper);
        QPainter painter(&image);
        painter.setFont(font);
        painter.setPen(ink);
        painter.drawText(20, 20 + metrics.ascent(), part);
        painter.end();
        sum += inkOn(image, paper, ink);
    }
    return sum;
}

QImage pictureOf(QWidget *widget)
{
    return widget->window()
        ->grab(QRect(widget->mapTo(widget->window(), QPoint()), widget->size()))
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

void tst_MessageBox::expectBox(DialogAnswers &dialogs, const QString &text)
{
    dialogs.beforeNextAnswer([this, text] { lookAt(openBox(), text); });
}

void tst_MessageBox::lookAt(QMessageBox *box, const QString &text)
{
    ++m_looks;
    if (!box) {
        m_faults.append(QStringLiteral("no message box"));
        return;
    }
    const QString folder = qEnvironmentVariable("KAVLOR_SCREEN_PICTURES");
    const QString picture = QDir(folder).filePath(QStringLiteral("box-%1.png")
                                                      .arg(QLatin1String(QTest::currentDataTag()))
                                                      .replace(QLatin1Char(' '), QLatin1Char('-')));
    checkPlaces(box, "at first");
    checkText(box, text);
    checkLook(box);
    if (!folder.isEmpty())
        box->grab().save(picture);
    if (box->detailedText().isEmpty())
        return;

    for (QAbstractButton *button : box->buttons()) {
        if (box->buttonRole(button) == QMessageBox::ActionRole)
            QTest::mouseClick(button, Qt::LeftButton);
    }
    const auto *details = box->findChild<QTextEdit *>();
    if (!details || !details->isVisible())
        m_faults.append(QStringLiteral("the details do not open"));
    else if (!details->isReadOnly() || details->height() < 100)
        m_faults.append(QStringLiteral("the details cannot be read"));
    checkPlaces(box, "with details");
    if (!folder.isEmpty())
        box->grab().save(
            QString(picture).replace(QLatin1String(".png"), QLatin1String("-open.png")));
}

void tst_MessageBox::checkPlaces(const QMessageBox *box, const char *when)
{
    const auto fault = [&](const QString &what, const QRect &place) {
        m_faults.append(QStringLiteral("%1: %2 (%3,%4 %5x%6)")
                            .arg(QLatin1String(when), what)
                            .arg(place.x())
                            .arg(place.y())
                            .arg(place.width())
                            .arg(place.height()));
    };
    if (box->width() > largestBox.width() || box->height() > largestBox.height())
        fault(QStringLiteral("too large"), box->geometry());
    if (!box->screen()->availableGeometry().contains(box->geometry()))
        fault(QStringLiteral("off the screen"), box->geometry());
    const QList<QAbstractButton *> buttons = box->buttons();
    for (const QAbstractButton *button : buttons) {
        const QRect place(button->mapTo(box, QPoint()), button->size());
        if (!button->isVisible() || !box->rect().contains(place))
            fault(QStringLiteral("out of reach: ") + button->text(), place);
        if (button->height() < touchHeight)
            fault(QStringLiteral("too small: ") + button->text(), place);
    }
    if (buttons.isEmpty())
        fault(QStringLiteral("no button"), box->geometry());
}

void tst_MessageBox::checkText(const QMessageBox *box, const QString &text)
{
    if (box->text() + box->detailedText() != text)
        m_faults.append(QStringLiteral("says \"%1\"").arg(box->text().left(200)));
    if (box->text().isEmpty())
        m_faults.append(QStringLiteral("shows nothing of the text"));
    if (text.size() < alwaysFits && !box->detailedText().isEmpty())
        m_faults.append(QStringLiteral("hides a short text in its details"));
    if (box->textFormat() != Qt::PlainText)
        m_faults.append(QStringLiteral("not plain text"));

    auto *label = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
    const QRect place(label->mapTo(box, QPoint()), label->size());
    if (!box->rect().contains(place))
        m_faults.append(QStringLiteral("the text is out of sight"));
    if (label->font().pointSizeF() < 14)
        m_faults.append(QStringLiteral("the letters are too small"));

    const QColor paper = pictureOf(label).pixelColor(0, 0);
    const QColor ink = label->palette().color(QPalette::WindowText);
    if (contrast(paper, ink) < 4.5)
        m_faults.append(QStringLiteral("no contrast"));
    const double there = inkOn(pictureOf(label), paper, ink);
    const double needed = inkOf(box->text(), label->font(), paper, ink);
    if (qAbs(there - needed) > 0.05 * needed)
        m_faults.append(QStringLiteral("%1 of %2 of the text is there").arg(there).arg(needed));
}

// All boxes are set alike, whatever is above them.
void tst_MessageBox::checkLook(const QMessageBox *box)
{
    QStringList look;
    auto *label = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
    const QAbstractButton *button = box->defaultButton();
    look << label->font().toString() << label->palette().color(QPalette::WindowText).name()
         << pictureOf(label).pixelColor(0, 0).name();
    if (button) {
        look << button->font().toString() << button->palette().color(QPalette::ButtonText).name()
             << QString::number(button->height());
    }
    if (m_look.isEmpty())
        m_look = look;
    if (look != m_look)
        m_faults.append(QStringLiteral("looks like %1, not like %2")
                            .arg(look.join(QLatin1Char(' ')), m_look.join(QLatin1Char(' '))));
}

namespace {

bool hasTerms(const FrameCreateAccount &frame)
{
    return waitUntil([&] { return frame.findChild<QCheckBox *>()->isEnabled(); });
}

} // namespace

QString tst_MessageBox::splash(const QString &part)
{
    const QString text = QStringLiteral("kavlor experienced an error contacting a server.\n"
                                        "Please check your network settings.\n\n")
        + part;
    RootWindow window;
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start();
    expectBox(window.dialogs, text);
    window.shown<CKavlorSplashWindow>()->requestDone(QString(), part);
    return text;
}

QString tst_MessageBox::login(const QString &part)
{
    FrameStage stage;
    KavlorLogin frame(&stage.settings, stage.area());
    if (!stage.show(&frame))
        return {};
    stage.service.expectHeld("ValidateLogin", "1");
    typeInto(frame.findChild<QLineEdit *>(QStringLiteral("lineUsername")), QStringLiteral("m1"));
    typeInto(frame.findChild<QLineEdit *>(QStringLiteral("linePassword")), QStringLiteral("p"));
    QTest::mouseClick(frame.findChild<QPushButton *>(QStringLiteral("loginButton")),
                      Qt::LeftButton);
    expectBox(stage.dialogs, part);
    frame.ValidationDone(QString(), part);
    return part;
}

QString tst_MessageBox::unknownReply(const QString &part)
{
    const QString text = QStringLiteral("Unknown response received: %1 %2.").arg(part, QString());
    FrameStage stage;
    CKavlorUser user(&stage.settings, nullptr, false, CKavlorUser::defaultFields());
    FrameCreateAccount frame(&stage.settings, &user, stage.area());
    stage.service.expect("GetServiceTerms", "terms");
    if (!stage.show(&frame) || !hasTerms(frame))
        return {};
    expectBox(stage.dialogs, text);
    frame.ResponseReceived(part, QString());
    return text;
}

QString tst_MessageBox::refusedAccount(const QString &part)
{
    const QString text = QStringLiteral("kavlor experienced at least one error during record "
                                        "submission:\n\n")
        + part;
    FrameStage stage;
    CKavlorUser user(&stage.settings, nullptr, false, CKavlorUser::defaultFields());
    FrameCreateAccount frame(&stage.settings, &user, stage.area());
    stage.service.expect("GetServiceTerms", "terms");
    if (!stage.show(&frame) || !hasTerms(frame))
        return {};
    for (const char *line : {"lineUsername", "linePassword"})
        typeInto(frame.findChild<QLineEdit *>(QLatin1String(line)), QStringLiteral("member1"));
    for (const char *line : {"lineEmailaddress", "lineAgain"})
        typeInto(frame.findChild<QLineEdit *>(QLatin1String(line)), QStringLiteral("m@e.org"));
    frame.findChild<QTabWidget *>()->setCurrentIndex(1);
    clickBox(frame.findChild<QCheckBox *>());
    expectBox(stage.dialogs, text);
    stage.service.expect("CreateAccount", part.toUtf8());
    QTest::mouseClick(frame.findChild<QPushButton *>(QStringLiteral("submitButton")),
                      Qt::LeftButton);
    return waitUntil([&] { return !stage.dialogs.boxes().isEmpty(); }) ? text : QString();
}

namespace {

// The wizard of the real root window.
class Wizard
{
public:
    CUploadMediaController *open()
    {
        if (!window.startAtHome() || !window.click("buttonUpload"))
            return nullptr;
        wizard = window.shown<CUploadMediaController>();
        return wizard.data();
    }

    RootWindow window;
    QPointer<CUploadMediaController> wizard;
};

} // namespace

QString tst_MessageBox::captionMissing(const QString &)
{
    const QString text = QStringLiteral("Please enter a caption.");
    Wizard driver;
    if (!driver.open())
        return {};
    driver.wizard->changeMedia(QStringLiteral("/clip.mp4"), true);
    expectBox(driver.window.dialogs, text);
    driver.window.click("doneButton");
    return text;
}

QString tst_MessageBox::unloadablePhoto(const QString &part)
{
    const QString text = QStringLiteral("Cannot load %1.").arg(part);
    Wizard driver;
    if (!driver.open())
        return {};
    expectBox(driver.window.dialogs, text);
    driver.wizard->changeMedia(part);
    return text;
}

QString tst_MessageBox::noRequestObject(const QString &part)
{
    const QString text = QStringLiteral("Cannot upload %1.").arg(part);
    Wizard driver;
    if (!driver.open())
        return {};
    driver.wizard->changeMedia(part, true);
    delete driver.wizard->findChild<CHttpTolvex *>();
    expectBox(driver.window.dialogs, text);
    driver.wizard->createAuction();
    return text;
}

QString tst_MessageBox::uploadFailed(const QString &part)
{
    const QString text = QStringLiteral("Media uploading failed. Reason: ") + part;
    Wizard driver;
    if (!driver.open())
        return {};
    const QString clip = driver.window.folder.filePath(QStringLiteral("clip.mp4"));
    QFile file(clip);
    if (!file.open(QIODevice::WriteOnly) || file.write("clip") != 4)
        return {};
    file.close();
    driver.wizard->changeMedia(clip, true);
    expectBox(driver.window.dialogs, text);
    driver.window.service.expect("CreateAuction", part.toUtf8());
    driver.wizard->createAuction();
    return waitUntil([&] { return !driver.window.dialogs.boxes().isEmpty(); }) ? text : QString();
}

QString tst_MessageBox::pricesRefused(const QString &)
{
    const QString text =
        QStringLiteral("Start price must be lower than reserve price, if reserve price is set.");
    FrameStage stage;
    CKavlorAuctionCreate frame(10, 0, 10, stage.area());
    if (!stage.show(&frame))
        return {};
    expectBox(stage.dialogs, text);
    QTest::mouseClick(frame.findChild<QPushButton *>(QStringLiteral("finalizeButton")),
                      Qt::LeftButton);
    return text;
}

QString tst_MessageBox::auctionFinished(const QString &)
{
    const QString text = QStringLiteral("This auction can no longer be changed.");
    FrameStage stage;
    CKavlorUser user(&stage.settings, nullptr, true, memberFields());
    AuctionLine line;
    line.finished = true;
    stage.service.expect("GetMyAuctions", auctionReply(line).toUtf8());
    stage.service.expect("GetThumbnail", "ERROR");
    CKavlorMyAuctionsController frame(&user, stage.area());
    if (!stage.show(&frame))
        return {};
    auto *table = frame.findChild<QTableView *>();
    if (!waitUntil([table] { return table->isVisible(); }))
        return {};
    expectBox(stage.dialogs, text);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                      table->visualRect(table->model()->index(0, 1)).center());
    stage.settle();
    return text;
}

QString tst_MessageBox::priceChangeFailed(const QString &part)
{
    const QString text = QStringLiteral("One or more errors occured while updating auction.\n"
                                        "Please find more info below.\n")
        + part + QLatin1Char('\n');
    FrameStage stage;
    CKavlorUser user(&stage.settings, nullptr, true, memberFields());
    CKavlorModifyAuction frame(&user, 1, CAuctionRow(), stage.area());
    if (!stage.show(&frame))
        return {};
    expectBox(stage.dialogs, text);
    stage.service.expect("ModifyAuction", part.toUtf8());
    QTest::mouseClick(frame.findChild<QPushButton *>(QStringLiteral("done")), Qt::LeftButton);
    return waitUntil([&] { return !stage.dialogs.boxes().isEmpty(); }) ? text : QString();
}

QString tst_MessageBox::priceChangeDone(const QString &)
{
    const QString text = QStringLiteral("Your auction has been updated successfully.");
    FrameStage stage;
    CKavlorUser user(&stage.settings, nullptr, true, memberFields());
    CKavlorModifyAuction frame(&user, 1, CAuctionRow(), stage.area());
    if (!stage.show(&frame))
        return {};
    expectBox(stage.dialogs, text);
    stage.service.expect("ModifyAuction", "1");
    QTest::mouseClick(frame.findChild<QPushButton *>(QStringLiteral("done")), Qt::LeftButton);
    return waitUntil([&] { return !stage.dialogs.boxes().isEmpty(); }) ? text : QString();
}

void tst_MessageBox::everyBoxOfTheProgram_data()
{
    QTest::addColumn<Site>("site");
    QTest::addColumn<QString>("part");

    const QString reply = QStringLiteral("ERROR: no");
    const QString markup = QStringLiteral("ERROR: <b>bold</b> &amp; <img src=\"/photo.png\">");
    const struct
    {
        const char *name;
        Site site;
    } withReply[] = {{"start", &tst_MessageBox::splash},
                     {"login", &tst_MessageBox::login},
                     {"reply to nothing", &tst_MessageBox::unknownReply},
                     {"account refused", &tst_MessageBox::refusedAccount},
                     {"upload failed", &tst_MessageBox::uploadFailed},
                     {"price change failed", &tst_MessageBox::priceChangeFailed}};
    for (const auto &row : withReply) {
        QTest::addRow("%s, shortest", row.name) << row.site << reply;
        QTest::addRow("%s, markup", row.name) << row.site << markup;
        QTest::addRow("%s, 40 lines", row.name) << row.site << lines(40);
        QTest::addRow("%s, 400 lines", row.name) << row.site << lines(400);
        QTest::addRow("%s, one word", row.name)
            << row.site << QString(QStringLiteral("ERROR") + QString(3000, QLatin1Char('x')));
    }
    const struct
    {
        const char *name;
        Site site;
    } withPath[] = {{"photo not loaded", &tst_MessageBox::unloadablePhoto},
                    {"photo not uploaded", &tst_MessageBox::noRequestObject}};
    for (const auto &row : withPath) {
        QTest::addRow("%s, shortest", row.name) << row.site << QStringLiteral("/p");
        QTest::addRow("%s, a path", row.name)
            << row.site
            << QStringLiteral("/home/user/MyDocs/DCIM/2026-11-21/a-rather-long-name-of-a-photo-with"
                              "-no-blank-in-it-at-all-as-cameras-and-downloads-make-them.jpeg");
        QTest::addRow("%s, longest", row.name) << row.site << longPath();
    }
    QTest::newRow("caption missing") << &tst_MessageBox::captionMissing << QString();
    QTest::newRow("prices refused") << &tst_MessageBox::pricesRefused << QString();
    QTest::newRow("auction finished") << &tst_MessageBox::auctionFinished << QString();
    QTest::newRow("price change done") << &tst_MessageBox::priceChangeDone << QString();
}

void tst_MessageBox::everyBoxOfTheProgram()
{
    QFETCH(const Site, site);
    QFETCH(const QString, part);

    m_faults.clear();
    m_looks = 0;
    const QString text = (this->*site)(part);
    QVERIFY(!text.isEmpty());
    QCOMPARE(m_looks, 1);
    QCOMPARE(m_faults.join(QLatin1Char('\n')), QString());
}

void tst_MessageBox::aReplyOfManyMegabytesIsShownAtOnce()
{
    FrameStage stage;
    QWidget frame(stage.area());
    QElapsedTimer time;
    qint64 untilOpen = -1;
    stage.dialogs.beforeNextAnswer([&] { untilOpen = time.elapsed(); });
    const QString text(20LL * 1024 * 1024, QLatin1Char('x'));
    time.start();
    QVERIFY(MessageBox::tell(&frame, QMessageBox::NoIcon, QString(), text));
    QVERIFY2(untilOpen >= 0 && untilOpen < 1000, qPrintable(QString::number(untilOpen)));
}

void tst_MessageBox::detailsStayOnTheScreen()
{
    FrameStage stage;
    QWidget frame(stage.area());
    stage.dialogs.beforeNextAnswer([this] {
        QMessageBox *box = openBox();
        const QRect free = box->screen()->availableGeometry();
        box->move(box->x(), free.bottom() - box->frameGeometry().height());
        lookAt(box, lines(40));
    });
    m_faults.clear();
    QVERIFY(MessageBox::tell(&frame, QMessageBox::NoIcon, QString(), lines(40)));
    QCOMPARE(m_faults.join(QLatin1Char('\n')), QString());
}

void tst_MessageBox::growsWithTheWindowThatTells()
{
    QWidget window;
    QWidget frame(&window);
    QList<qreal> text;
    QList<int> buttons;
    QList<int> icons;
    DialogAnswers dialogs;
    for (const QSize size : {QSize(800, 424), QSize(1920, 1080)}) {
        window.resize(size);
        dialogs.beforeNextAnswer([&] {
            const QMessageBox *box = openBox();
            const auto *label = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
            const auto *icon = box->findChild<QLabel *>(QStringLiteral("qt_msgboxex_icon_label"));
            text.append(label->font().pointSizeF());
            buttons.append(box->defaultButton()->height());
            icons.append(icon->pixmap().deviceIndependentSize().toSize().height());
        });
        QVERIFY(MessageBox::tell(&frame, QMessageBox::Information, QStringLiteral("title"),
                                 QStringLiteral("What there is to say.")));
    }
    QCOMPARE(text.size(), 2);
    QVERIFY(qAbs(text.at(1) - 1.6 * text.at(0)) < 0.1);
    QVERIFY(qAbs(buttons.at(1) - 1.6 * buttons.at(0)) <= 2);
    QVERIFY2(qAbs(icons.at(1) - 1.6 * icons.at(0)) <= 1,
             qPrintable(QStringLiteral("%1, %2").arg(icons.at(0)).arg(icons.at(1))));
}

void tst_MessageBox::noDesktopsStyleChangesIt()
{
    QApplication::setStyle(new StyleOfADesktop);
    FrameStage stage;
    QWidget frame(stage.area());
    int icons = -1;
    bool isTextLeftAlone = false;
    stage.dialogs.beforeNextAnswer([&] {
        icons = 0;
        for (const QAbstractButton *button : openBox()->buttons())
            icons += button->icon().isNull() ? 0 : 1;
        const auto *label = openBox()->findChild<QLabel *>(QStringLiteral("qt_msgbox_label"));
        isTextLeftAlone = label->textInteractionFlags() == Qt::NoTextInteraction;
    });
    MessageBox::ask(&frame, QStringLiteral("title"), QStringLiteral("Really?"));
    QApplication::setStyle(new QProxyStyle);
    QCOMPARE(icons, 0);
    QVERIFY(isTextLeftAlone); // it would take the focus from the buttons
}

void tst_MessageBox::focusIsSeen_data()
{
    QTest::addColumn<QString>("question");
    QTest::newRow("question") << "Really?";
    QTest::newRow("details") << lines(40);
}

void tst_MessageBox::focusIsSeen()
{
    QFETCH(const QString, question);
    FrameStage stage;
    QWidget frame(stage.area());
    QString faults = QStringLiteral("no box");
    stage.dialogs.beforeNextAnswer([&] {
        QMessageBox *box = openBox();
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == QMessageBox::ActionRole)
                button->click(); // shows the details
        }
        box->activateWindow();
        QTRY_VERIFY(box->isAncestorOf(QApplication::focusWidget()));
        faults = unseenFocus();
    });
    MessageBox::ask(&frame, QStringLiteral("title"), question);
    QCOMPARE(faults, QString());
}

void tst_MessageBox::tellSaysWhetherTheFrameIsStillThere_data()
{
    QTest::addColumn<MessageBox::Place>("place");
    QTest::addColumn<bool>("leaves");
    QTest::newRow("over the frame") << MessageBox::OverFrame << false;
    QTest::newRow("over the frame, which goes") << MessageBox::OverFrame << true;
    QTest::newRow("by itself") << MessageBox::ByItself << false;
    QTest::newRow("by itself, and the frame goes") << MessageBox::ByItself << true;
}

void tst_MessageBox::tellSaysWhetherTheFrameIsStillThere()
{
    QFETCH(const MessageBox::Place, place);
    QFETCH(const bool, leaves);

    FrameStage stage;
    const QPointer<QWidget> frame = new QWidget(stage.area());
    bool hasParent = false;
    stage.dialogs.beforeNextAnswer([&] {
        hasParent = openBox()->parentWidget() == frame;
        if (leaves)
            delete frame;
    });
    QCOMPARE(MessageBox::tell(frame, QMessageBox::Information, QStringLiteral("t"),
                              QStringLiteral("text"), place),
             !leaves);
    QCOMPARE(hasParent, place == MessageBox::OverFrame);
    QVERIFY(!openBox());
}

void tst_MessageBox::askIsTrueForYesAlone_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes") << static_cast<int>(Qt::Key_Y) << true;
    QTest::newRow("no") << static_cast<int>(Qt::Key_N) << false;
    QTest::newRow("return") << static_cast<int>(Qt::Key_Return) << false;
    QTest::newRow("escape") << static_cast<int>(Qt::Key_Escape) << false;
}

void tst_MessageBox::askIsTrueForYesAlone()
{
    QFETCH(const int, key);
    QFETCH(const bool, yes);

    FrameStage stage;
    QWidget frame(stage.area());
    stage.dialogs.beforeNextAnswer([key] {
        QMessageBox *box = openBox();
        if (key == Qt::Key_Y)
            QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
        else if (key == Qt::Key_N)
            QTest::mouseClick(box->button(QMessageBox::No), Qt::LeftButton);
        else
            QTest::keyClick(box, static_cast<Qt::Key>(key));
    });
    QCOMPARE(MessageBox::ask(&frame, QStringLiteral("t"), QStringLiteral("Really?")), yes);
}

void tst_MessageBox::askOfAFrameThatHasGoneIsNoYes()
{
    FrameStage stage;
    const QPointer<QWidget> frame = new QWidget(stage.area());
    stage.dialogs.beforeNextAnswer([&] {
        delete frame;
        QTest::mouseClick(openBox()->button(QMessageBox::Yes), Qt::LeftButton);
    });
    QVERIFY(!MessageBox::ask(frame, QStringLiteral("t"), QStringLiteral("Really?"),
                             MessageBox::ByItself));
}

KAVLOR_TEST_MAIN(tst_MessageBox)
#include "tst_messagebox.moc"
