// SPDX-License-Identifier: MIT

#include "framecreateaccount.h"
#include "framestage.h"
#include "kavlornotificationoptions.h"
#include "modifyaccountcontroller.h"
#include "notificationscontroller.h"
#include "testcase.h"
#include "testmain.h"

#include <QCheckBox>
#include <QSignalSpy>
#include <QTabWidget>

/** Every check box of the program answers on its whole row. */
class tst_RowCheckBox : public TestCase
{
    Q_OBJECT

private slots:
    void answersOnItsWholeRow_data();
    void answersOnItsWholeRow();

private:
    using Form = QFrame *(tst_RowCheckBox::*)(FrameStage &, CKavlorUser *);
    QFrame *alerts(FrameStage &stage, CKavlorUser *user);
    QFrame *account(FrameStage &stage, CKavlorUser *user);
    QFrame *terms(FrameStage &stage, CKavlorUser *user);

    CKavlorNotificationOptions m_options{nullptr};
};

QFrame *tst_RowCheckBox::alerts(FrameStage &stage, CKavlorUser *user)
{
    return new CNotificationsController(user, &m_options, stage.area());
}

QFrame *tst_RowCheckBox::account(FrameStage &stage, CKavlorUser *user)
{
    return new CModifyAccountController(user, stage.area());
}

QFrame *tst_RowCheckBox::terms(FrameStage &stage, CKavlorUser *user)
{
    stage.service.expect("GetServiceTerms", "terms");
    auto *frame = new FrameCreateAccount(&stage.settings, user, stage.area());
    frame->findChild<QTabWidget *>()->setCurrentIndex(1);
    return frame;
}

void tst_RowCheckBox::answersOnItsWholeRow_data()
{
    QTest::addColumn<Form>("form");
    QTest::addColumn<int>("count");
    QTest::newRow("alerts") << &tst_RowCheckBox::alerts << 4;
    QTest::newRow("account") << &tst_RowCheckBox::account << 3;
    QTest::newRow("terms") << &tst_RowCheckBox::terms << 1;
}

void tst_RowCheckBox::answersOnItsWholeRow()
{
    QFETCH(const Form, form);
    QFETCH(const int, count);

    FrameStage stage;
    CKavlorUser user(&stage.settings, nullptr, true, memberFields());
    QFrame *frame = (this->*form)(stage, &user);
    QVERIFY(stage.show(frame));
    const QList<QCheckBox *> boxes = frame->findChildren<QCheckBox *>();
    QCOMPARE(boxes.size(), count);
    for (QCheckBox *box : boxes) {
        QTRY_VERIFY(box->isEnabled());
        QVERIFY(box->height() >= 45);
        QSignalSpy clicked(box, &QCheckBox::clicked);
        const QRect row = box->rect().adjusted(3, 3, -4, -4);
        const QPoint places[] = {row.topLeft(), row.bottomLeft(), row.topRight(), row.bottomRight(),
                                 row.center()};
        for (const QPoint &place : places)
            QTest::mouseClick(box, Qt::LeftButton, {}, place);
        QCOMPARE(clicked.size(), 5);
    }
}

KAVLOR_TEST_MAIN(tst_RowCheckBox)
#include "tst_rowcheckbox.moc"
