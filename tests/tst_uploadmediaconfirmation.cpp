// SPDX-License-Identifier: MIT

#include "testcase.h"
#include "testmain.h"
#include "uploadmediaconfirmation.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using Page = CUploadMediaConfirmation;

class tst_UploadMediaConfirmation : public TestCase
{
    Q_OBJECT

private slots:
    void textsAreExact();
    void nextIsTold();
    void theTextFitsTheSmallWindow();
};

void tst_UploadMediaConfirmation::textsAreExact()
{
    const Page page(nullptr);
    QCOMPARE(page.findChild<QLabel *>(QStringLiteral("alertLabel"))->text(),
             QStringLiteral("Your media has been successfully placed in the kavlor auction and we "
                            "are alerting buyers who might be interested. \nKeep up to date on how "
                            "your image is selling. Select next to set notifications."));
    const auto *button = page.findChild<QPushButton *>(QStringLiteral("buttonOk"));
    QCOMPARE(button->text(), QStringLiteral("Next"));
    QCOMPARE(button->property("green"), QVariant(true));
}

void tst_UploadMediaConfirmation::nextIsTold()
{
    Page page(nullptr);
    page.show();
    QSignalSpy next(&page, &Page::nextClicked);
    auto *button = page.findChild<QPushButton *>(QStringLiteral("buttonOk"));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(next.count(), 1);
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(next.count(), 2);
}

void tst_UploadMediaConfirmation::theTextFitsTheSmallWindow()
{
    Page page(nullptr);
    page.resize(500, 336);
    page.show();
    const auto *label = page.findChild<QLabel *>(QStringLiteral("alertLabel"));
    QVERIFY2(label->heightForWidth(label->width()) <= label->height(),
             qPrintable(QStringLiteral("%1 of %2 pixels")
                            .arg(label->heightForWidth(label->width()))
                            .arg(label->height())));
}

KAVLOR_TEST_MAIN(tst_UploadMediaConfirmation)
#include "tst_uploadmediaconfirmation.moc"
