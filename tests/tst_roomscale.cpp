// SPDX-License-Identifier: MIT

#include "framearea.h"
#include "navigationcontrolableframe.h"
#include "picturecomparison.h"
#include "roomscale.h"
#include "testcase.h"
#include "testmain.h"
#include "theme.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <cmath>

/** A form in an area of a window, as a frame of the program is. */
class Form : public QFrame
{
public:
    explicit Form(FrameArea *window, const QSize &largest = {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX})
        : QFrame(window)
        , grid(new QGridLayout(this))
        , line(new QLineEdit(QStringLiteral("text")))
        , button(new QPushButton(QStringLiteral("Go")))
        , picture(new QLabel)
    {
        setStyleSheet(themeStyleSheet());
        grid->setContentsMargins(10, 20, 30, 40);
        grid->setHorizontalSpacing(6);
        grid->setVerticalSpacing(8);
        grid->addWidget(line, 0, 0);
        grid->addWidget(button, 0, 1);
        grid->addWidget(picture, 1, 0);
        line->setMaximumWidth(300);
        picture->setMinimumSize(200, 140);
        button->setIcon(QIcon(QStringLiteral(":/UploadIcon.png")));
        button->setIconSize({48, 48});
        scale = new RoomScale(this, largest);
        scale->setPicture(picture, QStringLiteral(":/UserIcon.png"), 128);
    }

    QGridLayout *grid;
    QLineEdit *line;
    QPushButton *button;
    QLabel *picture;
    RoomScale *scale = nullptr;
};

class tst_RoomScale : public TestCase
{
    Q_OBJECT

private slots:
    void scaleOfAWindow_data();
    void scaleOfAWindow();
    void whatFitsTheSmallestWindowFitsEvery();
    void styleSheetsGrow_data();
    void styleSheetsGrow();
    void everyLengthOfAFormGrows();
    void aWindowThatComesBackLooksAsBefore();
    void theContentStaysInTheMiddle();
    void whatAFrameMeasuresByItselfFollows();
    void whatHasGoneIsLeftOut();
    void aBarThatComesLaterHasTheScaleOfItsWindow();
};

void tst_RoomScale::scaleOfAWindow_data()
{
    QTest::addColumn<QSize>("window");
    QTest::addColumn<double>("scale");
    QTest::newRow("none yet") << QSize(0, 0) << 1.0;
    QTest::newRow("smaller") << QSize(640, 400) << 1.0;
    QTest::newRow("handheld") << QSize(800, 424) << 1.0;
    QTest::newRow("its whole screen") << QSize(800, 480) << 1.0;
    QTest::newRow("tall") << QSize(800, 2000) << 1.0;
    QTest::newRow("wide") << QSize(3000, 424) << 1.0;
    QTest::newRow("laptop") << QSize(1280, 800) << 1.25;
    QTest::newRow("desktop") << QSize(1920, 1080) << 1.6;
    QTest::newRow("a pixel less") << QSize(1919, 1080) << 1.55;
    QTest::newRow("larger still") << QSize(3840, 2160) << 1.6;
}

void tst_RoomScale::scaleOfAWindow()
{
    QFETCH(QSize, window);
    QFETCH(double, scale);
    QCOMPARE(RoomScale::forWindow(window), scale);
}

void tst_RoomScale::whatFitsTheSmallestWindowFitsEvery()
{
    for (int width = 800; width <= 2400; width += 7) {
        for (int height = 424; height <= 1400; height += 11) {
            const qreal scale = RoomScale::forWindow({width, height});
            QVERIFY(800 * scale <= width && 424 * scale <= height);
            QVERIFY(scale >= 1 && scale <= 1.6);
            // In few steps, since each costs a layout of everything.
            QVERIFY(qAbs(scale * 20 - std::round(scale * 20)) < 1e-6);
        }
    }
}

void tst_RoomScale::styleSheetsGrow_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("grown");
    const auto row = [](const char *name, const char *sheet, double scale, const char *grown) {
        QTest::newRow(name) << QString::fromLatin1(sheet) << scale << QString::fromLatin1(grown);
    };
    row("not at 1", "a { min-height: 45px; font: 18pt; }", 1,
        "a { min-height: 45px; font: 18pt; }");
    row("pixels", "min-height: 45px; padding: 0 10px;", 1.6, "min-height: 72px; padding: 0 16px;");
    row("points", "font-size: 18pt; font: bold 13pt \"A\";", 1.5,
        "font-size: 27.00pt; font: bold 19.50pt \"A\";");
    row("a hair's breadth", "border: 1px solid #6c6c6c;", 1.6, "border: 1px solid #6c6c6c;");
    row("other numbers", "stop: 0.45 rgb(54, 120, 193); min-width: 8ex", 1.6,
        "stop: 0.45 rgb(54, 120, 193); min-width: 8ex");
    row("a picture drawn twice", "image: url(\":/checkboxMarked.png\");", 1.6,
        "image: url(\":/large/checkboxMarked.png\");");
    row("a picture drawn once", "border-image: url(:/Header.png) 0 0 0 0;", 1.6,
        "border-image: url(:/Header.png) 0 0 0 0;");
}

void tst_RoomScale::styleSheetsGrow()
{
    QFETCH(QString, sheet);
    QFETCH(double, scale);
    QFETCH(QString, grown);
    QCOMPARE(RoomScale::styleSheet(sheet, scale), grown);
}

void tst_RoomScale::everyLengthOfAFormGrows()
{
    FrameArea window;
    window.resize(800, 424);
    Form form(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(form.line->fontInfo().pointSizeF(), 18.0);
    QCOMPARE(form.grid->contentsMargins(), QMargins(10, 20, 30, 40));

    window.resize(1920, 1080);
    QTRY_COMPARE(form.size(), QSize(1920, 1080));
    QCOMPARE(form.grid->contentsMargins(), QMargins(16, 32, 48, 64));
    QCOMPARE(form.grid->horizontalSpacing(), 10);
    QCOMPARE(form.grid->verticalSpacing(), 13);
    QCOMPARE(form.line->maximumWidth(), 480);
    QCOMPARE(form.button->iconSize(), QSize(77, 77));
    QCOMPARE(form.picture->minimumSize(), QSize(320, 224));
    QVERIFY(form.line->height() >= 72);
    QVERIFY(qAbs(form.line->font().pointSizeF() - 28.8) < 0.1);
    QCOMPARE(form.picture->pixmap().deviceIndependentSize().toSize().height(), 205);
}

void tst_RoomScale::aWindowThatComesBackLooksAsBefore()
{
    FrameArea window;
    window.resize(800, 424);
    Form form(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QImage before = form.grab().toImage();
    for (int step = 0; step <= 30; ++step)
        window.resize(800 + step * 60, 424 + step * 30);
    QTRY_COMPARE(RoomScale::of(&form), 1.6);
    window.resize(800, 424);
    QTRY_COMPARE(form.grab().toImage().size(), before.size());
    QCoreApplication::processEvents();
    QCOMPARE(pictureDifference(form.grab().toImage(), before, 0), QString());
}

void tst_RoomScale::theContentStaysInTheMiddle()
{
    FrameArea window;
    window.resize(800, 424);
    Form form(&window, QSize(1000, 500));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.resize(1920, 1080); // 320 more than 1.6 times the content's width, and 280 of its height
    QTRY_COMPARE(form.grid->contentsMargins(), QMargins(16 + 160, 32 + 140, 48 + 160, 64 + 140));
    window.resize(800, 424);
    QTRY_COMPARE(form.grid->contentsMargins(), QMargins(10, 20, 30, 40));
}

void tst_RoomScale::whatAFrameMeasuresByItselfFollows()
{
    FrameArea window;
    window.resize(800, 424);
    Form form(&window);
    QList<qreal> scales;
    form.scale->apply([&scales](qreal scale) { scales.append(scale); });
    QCOMPARE(scales, QList<qreal>{1});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.resize(1280, 800);
    QTRY_COMPARE(scales, (QList<qreal>{1, 1.25}));
    window.resize(1281, 801); // no other step
    QTRY_COMPARE(form.width(), 1281);
    window.resize(1920, 1080);
    QTRY_COMPARE(scales, (QList<qreal>{1, 1.25, 1.6}));
}

void tst_RoomScale::whatHasGoneIsLeftOut()
{
    FrameArea window;
    window.resize(800, 424);
    Form form(&window);
    auto *row = new QHBoxLayout;
    form.grid->addLayout(row, 1, 1);
    new RoomScale(&form); // which knows the row as well
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    delete form.button;
    delete form.picture;
    delete row;
    window.resize(1920, 1080);
    QTRY_COMPARE(form.line->maximumWidth(), 480);
}

void tst_RoomScale::aBarThatComesLaterHasTheScaleOfItsWindow()
{
    QWidget window;
    window.resize(1920, 1080);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    NavigationControlableFrame bar(&window);
    bar.setTitleAndIcon(QStringLiteral("Upload"), QStringLiteral(":/UploadIcon.png"));
    const auto *icon = bar.findChild<QLabel *>(QStringLiteral("labelNavigationIcon"));
    QCOMPARE(icon->pixmap().deviceIndependentSize().toSize(), QSize(102, 102));
}

KAVLOR_TEST_MAIN(tst_RoomScale)
#include "tst_roomscale.moc"
