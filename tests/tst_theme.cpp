// SPDX-License-Identifier: MIT

#include "contrast.h"
#include "pixels.h"
#include "testcase.h"
#include "testmain.h"
#include "theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QStyleOptionSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>
#include <QToolTip>
#include <memory>

namespace {

const QColor textColour(0, 0, 127);
const QColor hoverColour(239, 255, 53);
const QColor pressedColour(255, 255, 127);
const QColor disabledColour(170, 170, 127);
const QColor focusColour(0, 0, 127);
const QColor orange(249, 167, 31);
const QColor tabBorder(0xc4, 0xc4, 0xc3);

QByteArray name(const QColor &colour)
{
    return colour.name(QColor::HexArgb).toLatin1();
}

/** The widget as it looks on white paper. */
QImage pictureOf(QWidget *widget)
{
    QImage image(widget->size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter(&image).drawPixmap(0, 0, widget->grab());
    return image;
}

/** True when some pixel is bluer than a grey would be. */
bool showsBlue(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.blue() > colour.red() + 8)
                return true;
        }
    }
    return false;
}

/** The colour at @p share of the height inside the border, left of any text. */
QColor sample(const QImage &image, double share)
{
    const int border = 2;
    const int inside = image.height() - 2 * border;
    const int row = border + qMin(static_cast<int>(share * inside), inside - 1);
    return image.pixelColor(8, row);
}

std::unique_ptr<QWidget> makeControl(const QString &kind)
{
    if (kind == QLatin1String("push button"))
        return std::make_unique<QPushButton>(QStringLiteral("Upload"));
    if (kind == QLatin1String("combo box"))
        return std::make_unique<QComboBox>();
    if (kind == QLatin1String("line edit"))
        return std::make_unique<QLineEdit>();
    if (kind == QLatin1String("text edit"))
        return std::make_unique<QPlainTextEdit>();
    if (kind == QLatin1String("text browser"))
        return std::make_unique<QTextBrowser>();
    if (kind == QLatin1String("list"))
        return std::make_unique<QListView>();
    if (kind == QLatin1String("table"))
        return std::make_unique<QTableView>();
    if (kind == QLatin1String("check box"))
        return std::make_unique<QCheckBox>(QStringLiteral("Auction is won"));
    if (kind == QLatin1String("tool button"))
        return std::make_unique<QToolButton>();
    if (kind == QLatin1String("spin box"))
        return std::make_unique<QSpinBox>();
    return nullptr;
}

} // namespace

/** Named as the window that the root's own rule is for. */
class RootViewController : public QFrame
{
    Q_OBJECT
};

class tst_Theme : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void textsAreDarkBlueAtEighteenPoints_data();
    void textsAreDarkBlueAtEighteenPoints();
    void fieldsAreWhiteAndLargeEnough_data();
    void fieldsAreWhiteAndLargeEnough();
    void gradients_data();
    void gradients();
    void buttonTextTellsItsState_data();
    void buttonTextTellsItsState();
    void greenButtonReadsWell();
    void framesLetTheBackgroundThrough();
    void panelPropertyPutsThePanelBehind();
    void errorPropertyMakesTheTextRed();
    void checkBoxShowsItsPicture_data();
    void checkBoxShowsItsPicture();
    void spinBoxHasStepsForAFinger();
    void spinBoxHasRoomForItsLargestPrice();
    void textBrowserHasNoBorder();
    void tabsAreCentredAndTheSelectedOneIsMarked();
    void tabsAreWideEnoughAndRoundAtTheTop();
    void tabUnderTheMouseIsMarked();
    void tableHeaders();
    void toolTips_data();
    void toolTips();
    void rootShowsItsBackgroundInAnySize_data();
    void rootShowsItsBackgroundInAnySize();
    void focusIsSeen_data();
    void focusIsSeen();
    void focusedTabIsSeen();

private:
    /** Puts @p widget into the themed frame, the only thing in it, and shows it. */
    void show(QWidget *widget, const QSize &size);

    std::unique_ptr<QFrame> m_window;
    QLineEdit *m_elsewhere = nullptr; ///< takes the focus from what is looked at
};

void tst_Theme::init()
{
    TestCase::init();
    m_window = std::make_unique<QFrame>();
    m_window->setStyleSheet(themeStyleSheet());
    m_window->resize(600, 400);
    m_elsewhere = new QLineEdit(m_window.get());
    m_elsewhere->move(300, 340);
}

void tst_Theme::cleanup()
{
    QToolTip::hideText();
    m_window.reset();
}

void tst_Theme::show(QWidget *widget, const QSize &size)
{
    widget->setParent(m_window.get());
    widget->setGeometry(QRect(QPoint(20, 20), size));
    widget->show();
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_elsewhere->setFocus();
    QTest::mouseMove(m_elsewhere);
}

void tst_Theme::textsAreDarkBlueAtEighteenPoints_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("bold");

    QTest::newRow("line edit") << QStringLiteral("line edit") << false;
    QTest::newRow("text edit") << QStringLiteral("text edit") << false;
    QTest::newRow("list") << QStringLiteral("list") << false;
    QTest::newRow("check box") << QStringLiteral("check box") << false;
    QTest::newRow("spin box") << QStringLiteral("spin box") << false;
    QTest::newRow("tool button") << QStringLiteral("tool button") << true;
}

void tst_Theme::textsAreDarkBlueAtEighteenPoints()
{
    QFETCH(QString, kind);
    QFETCH(bool, bold);

    const std::unique_ptr<QWidget> control = makeControl(kind);
    show(control.get(), QSize(300, 60));
    QCOMPARE(control->palette().color(control->foregroundRole()), textColour);
    QCOMPARE(control->font().pointSize(), 18);
    QCOMPARE(control->font().bold(), bold);
    QCOMPARE(control->font().families(),
             (QStringList{QStringLiteral("Verdana"), QStringLiteral("Helvetica"),
                          QStringLiteral("Arial")}));
}

void tst_Theme::fieldsAreWhiteAndLargeEnough_data()
{
    QTest::addColumn<QString>("kind");

    QTest::newRow("line edit") << QStringLiteral("line edit");
    QTest::newRow("text edit") << QStringLiteral("text edit");
}

void tst_Theme::fieldsAreWhiteAndLargeEnough()
{
    QFETCH(QString, kind);

    const std::unique_ptr<QWidget> field = makeControl(kind);
    show(field.get(), QSize(1, 1));
    QVERIFY(field->minimumWidth() >= 80);
    QVERIFY(field->minimumHeight() >= 45);
    field->resize(field->minimumSize());

    const QImage image = pictureOf(field.get());
    QCOMPARE(image.pixelColor(image.rect().center()), QColor(Qt::white));
    QVERIFY(image.pixelColor(image.width() / 2, 0) != QColor(Qt::white)); // its border
    QCOMPARE(field->palette().color(QPalette::Highlight), QColor(85, 85, 255));
}

void tst_Theme::gradients_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("green");
    QTest::addColumn<QList<QColor>>("colours");

    const QList<QColor> blue{QColor(103, 156, 214), QColor(54, 120, 193), QColor(58, 124, 195),
                             QColor(37, 107, 185)};
    const QList<QColor> green{QColor(46, 120, 62), QColor(34, 108, 50), QColor(36, 112, 54),
                              QColor(22, 92, 40)};
    QTest::newRow("push button") << QStringLiteral("push button") << false << blue;
    QTest::newRow("combo box") << QStringLiteral("combo box") << false << blue;
    QTest::newRow("list") << QStringLiteral("list") << false << blue;
    QTest::newRow("confirming button") << QStringLiteral("push button") << true << green;
}

void tst_Theme::gradients()
{
    QFETCH(QString, kind);
    QFETCH(bool, green);
    QFETCH(QList<QColor>, colours);

    const std::unique_ptr<QWidget> control = makeControl(kind);
    control->setProperty("green", green);
    show(control.get(), QSize(300, 204));
    QVERIFY(control->minimumWidth() >= 80);
    QVERIFY(control->minimumHeight() >= 45);

    const QImage image = pictureOf(control.get());
    const QList<double> shares{0, 0.45, 0.5, 1};
    for (int stop = 0; stop < shares.size(); ++stop) {
        const QColor found = sample(image, shares.at(stop));
        QVERIFY2(isNear(found, colours.at(stop), 2), name(found).constData());
    }
}

void tst_Theme::buttonTextTellsItsState_data()
{
    QTest::addColumn<bool>("green");

    QTest::newRow("blue") << false;
    QTest::newRow("green") << true;
}

void tst_Theme::buttonTextTellsItsState()
{
    QFETCH(bool, green);

    QPushButton button(QStringLiteral("HILL"));
    button.setProperty("green", green);
    show(&button, QSize(200, 60));
    QCOMPARE(button.font().pointSize(), 18);
    QVERIFY(button.font().bold());

    QVERIFY(showsColour(pictureOf(&button), Qt::white));
    QTest::mouseMove(&button);
    QTRY_VERIFY(showsColour(pictureOf(&button), hoverColour));
    QTest::mousePress(&button, Qt::LeftButton);
    QVERIFY(showsColour(pictureOf(&button), pressedColour));
    QTest::mouseRelease(&button, Qt::LeftButton);
    button.setEnabled(false);
    QVERIFY(showsColour(pictureOf(&button), disabledColour));
    QVERIFY(!showsColour(pictureOf(&button), Qt::white));
}

void tst_Theme::greenButtonReadsWell()
{
    QPushButton button;
    button.setProperty("green", true);
    show(&button, QSize(200, 60));
    const QImage image = pictureOf(&button);
    for (int y = 3; y < image.height() - 3; ++y) {
        const QColor ground = image.pixelColor(8, y);
        for (const QColor &text : {QColor(Qt::white), hoverColour, pressedColour})
            QVERIFY2(contrast(text, ground) >= 4.5, name(ground).constData());
    }
}

void tst_Theme::framesLetTheBackgroundThrough()
{
    QFrame frame;
    show(&frame, QSize(100, 60));

    const QColor behind(1, 2, 3);
    QImage image(m_window->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(behind);
    m_window->render(&image, {}, {}, QWidget::DrawChildren);
    QCOMPARE(image.pixelColor(frame.geometry().center()), behind);
}

void tst_Theme::panelPropertyPutsThePanelBehind()
{
    QFrame plain;
    QFrame panel;
    panel.setProperty("panel", true);
    show(&plain, QSize(100, 60));
    show(&panel, QSize(100, 60));
    plain.move(200, 20);

    QImage image(m_window->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::lightGray);
    m_window->render(&image, {}, {}, QWidget::DrawChildren);
    const QColor ground = image.pixelColor(250, 50);
    const QColor onPanel = image.pixelColor(70, 50);
    QVERIFY(onPanel != ground);
    QVERIFY(luminance(onPanel) > luminance(ground));
}

void tst_Theme::errorPropertyMakesTheTextRed()
{
    QLabel label(QStringLiteral("Email Address is invalid"));
    label.setProperty("error", true);
    show(&label, QSize(300, 40));
    QCOMPARE(label.palette().color(label.foregroundRole()), QColor(200, 29, 4));
}

void tst_Theme::checkBoxShowsItsPicture_data()
{
    QTest::addColumn<bool>("checked");
    QTest::addColumn<QString>("path");

    QTest::newRow("checked") << true << QStringLiteral(":/checkboxMarked.png");
    QTest::newRow("unchecked") << false << QStringLiteral(":/checkboxUnmarked.png");
}

void tst_Theme::checkBoxShowsItsPicture()
{
    QFETCH(bool, checked);
    QFETCH(QString, path);

    QCheckBox box;
    box.setChecked(checked);
    show(&box, QSize(60, 60));

    QStyleOptionButton option;
    option.initFrom(&box);
    const QRect place = box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box);
    QCOMPARE(place.size(), QSize(36, 36));
    const QImage shown = pictureOf(&box).copy(place);
    const QImage wanted = QImage(path).convertToFormat(QImage::Format_ARGB32);
    for (const QPoint &point : {QPoint(18, 3), QPoint(18, 18), QPoint(16, 24), QPoint(22, 17)})
        QVERIFY(isNear(shown.pixelColor(point), wanted.pixelColor(point), 2));
}

void tst_Theme::spinBoxHasStepsForAFinger()
{
    QSpinBox box;
    box.setRange(0, 10);
    box.setValue(5);
    show(&box, QSize(260, 50));

    QStyleOptionSpinBox option;
    option.initFrom(&box);
    option.subControls = QStyle::SC_All;
    const auto place = [&](QStyle::SubControl control) {
        return box.style()->subControlRect(QStyle::CC_SpinBox, &option, control, &box);
    };
    for (const QStyle::SubControl control : {QStyle::SC_SpinBoxUp, QStyle::SC_SpinBoxDown}) {
        QVERIFY(place(control).width() >= 44);
        QVERIFY(place(control).height() >= 44);
        QVERIFY(!place(control).intersects(place(QStyle::SC_SpinBoxEditField)));
        QVERIFY(box.rect().contains(place(control)));
    }
    QVERIFY(!place(QStyle::SC_SpinBoxUp).intersects(place(QStyle::SC_SpinBoxDown)));
    QTest::mouseClick(&box, Qt::LeftButton, {}, place(QStyle::SC_SpinBoxUp).center());
    QCOMPARE(box.value(), 6);
    QTest::mouseClick(&box, Qt::LeftButton, {}, place(QStyle::SC_SpinBoxDown).center());
    QTest::mouseClick(&box, Qt::LeftButton, {}, place(QStyle::SC_SpinBoxDown).center());
    QCOMPARE(box.value(), 4);
}

void tst_Theme::spinBoxHasRoomForItsLargestPrice()
{
    QSpinBox box;
    box.setPrefix(QStringLiteral("USD "));
    box.setRange(0, 999999999);
    show(&box, QSize(1, 1));
    box.resize(box.sizeHint());
    box.setValue(999999999);

    const auto *field = box.findChild<QLineEdit *>();
    QVERIFY(field->width() >= field->fontMetrics().horizontalAdvance(box.text()));
}

void tst_Theme::textBrowserHasNoBorder()
{
    QTextBrowser browser;
    show(&browser, QSize(200, 100));
    const QImage image = pictureOf(&browser);
    QCOMPARE(image.pixelColor(100, 0), QColor(Qt::white));
    QCOMPARE(image.pixelColor(0, 50), QColor(Qt::white));
}

void tst_Theme::tabsAreCentredAndTheSelectedOneIsMarked()
{
    QTabWidget tabs;
    tabs.addTab(new QWidget, QStringLiteral("Account"));
    tabs.addTab(new QWidget, QStringLiteral("Terms"));
    show(&tabs, QSize(500, 200));

    const QRect bar = tabs.tabBar()->geometry();
    QVERIFY(qAbs(bar.left() - (tabs.width() - 1 - bar.right())) <= 2);

    const QImage image = pictureOf(tabs.tabBar());
    QVERIFY(showsColour(image.copy(tabs.tabBar()->tabRect(0)), orange));
    QVERIFY(!showsColour(image.copy(tabs.tabBar()->tabRect(1)), orange));
    const QRect other = tabs.tabBar()->tabRect(1);
    QCOMPARE(image.pixelColor(other.left() + 5, other.top() + 6), QColor(Qt::white));
    QVERIFY(showsColour(image.copy(tabs.tabBar()->tabRect(0)), QColor(0x9b, 0x9b, 0x9b)));
    QVERIFY(showsColour(image.copy(other), tabBorder));

    // The selected tab is open towards the page.
    const QRect selected = tabs.tabBar()->tabRect(0);
    for (int y = selected.bottom() - 1; y <= selected.bottom(); ++y) {
        QVERIFY(isNear(image.pixelColor(selected.center().x(), y), Qt::white));
        QVERIFY(isNear(image.pixelColor(other.center().x(), y), tabBorder));
    }

    const QImage whole = pictureOf(&tabs);
    const QColor paneBorder(0xc2, 0xc7, 0xcb);
    QVERIFY(isNear(whole.pixelColor(4, bar.bottom() + 1), paneBorder));
    QVERIFY(isNear(whole.pixelColor(4, bar.bottom() + 2), paneBorder));
    QVERIFY(isNear(whole.pixelColor(4, bar.bottom() + 3), Qt::white));
    QCOMPARE(whole.pixelColor(250, 150), QColor(Qt::white));
}

void tst_Theme::tabsAreWideEnoughAndRoundAtTheTop()
{
    QTabWidget tabs;
    tabs.addTab(new QWidget, QStringLiteral("Account"));
    tabs.addTab(new QWidget, QStringLiteral("A"));
    show(&tabs, QSize(500, 200));

    // On each side of the text two pixels of border and two of padding.
    const int frame = 2 * (2 + 2);
    const QSize text = tabs.tabBar()->fontMetrics().size(0, QStringLiteral("Account"));
    const int narrowest = 8 * QFontMetrics(QApplication::font()).xHeight();
    const QTabBar *bar = tabs.tabBar();
    QCOMPARE(bar->tabRect(0).size(), text + QSize(frame, frame));
    QCOMPARE(bar->tabRect(1).width(), narrowest + frame);

    const QImage whole = pictureOf(&tabs);
    const QColor ground = whole.pixelColor(2, 2);
    const QRect tab = bar->tabRect(1).translated(bar->pos());
    const int middle = tab.center().x();
    QVERIFY(isNear(whole.pixelColor(middle, tab.top()), tabBorder));
    QVERIFY(isNear(whole.pixelColor(middle, tab.top() + 1), tabBorder));
    QVERIFY(isNear(whole.pixelColor(middle, tab.top() + 2), Qt::white));
    for (const QPoint &corner : {tab.topLeft(), tab.topRight()}) {
        const QPoint inwards(corner == tab.topLeft() ? 1 : -1, 1);
        QVERIFY2(isNear(whole.pixelColor(corner), ground),
                 name(whole.pixelColor(corner)).constData());
        QVERIFY2(isNear(whole.pixelColor(corner + inwards), tabBorder),
                 name(whole.pixelColor(corner + inwards)).constData());
    }
    QVERIFY(isNear(whole.pixelColor(tab.bottomLeft()), tabBorder));
    QVERIFY(isNear(whole.pixelColor(tab.bottomRight()), tabBorder));
}

void tst_Theme::tabUnderTheMouseIsMarked()
{
    QTabWidget tabs;
    tabs.addTab(new QWidget, QStringLiteral("Account"));
    tabs.addTab(new QWidget, QStringLiteral("HILL"));
    show(&tabs, QSize(500, 200));

    const QRect second = tabs.tabBar()->tabRect(1);
    QTest::mouseMove(tabs.tabBar(), second.center());
    QTRY_VERIFY(showsColour(pictureOf(tabs.tabBar()).copy(second), orange));
    QVERIFY(showsColour(pictureOf(tabs.tabBar()).copy(second), QColor(54, 123, 159)));
}

void tst_Theme::tableHeaders()
{
    QStandardItemModel model(1, 2);
    model.setHorizontalHeaderLabels({QStringLiteral("HILL"), QStringLiteral("Info")});
    QTableView table;
    table.setModel(&model);
    show(&table, QSize(400, 200));

    table.horizontalHeader()->setFixedHeight(102);
    table.horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const QImage image = pictureOf(table.horizontalHeader());
    const QList<QPair<double, int>> stops{{0, 0x61}, {0.5, 0x50}, {0.6, 0x43}, {0.99, 0x65}};
    for (const auto &[share, grey] : stops) {
        const QColor found = image.pixelColor(3, 1 + static_cast<int>(share * 100));
        QVERIFY2(isNear(found, QColor(grey, grey, grey), 2), name(found).constData());
    }
    QVERIFY(showsColour(image, QColor(0x6c, 0x6c, 0x6c)));
    QVERIFY(showsColour(image, textColour));

    // The text begins behind one pixel of border and four of padding.
    const QFontMetrics metrics = table.horizontalHeader()->fontMetrics();
    const int begin = 1 + 4 + metrics.leftBearing(QLatin1Char('H'));
    int first = 0;
    while (!showsBlue(image.copy(first, 1, 1, 100)))
        ++first;
    QVERIFY2(qAbs(first - begin) <= 1, QByteArray::number(first).constData());
}

void tst_Theme::toolTips_data()
{
    QTest::addColumn<QString>("sheet");

    QTest::newRow("bars") << rootStyleSheet();
    QTest::newRow("frames") << themeStyleSheet();
}

void tst_Theme::toolTips()
{
    QFETCH(QString, sheet);

    m_window->setStyleSheet(sheet);
    QPushButton button(QStringLiteral("Upload"));
    show(&button, QSize(200, 60));
    QTest::ignoreMessage(QtWarningMsg, "This plugin does not support raise()");
    QToolTip::showText(button.mapToGlobal(QPoint(10, 10)), QStringLiteral("HILL"), &button);
    QWidget *tip = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            tip = widget;
    }
    if (!tip)
        QFAIL("no tool tip");
    QCOMPARE(tip->font().pointSize(), 17);
    QCOMPARE(tip->palette().color(QPalette::ToolTipText), QColor(20, 30, 197));

    // Two pixels of border and two of padding.
    QCOMPARE(tip->contentsMargins(), QMargins(4, 4, 4, 4));

    QImage image(tip->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    tip->render(&image, {}, {}, QWidget::DrawChildren);
    const QColor border(170, 170, 255);
    const int middle = image.width() / 2;
    QVERIFY(isNear(image.pixelColor(middle, 0), border));
    QVERIFY(isNear(image.pixelColor(middle, 1), border));
    QVERIFY(!isNear(image.pixelColor(middle, 2), border));
    // Outside of the round corner only the ground itself is there, which is not quite opaque.
    QVERIFY(isNear(image.pixelColor(1, 1), border));
    const QColor corner = tip->grab().toImage().pixelColor(0, 0);
    QVERIFY2(isNear(corner, QColor(229, 231, 100)), name(corner).constData());
    QVERIFY2(qAbs(corner.alpha() - 228) <= 2, name(corner).constData());

    const QColor ground = image.pixelColor(image.width() - 5, image.height() / 2);
    QVERIFY2(isNear(ground, QColor(229, 231, 100), 5), name(ground).constData());
    QVERIFY(contrast(QColor(20, 30, 197), ground) >= 4.5);
}

void tst_Theme::rootShowsItsBackgroundInAnySize_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("handheld") << QSize(800, 424);
    QTest::newRow("desktop") << QSize(1920, 1080);
}

void tst_Theme::rootShowsItsBackgroundInAnySize()
{
    QFETCH(QSize, size);

    RootViewController root;
    root.setStyleSheet(rootStyleSheet());
    root.resize(size);
    const QImage shown = pictureOf(&root);
    const QImage wanted = QImage(QStringLiteral(":/Background.png")).scaled(size);
    for (const QPoint &point : {QPoint(5, 5), QPoint(size.width() / 2, size.height() / 2),
                                QPoint(size.width() - 5, size.height() - 5)}) {
        QVERIFY2(isNear(shown.pixelColor(point), wanted.pixelColor(point), 3),
                 name(shown.pixelColor(point)).constData());
    }
}

void tst_Theme::focusIsSeen_data()
{
    QTest::addColumn<QString>("kind");

    for (const char *kind : {"push button", "combo box", "line edit", "text edit", "text browser",
                             "list", "table", "check box", "tool button", "spin box"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_Theme::focusIsSeen()
{
    QFETCH(QString, kind);

    const std::unique_ptr<QWidget> control = makeControl(kind);
    control->setFocusPolicy(Qt::StrongFocus);
    show(control.get(), QSize(240, 80));
    const QPoint edge(120, 0);
    const QPoint onWindow = control->mapTo(m_window.get(), edge);
    const QColor before = pictureOf(m_window.get()).pixelColor(onWindow);
    control->setFocus();
    QTRY_VERIFY(control->hasFocus());
    const QColor after = pictureOf(m_window.get()).pixelColor(onWindow);
    QCOMPARE(after, focusColour);
    QVERIFY2(contrast(before, after) >= 3, name(before).constData());
}

void tst_Theme::focusedTabIsSeen()
{
    QTabWidget tabs;
    tabs.addTab(new QWidget, QStringLiteral("Account"));
    tabs.addTab(new QWidget, QStringLiteral("Terms"));
    show(&tabs, QSize(500, 200));
    const QPoint edge(tabs.tabBar()->tabRect(0).center().x(), tabs.tabBar()->tabRect(0).top());
    QVERIFY(pictureOf(tabs.tabBar()).pixelColor(edge) != focusColour);
    tabs.tabBar()->setFocus();
    QTRY_COMPARE(pictureOf(tabs.tabBar()).pixelColor(edge), focusColour);
}

KAVLOR_TEST_MAIN(tst_Theme)
#include "tst_theme.moc"
