// SPDX-License-Identifier: MIT

#include "navigationcontrolableframe.h"
#include "testcase.h"
#include "testmain.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

class tst_NavigationControlableFrame : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void buttonsAreForwarded();
    void titleAndIconAreShown();
    void anEmptyIconPathHidesTheIconEvenIfOneWasShown();
    void selectorZeroMeansAllFour();
    void eachSelectorMeansItsOwnElement();
    void textsGoToTheirElements();
    void aSelectorOutsideChangesNothing();
    void initialTexts();

private:
    QList<bool> visibility() const;
    QStringList texts() const;

    std::unique_ptr<NavigationControlableFrame> m_bar;
    QPushButton *m_back = nullptr;
    QPushButton *m_cancel = nullptr;
    QLabel *m_icon = nullptr;
    QLabel *m_title = nullptr;
};

void tst_NavigationControlableFrame::init()
{
    TestCase::init();
    m_bar = std::make_unique<NavigationControlableFrame>(nullptr);
    m_back = m_bar->findChild<QPushButton *>(QStringLiteral("backNavigationButton"));
    m_cancel = m_bar->findChild<QPushButton *>(QStringLiteral("cancelNavigationButton"));
    m_icon = m_bar->findChild<QLabel *>(QStringLiteral("labelNavigationIcon"));
    m_title = m_bar->findChild<QLabel *>(QStringLiteral("labelNavigationTitle"));
    QVERIFY(m_back && m_cancel && m_icon && m_title);
    m_bar->resize(800, 80);
    m_bar->show();
}

void tst_NavigationControlableFrame::cleanup()
{
    m_bar.reset();
}

QList<bool> tst_NavigationControlableFrame::visibility() const
{
    return {m_back->isVisible(), m_cancel->isVisible(), m_icon->isVisible(), m_title->isVisible()};
}

QStringList tst_NavigationControlableFrame::texts() const
{
    return {m_back->text(), m_cancel->text(), m_icon->text(), m_title->text()};
}

void tst_NavigationControlableFrame::initialTexts()
{
    QCOMPARE(texts(),
             (QStringList{QStringLiteral("Back"), QStringLiteral("Cancel"), QString(),
                          QStringLiteral("test")}));
    QCOMPARE(m_bar->cancelButton(), m_cancel);
}

void tst_NavigationControlableFrame::buttonsAreForwarded()
{
    QSignalSpy back(m_bar.get(), &NavigationControlableFrame::backClicked);
    QSignalSpy cancel(m_bar.get(), &NavigationControlableFrame::cancelClicked);
    QTest::mouseClick(m_back, Qt::LeftButton);
    QCOMPARE(back.count(), 1);
    QCOMPARE(cancel.count(), 0);
    QTest::mouseClick(m_cancel, Qt::LeftButton);
    QCOMPARE(back.count(), 1);
    QCOMPARE(cancel.count(), 1);
}

void tst_NavigationControlableFrame::titleAndIconAreShown()
{
    m_bar->setTitleAndIcon(QStringLiteral("Upload"), QStringLiteral(":/UploadIcon.png"));
    QCOMPARE(m_title->text(), QStringLiteral("Upload"));
    QVERIFY(m_icon->isVisible());
    QCOMPARE(m_icon->pixmap().deviceIndependentSize().height(), 64.0);
}

void tst_NavigationControlableFrame::anEmptyIconPathHidesTheIconEvenIfOneWasShown()
{
    m_bar->setTitleAndIcon(QStringLiteral("Upload"), QStringLiteral(":/UploadIcon.png"));
    m_bar->setTitleAndIcon(QStringLiteral("Other"), QString());
    QVERIFY(!m_icon->isVisible());
    QCOMPARE(m_title->text(), QStringLiteral("Other"));
}

void tst_NavigationControlableFrame::selectorZeroMeansAllFour()
{
    m_bar->setElementVisible(false, 0);
    QCOMPARE(visibility(), (QList<bool>{false, false, false, false}));
    m_bar->setElementVisible(true, 0);
    QCOMPARE(visibility(), (QList<bool>{true, true, true, true}));
}

void tst_NavigationControlableFrame::eachSelectorMeansItsOwnElement()
{
    m_bar->setElementVisible(true, 0);
    for (int which = 1; which <= 4; ++which) {
        m_bar->setElementVisible(false, which);
        QList<bool> expected{true, true, true, true};
        expected[which - 1] = false;
        QCOMPARE(visibility(), expected);
        m_bar->setElementVisible(true, which);
    }
}

void tst_NavigationControlableFrame::textsGoToTheirElements()
{
    const QStringList names{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three"),
                            QStringLiteral("four")};
    for (int which = 1; which <= 4; ++which)
        m_bar->setElementText(which, names.at(which - 1));
    QCOMPARE(texts(), names);
}

void tst_NavigationControlableFrame::aSelectorOutsideChangesNothing()
{
    m_bar->setElementVisible(true, 0);
    const QStringList before = texts();
    for (const int which : {-1, 5, 100}) {
        m_bar->setElementVisible(false, which);
        m_bar->setElementText(which, QStringLiteral("other"));
    }
    QCOMPARE(visibility(), (QList<bool>{true, true, true, true}));
    QCOMPARE(texts(), before);
    m_bar->setElementText(0, QStringLiteral("other"));
    QCOMPARE(texts(), before);
}

KAVLOR_TEST_MAIN(tst_NavigationControlableFrame)
#include "tst_navigationcontrolableframe.moc"
