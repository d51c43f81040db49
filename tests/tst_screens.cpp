// SPDX-License-Identifier: MIT

#include "languages.h"
#include "paddedtexts.h"
#include "picturecomparison.h"
#include "progressivemodel.h"
#include "roomscale.h"
#include "rootwindow.h"
#include "servicehost.h"
#include "testcase.h"
#include "testconstants.h"
#include "testmain.h"
#include "widgettext.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>
#include <QToolButton>

#include <algorithm>

/**
 * Walks every screen at the sizes it must fit and looks at what a member would: nothing cut off,
 * nothing on top of something else, everything large enough for a finger and named for a screen
 * reader. Run at more than one scale of the screen, and in every language.
 */
class tst_Screens : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everythingIsInPlace_data();
    void everythingIsInPlace();
    void everyTextFollowsTheLanguage_data();
    void everyTextFollowsTheLanguage();

private:
    using Way = bool (tst_Screens::*)(RootWindow &);

    bool toStart(RootWindow &window);
    bool toWelcome(RootWindow &window);
    bool toLogin(RootWindow &window);
    bool toLoginRefused(RootWindow &window);
    bool toCreateAccount(RootWindow &window);
    bool toCreateAccountError(RootWindow &window);
    bool toTerms(RootWindow &window);
    bool toHome(RootWindow &window);
    bool toUpload(RootWindow &window);
    bool toDescription(RootWindow &window);
    bool toUploadThatWasLeft(RootWindow &window);
    bool toCategory(RootWindow &window);
    bool toSubcategory(RootWindow &window);
    bool toPrices(RootWindow &window);
    bool toConfirm(RootWindow &window);
    bool toUploaded(RootWindow &window);
    bool toMyAuctionsWaiting(RootWindow &window);
    bool toMyAuctionsEmpty(RootWindow &window);
    bool toMyAuctions(RootWindow &window);
    bool toPriceChange(RootWindow &window);
    bool toSettings(RootWindow &window);
    bool toMyAccount(RootWindow &window);
    bool toMyAccountError(RootWindow &window);
    bool toAlerts(RootWindow &window);

    void checkPlaces(const RootWindow &window);
    void checkComposition(const RootWindow &window);
    void checkTexts(const RootWindow &window);
    void checkTouchTargets(const RootWindow &window);
    void checkNames(const RootWindow &window);
    void checkTabOrder(const RootWindow &window);

    // In what the program speaks: "de", "fi", "longer" or, when empty, as it is written.
    const QString m_language = qEnvironmentVariable("KAVLOR_SCREENS_LANGUAGE");
    Languages m_languages;
    PaddedTexts m_padded;
    QTemporaryDir m_folder;
    QString m_photo;
};

namespace {

constexpr int touchHeight = 45; // pixels
constexpr int mainButtonHeight = 70;

QString describe(const QWidget *widget)
{
    const QRect place(widget->mapTo(widget->window(), QPoint()), widget->size());
    return QStringLiteral("%1 (%2,%3 %4x%5)")
        .arg(widget->objectName())
        .arg(place.x())
        .arg(place.y())
        .arg(place.width())
        .arg(place.height());
}

bool isInsideAScrollArea(const QWidget *widget);

// Where the widget is in the window. What a scroll area keeps out of sight is nowhere.
QRect placeOf(const QWidget *widget)
{
    const QRect whole(widget->mapTo(widget->window(), QPoint()), widget->size());
    if (!isInsideAScrollArea(widget))
        return whole;
    const QRegion seen = widget->visibleRegion();
    return seen.boundingRect().translated(whole.topLeft());
}

bool isControl(const QWidget *widget)
{
    if (widget->testAttribute(Qt::WA_TransparentForMouseEvents))
        return false; // only shows something, as a progress strip does
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLineEdit *>(widget)
        || qobject_cast<const QAbstractSpinBox *>(widget)
        || qobject_cast<const QPlainTextEdit *>(widget) || qobject_cast<const QTextEdit *>(widget)
        || qobject_cast<const QTableView *>(widget) || qobject_cast<const QTabBar *>(widget);
}

// The inside of a spin box, of a table and of a tab bar belongs to it.
bool isPartOfAControl(const QWidget *widget)
{
    for (const QWidget *above = widget->parentWidget(); above; above = above->parentWidget()) {
        if (isControl(above))
            return true;
    }
    return false;
}

// What a member sees and reads or uses on the screen, outermost only. A line edit that only takes
// the focus away from others is no larger than a pixel.
QList<QWidget *> visibleItems(const RootWindow &window)
{
    QList<QWidget *> items;
    const QList<QWidget *> widgets = window.root()->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (!widget->isVisible() || isPartOfAControl(widget) || widget->width() <= 1)
            continue;
        const auto *label = qobject_cast<QLabel *>(widget);
        const bool says = label && (!label->text().isEmpty() || !label->pixmap().isNull());
        if (isControl(widget) || says)
            items.append(widget);
    }
    return items;
}

QList<QWidget *> visibleControls(const RootWindow &window)
{
    QList<QWidget *> controls;
    for (QWidget *item : visibleItems(window)) {
        if (isControl(item))
            controls.append(item);
    }
    return controls;
}

// The picture of the chosen media lies under the button that chooses it, which is meant.
bool mayOverlap(const QWidget *one, const QWidget *other)
{
    const auto isPreview = [](const QWidget *widget) {
        return widget->objectName() == QLatin1String("photoLabel")
            || widget->objectName() == QLatin1String("photoClicker");
    };
    return isPreview(one) && isPreview(other);
}

// Scrolled to by hand, and so not out of reach.
bool isInsideAScrollArea(const QWidget *widget)
{
    for (const QWidget *above = widget->parentWidget(); above; above = above->parentWidget()) {
        if (qobject_cast<const QAbstractScrollArea *>(above))
            return true;
    }
    return false;
}

// All that the screen says, to the eye and to a screen reader.
QStringList textsOf(const RootWindow &window)
{
    QStringList texts;
    const QList<QWidget *> widgets = window.root()->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const QString name = widget->objectName();
        if (!widget->isVisible() || name.isEmpty() || name.startsWith(QLatin1String("qt_")))
            continue;
        QString said = widgetText(widget);
        if (const auto *tabs = qobject_cast<const QTabWidget *>(widget))
            said = tabs->tabText(0) + tabs->tabText(1);
        texts.append(name + QStringLiteral(": ")
                     + QStringList{said, widget->toolTip(), widget->accessibleName(),
                                   widget->accessibleDescription()}
                           .join(QStringLiteral(" | ")));
    }
    texts.sort();
    // Every window has a service of its own.
    return texts.replaceInStrings(serviceHost(), QStringLiteral("host"));
}

} // namespace

void tst_Screens::initTestCase()
{
    // Where the file dialog opens, as on any desktop.
    QApplication::setCursorFlashTime(0);
    QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)));
    m_photo = m_folder.filePath(QStringLiteral("photo.jpg"));
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(QColor(90, 150, 210));
    QVERIFY(image.save(m_photo, "JPEG"));
    if (m_language == QLatin1String("longer")) {
        QVERIFY(QCoreApplication::installTranslator(&m_padded));
    } else if (!m_language.isEmpty()) {
        QLocale::setDefault(QLocale(m_language));
        m_languages.use(QLocale(m_language));
    }
}

bool tst_Screens::toStart(RootWindow &window)
{
    window.service.expectHeld("GetServiceTerms", "terms");
    window.start();
    // Its first request changes what it says.
    return waitUntil([&] { return !window.service.operations().isEmpty(); })
        && window.find("progressMessage") != nullptr;
}

bool tst_Screens::toWelcome(RootWindow &window)
{
    return window.startAtWelcome();
}

bool tst_Screens::toLogin(RootWindow &window)
{
    return toWelcome(window) && window.click("loginButton")
        && waitUntil([&] { return window.find("linePassword"); });
}

bool tst_Screens::toLoginRefused(RootWindow &window)
{
    window.scriptStart();
    window.service.expect("ValidateLogin", "0");
    window.start();
    return waitUntil([&] { return window.find("createAccountButton"); })
        && window.click("loginButton") && window.type("lineUsername", QStringLiteral("m1"))
        && window.type("linePassword", QStringLiteral("secret")) && window.click("loginButton")
        && waitUntil([&] { return !window.text("labelError").isEmpty(); });
}

bool tst_Screens::toCreateAccount(RootWindow &window)
{
    return toWelcome(window) && window.click("createAccountButton")
        && waitUntil([&] { return window.find("submitButton"); });
}

bool tst_Screens::toCreateAccountError(RootWindow &window)
{
    return toCreateAccount(window) && window.click("submitButton")
        && !window.text("errorLabelText").isEmpty();
}

bool tst_Screens::toTerms(RootWindow &window)
{
    if (!toCreateAccount(window))
        return false;
    auto *tabs = window.find<QTabWidget>("tabWidget");
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
    return window.find("checkTerms") != nullptr;
}

bool tst_Screens::toHome(RootWindow &window)
{
    return window.startAtHome();
}

bool tst_Screens::toUpload(RootWindow &window)
{
    return toHome(window) && window.click("buttonUpload")
        && waitUntil([&] { return window.find("photoClicker"); });
}

bool tst_Screens::toDescription(RootWindow &window)
{
    window.dialogs.chooseFile(m_photo);
    return toUpload(window) && window.click("photoClicker")
        && waitUntil([&] { return window.find("doneButton")->isEnabled(); })
        && window.type("lineCaption", QStringLiteral("Evening at the lake"));
}

bool tst_Screens::toUploadThatWasLeft(RootWindow &window)
{
    return toDescription(window) && window.click("cancelNavigationButton")
        && waitUntil([&] { return window.find("buttonUpload"); }) && window.click("buttonUpload")
        && waitUntil([&] { return window.find("takeUpButton"); });
}

bool tst_Screens::toCategory(RootWindow &window)
{
    return toDescription(window) && window.click("doneButton") && window.find("categoriesTable");
}

bool tst_Screens::toSubcategory(RootWindow &window)
{
    if (!toCategory(window))
        return false;
    auto *table = window.find<QTableView>("categoriesTable");
    const QModelIndex sports = table->model()->index(1, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(sports).center());
    return window.text("categorySelected") == QLatin1String("Sports");
}

bool tst_Screens::toPrices(RootWindow &window)
{
    if (!toSubcategory(window))
        return false;
    auto *table = window.find<QTableView>("categoriesTable");
    const QModelIndex football = table->model()->index(0, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(football).center());
    return waitUntil([&] { return window.find("finalizeButton"); });
}

bool tst_Screens::toConfirm(RootWindow &window)
{
    return toPrices(window) && window.click("finalizeButton")
        && waitUntil([&] { return window.find("createAuctionButton"); });
}

bool tst_Screens::toUploaded(RootWindow &window)
{
    if (!toConfirm(window))
        return false;
    window.service.expect("CreateAuction", "17");
    return window.click("createAuctionButton")
        && waitUntil([&] { return window.find("buttonOk"); });
}

bool tst_Screens::toMyAuctionsWaiting(RootWindow &window)
{
    if (!toHome(window))
        return false;
    window.service.expectHeld("GetMyAuctions", "header\n");
    return window.click("buttonMyKavlor") && waitUntil([&] { return window.service.isHolding(); })
        && window.find("labelPleaseWait");
}

bool tst_Screens::toMyAuctionsEmpty(RootWindow &window)
{
    return toMyAuctionsWaiting(window) && window.service.release() && waitUntil([&] {
               return window.text("labelPleaseWait")
                   == QCoreApplication::translate("CKavlorMyAuctionsController",
                                                  "There is no data to display.");
           });
}

bool tst_Screens::toMyAuctions(RootWindow &window)
{
    if (!toHome(window))
        return false;
    QByteArray list = "header\n";
    for (int id = 1; id <= 30; ++id) {
        list += QByteArray::number(id)
            + ",Evening at the lake with a title that is as long as any,1,40,95,0,"
              "11/30/2026 12:00,0,12345,7,40\n";
    }
    window.service.expect("GetMyAuctions", list);
    ScriptedService::Step thumbnail;
    thumbnail.operation = "GetThumbnail";
    thumbnail.held = true;
    window.service.expect(thumbnail);
    return window.click("buttonMyKavlor") && waitUntil([&] { return window.service.isHolding(); });
}

bool tst_Screens::toPriceChange(RootWindow &window)
{
    if (!toMyAuctions(window))
        return false;
    auto *table = window.find<QTableView>("myAuctionsTable");
    const QModelIndex cell = table->model()->index(0, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(cell).center());
    return waitUntil([&] { return window.find("reservedPrice"); });
}

bool tst_Screens::toSettings(RootWindow &window)
{
    return toHome(window) && window.click("buttonSettings")
        && waitUntil([&] { return window.find("pushButtonMyAccount"); });
}

bool tst_Screens::toMyAccount(RootWindow &window)
{
    return toSettings(window) && window.click("pushButtonMyAccount")
        && waitUntil([&] { return window.find("lineConfirm"); });
}

bool tst_Screens::toMyAccountError(RootWindow &window)
{
    return toMyAccount(window) && window.click("checkBoxPassword")
        && window.type("linePassword", QStringLiteral("other")) && window.click("pushButtonDone")
        && !window.text("errorLabelText").isEmpty();
}

bool tst_Screens::toAlerts(RootWindow &window)
{
    return toSettings(window) && window.click("pushButtonNotifications")
        && waitUntil([&] { return window.find("checkBoxOnBid"); });
}

void tst_Screens::everythingIsInPlace_data()
{
    QTest::addColumn<Way>("way");
    QTest::newRow("start") << &tst_Screens::toStart;
    QTest::newRow("welcome") << &tst_Screens::toWelcome;
    QTest::newRow("login") << &tst_Screens::toLogin;
    QTest::newRow("login refused") << &tst_Screens::toLoginRefused;
    QTest::newRow("create account") << &tst_Screens::toCreateAccount;
    QTest::newRow("create account, error") << &tst_Screens::toCreateAccountError;
    QTest::newRow("terms") << &tst_Screens::toTerms;
    QTest::newRow("home") << &tst_Screens::toHome;
    QTest::newRow("upload") << &tst_Screens::toUpload;
    QTest::newRow("upload that was left") << &tst_Screens::toUploadThatWasLeft;
    QTest::newRow("description") << &tst_Screens::toDescription;
    QTest::newRow("category") << &tst_Screens::toCategory;
    QTest::newRow("sub-category") << &tst_Screens::toSubcategory;
    QTest::newRow("prices") << &tst_Screens::toPrices;
    QTest::newRow("confirmation") << &tst_Screens::toConfirm;
    QTest::newRow("uploaded") << &tst_Screens::toUploaded;
    QTest::newRow("my auctions, waiting") << &tst_Screens::toMyAuctionsWaiting;
    QTest::newRow("my auctions, none") << &tst_Screens::toMyAuctionsEmpty;
    QTest::newRow("my auctions") << &tst_Screens::toMyAuctions;
    QTest::newRow("price change") << &tst_Screens::toPriceChange;
    QTest::newRow("settings") << &tst_Screens::toSettings;
    QTest::newRow("my account") << &tst_Screens::toMyAccount;
    QTest::newRow("my account, error") << &tst_Screens::toMyAccountError;
    QTest::newRow("alerts") << &tst_Screens::toAlerts;
}

void tst_Screens::everythingIsInPlace()
{
    QFETCH(Way, way);
    RootWindow window;
    QVERIFY2((this->*way)(window), window.service.report());
    const QList<CProgressiveModel *> strips = window.root()->findChildren<CProgressiveModel *>();
    for (CProgressiveModel *strip : strips)
        strip->animate(false, 0, 0);
    QImage smallest;
    // A text that fits the smallest window in another language has more room in the others.
    const QList<QSize> sizes = m_language.isEmpty()
        ? QList<QSize>{{800, 424}, {1280, 800}, {1920, 1080}, {800, 424}}
        : QList<QSize>{{800, 424}};
    for (const QSize size : sizes) {
        window.root()->resize(size);
        QTRY_COMPARE(window.root()->size(), size);
        QCoreApplication::processEvents(); // layouts follow
        const QImage picture = window.root()->grab().toImage();
        if (smallest.isNull())
            smallest = picture;
        else if (picture.size() == smallest.size())
            QCOMPARE(pictureDifference(picture, smallest, 0), QString());
        if (qEnvironmentVariableIsSet("KAVLOR_SCREEN_PICTURES")) {
            picture.save(qEnvironmentVariable("KAVLOR_SCREEN_PICTURES")
                         + QStringLiteral("/%1-%2.png")
                               .arg(QLatin1String(QTest::currentDataTag()))
                               .arg(size.width()));
        }
        checkPlaces(window);
        checkComposition(window);
        checkTexts(window);
        checkTouchTargets(window);
        checkNames(window);
        checkTabOrder(window);
        if (QTest::currentTestFailed()) {
            qInfo("at %d x %d", size.width(), size.height());
            return;
        }
    }
}

void tst_Screens::checkPlaces(const RootWindow &window)
{
    const QRect area = window.root()->rect();
    const QList<QWidget *> items = visibleItems(window);
    for (const QWidget *item : items) {
        QVERIFY2(isInsideAScrollArea(item) || area.contains(placeOf(item)),
                 qPrintable(QStringLiteral("outside: ") + describe(item)));
    }
    for (int one = 0; one < items.size(); ++one) {
        for (int other = one + 1; other < items.size(); ++other) {
            const bool apart = !placeOf(items.at(one)).intersects(placeOf(items.at(other)));
            QVERIFY2(apart || mayOverlap(items.at(one), items.at(other)),
                     qPrintable(describe(items.at(one)) + QStringLiteral(" overlaps ")
                                + describe(items.at(other))));
        }
    }
}

// What is shown below the bar makes use of the window's width, and has it on both sides alike.
void tst_Screens::checkComposition(const RootWindow &window)
{
    const QWidget *view = window.find("mainView");
    QRect whole;
    for (const QWidget *item : visibleItems(window)) {
        if (view->isAncestorOf(item))
            whole |= placeOf(item);
    }
    QVERIFY2(whole.width() >= view->width() / 2,
             qPrintable(QStringLiteral("an island of %1 pixels").arg(whole.width())));
    const int offset = qAbs(whole.center().x() - view->rect().center().x());
    QVERIFY2(offset <= view->width() / 40,
             qPrintable(QStringLiteral("%1 pixels beside the middle").arg(offset)));
}

void tst_Screens::checkTexts(const RootWindow &window)
{
    for (const QWidget *item : visibleItems(window)) {
        if (const auto *label = qobject_cast<const QLabel *>(item)) {
            const int needed = label->hasHeightForWidth() ? label->heightForWidth(label->width())
                                                          : label->sizeHint().height();
            QVERIFY2(
                label->height() >= needed,
                qPrintable(QStringLiteral("needs %1 in height: ").arg(needed) + describe(label)));
            QVERIFY2(label->wordWrap() || label->width() >= label->sizeHint().width(),
                     qPrintable(QStringLiteral("needs %1 in width: ").arg(label->sizeHint().width())
                                + describe(label)));
        } else if (const auto *button = qobject_cast<const QAbstractButton *>(item)) {
            // The chooser lies over the preview and has a hint of no use.
            const QSize needed = qobject_cast<const QToolButton *>(button)
                ? button->fontMetrics().size(Qt::TextShowMnemonic, button->text())
                : button->sizeHint();
            QVERIFY2(
                button->width() >= needed.width() && button->height() >= needed.height(),
                qPrintable(QStringLiteral("needs %1x%2: ").arg(needed.width()).arg(needed.height())
                           + describe(button)));
        } else if (const auto *spin = qobject_cast<const QAbstractSpinBox *>(item)) {
            const auto *line = spin->findChild<QLineEdit *>();
            const int needed = line->fontMetrics().horizontalAdvance(spin->text());
            QVERIFY2(
                line->width() >= needed,
                qPrintable(QStringLiteral("needs %1 in width: ").arg(needed) + describe(spin)));
        } else if (const auto *tabs = qobject_cast<const QTabBar *>(item)) {
            QVERIFY2(tabs->width() >= tabs->sizeHint().width(), qPrintable(describe(tabs)));
        }
    }
}

void tst_Screens::checkTouchTargets(const RootWindow &window)
{
    const QStringList mainButtons{
        QStringLiteral("createAccountButton"),
        QStringLiteral("loginButton"),
        QStringLiteral("submitButton"),
        QStringLiteral("buttonUpload"),
        QStringLiteral("buttonMyKavlor"),
        QStringLiteral("buttonSettings"),
        QStringLiteral("pushButtonMyAccount"),
        QStringLiteral("pushButtonNotifications"),
        QStringLiteral("pushButtonDone"),
        QStringLiteral("doneButton"),
        QStringLiteral("finalizeButton"),
        QStringLiteral("createAuctionButton"),
        QStringLiteral("buttonOk"),
        QStringLiteral("done"),
    };
    for (QWidget *control : visibleControls(window)) {
        const qreal scale = RoomScale::of(control);
        const int atScale1 =
            mainButtons.contains(control->objectName()) ? mainButtonHeight : touchHeight;
        // Borders and padding are rounded one by one.
        const int needed = scale > 1 ? static_cast<int>(atScale1 * scale) - 1 : atScale1;
        QVERIFY2(
            control->height() >= needed,
            qPrintable(QStringLiteral("needs %1 in height: ").arg(needed) + describe(control)));
        if (auto *table = qobject_cast<QTableView *>(control)) {
            const bool isList = table->model() && table->model()->rowCount() > 0
                && table->isEnabled() && !table->testAttribute(Qt::WA_TransparentForMouseEvents);
            QVERIFY2(!isList || table->rowHeight(0) >= static_cast<int>(mainButtonHeight * scale),
                     qPrintable(describe(table)));
        }
    }
}

void tst_Screens::checkNames(const RootWindow &window)
{
    QStringList names;
    for (const QWidget *control : visibleControls(window)) {
        if (qobject_cast<const QTabBar *>(control))
            continue; // its tabs name themselves
        const auto *button = qobject_cast<const QAbstractButton *>(control);
        const QString name = control->accessibleName().isEmpty() && button
            ? button->text()
            : control->accessibleName();
        QVERIFY2(!name.isEmpty(), qPrintable(QStringLiteral("no name: ") + describe(control)));
        QVERIFY2(
            !names.contains(name),
            qPrintable(QStringLiteral("named like another: %1 ").arg(name) + describe(control)));
        names.append(name);
    }
}

void tst_Screens::checkTabOrder(const RootWindow &window)
{
    const QList<QWidget *> controls = visibleControls(window);
    QList<QWidget *> order;
    for (QWidget *next = window.root()->nextInFocusChain(); next != window.root();
         next = next->nextInFocusChain()) {
        if (controls.contains(next) && next->isEnabled() && (next->focusPolicy() & Qt::TabFocus))
            order.append(next);
    }
    // Two controls stand in one line when the middle of one is within the height of the other.
    for (int one = 0; one + 1 < order.size(); ++one) {
        const QRect first = placeOf(order.at(one));
        const QRect second = placeOf(order.at(one + 1));
        const bool sameLine =
            (second.center().y() >= first.top() && second.center().y() <= first.bottom())
            || (first.center().y() >= second.top() && first.center().y() <= second.bottom());
        const bool nextColumn = second.left() > first.right();
        const bool ordered =
            sameLine ? second.left() > first.left() : second.top() > first.top() || nextColumn;
        QVERIFY2(ordered,
                 qPrintable(describe(order.at(one)) + QStringLiteral(" comes before ")
                            + describe(order.at(one + 1))));
    }
}

void tst_Screens::everyTextFollowsTheLanguage_data()
{
    everythingIsInPlace_data();
}

// A screen that was there when the language changed says what it says when it comes up in that
// language; what the member has typed is among it.
void tst_Screens::everyTextFollowsTheLanguage()
{
    if (!m_language.isEmpty())
        return; // one run is enough
    QFETCH(Way, way);
    const auto speakEnglishAgain =
        qScopeGuard([this] { m_languages.use(QLocale(QLocale::English)); });
    QStringList english;
    QStringList followed;
    QStringList englishAgain;
    {
        RootWindow window;
        QVERIFY2((this->*way)(window), window.service.report());
        english = textsOf(window);
        m_languages.use(QLocale(QLocale::German));
        QCoreApplication::processEvents();
        followed = textsOf(window);
        m_languages.use(QLocale(QLocale::English));
        QCoreApplication::processEvents();
        englishAgain = textsOf(window);
    }
    m_languages.use(QLocale(QLocale::German));
    RootWindow window;
    QVERIFY2((this->*way)(window), window.service.report());
    const QStringList expected = textsOf(window);
    QCOMPARE(followed, expected);
    QCOMPARE(englishAgain, english);
    QVERIFY(followed != english);
}

KAVLOR_TEST_MAIN(tst_Screens)
#include "tst_screens.moc"
