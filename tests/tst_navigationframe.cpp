// SPDX-License-Identifier: MIT

#include "navigationframe.h"
#include "smallpixmapcache.h"
#include "testcase.h"
#include "testmain.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

class tst_NavigationFrame : public TestCase
{
    Q_OBJECT

private slots:
    void startsAsTold_data();
    void startsAsTold();
    void welcomeTextIsShown();
    void theStripHasThreeCellsAndStartsInTheFirst();
    void theStripIsShownAndHidden();
    void theStripIsRepaintedAtEachStep();
    void theStripLeavesThePixmapCacheToOthers();
    void theStripIsJustLargeEnough();
    void hasTheLogo();
};

namespace {

class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }

    int count() const
    {
        return m_count;
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_count;
        return false;
    }

private:
    int m_count = 0;
};

template <typename Widget>
Widget *child(const QWidget &parent, const char *name)
{
    return parent.findChild<Widget *>(QLatin1String(name));
}

} // namespace

void tst_NavigationFrame::startsAsTold_data()
{
    QTest::addColumn<bool>("showCancel");
    QTest::addColumn<bool>("showProgress");
    QTest::newRow("neither") << false << false;
    QTest::newRow("cancel") << true << false;
    QTest::newRow("progress") << false << true;
    QTest::newRow("both") << true << true;
}

void tst_NavigationFrame::startsAsTold()
{
    QFETCH(bool, showCancel);
    QFETCH(bool, showProgress);
    NavigationFrame bar(nullptr, showCancel, showProgress);
    bar.show();
    QCOMPARE(bar.cancelButton()->isVisible(), showCancel);
    QCOMPARE(child<QTableView>(bar, "progressBar")->isVisible(), showProgress);
    QCOMPARE(bar.cancelButton()->objectName(), QStringLiteral("cancelNavigationButton"));
    QCOMPARE(bar.cancelButton()->text(), QStringLiteral("Cancel"));
    QCOMPARE(child<QLabel>(bar, "labelWelcomeTo")->text(), QStringLiteral("Welcome to"));
}

void tst_NavigationFrame::welcomeTextIsShown()
{
    NavigationFrame bar(nullptr, false, false);
    bar.setWelcomeText(QStringLiteral("Please login to "));
    QCOMPARE(child<QLabel>(bar, "labelWelcomeTo")->text(), QStringLiteral("Please login to "));
}

void tst_NavigationFrame::theStripHasThreeCellsAndStartsInTheFirst()
{
    NavigationFrame bar(nullptr, false, true);
    const QAbstractItemModel *model = child<QTableView>(bar, "progressBar")->model();
    QCOMPARE(model->columnCount(), 3);
    const auto picture = [model](int column) {
        return model->data(model->index(0, column), Qt::DecorationRole).value<QImage>();
    };
    QVERIFY(picture(0) != picture(1));
    QCOMPARE(picture(1), picture(2));
}

void tst_NavigationFrame::theStripIsShownAndHidden()
{
    NavigationFrame bar(nullptr, false, false);
    bar.show();
    bar.setProgressVisible(true);
    QVERIFY(child<QTableView>(bar, "progressBar")->isVisible());
    bar.setProgressVisible(false);
    QVERIFY(!child<QTableView>(bar, "progressBar")->isVisible());
}

void tst_NavigationFrame::theStripIsRepaintedAtEachStep()
{
    NavigationFrame bar(nullptr, false, true);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    auto *strip = child<QTableView>(bar, "progressBar");
    PaintCounter paints(strip->viewport());
    QSignalSpy steps(strip->model(), SIGNAL(occuredTimerEvent()));
    bar.progressAnimation(true, 1, 0);
    QTRY_VERIFY(steps.count() >= 3);
    bar.progressAnimation(false, 1, 0);
    QVERIFY(paints.count() >= steps.count());
}

void tst_NavigationFrame::theStripLeavesThePixmapCacheToOthers()
{
    NavigationFrame bar(nullptr, false, true);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    const SmallPixmapCache cache;
    constexpr int steps = 200;
    for (int step = 0; step < steps; ++step)
        child<QTableView>(bar, "progressBar")->viewport()->repaint();
    QVERIFY(cache.isLeftToOthers());
}

void tst_NavigationFrame::theStripIsJustLargeEnough()
{
    NavigationFrame bar(nullptr, false, true);
    bar.resize(800, 80);
    bar.show();
    const auto *strip = child<QTableView>(bar, "progressBar");
    const QImage cell =
        strip->model()->data(strip->model()->index(0, 0), Qt::DecorationRole).value<QImage>();
    QVERIFY(strip->width() >= 3 * cell.width());
    QVERIFY(strip->height() >= cell.height());
    QVERIFY(strip->width() < 200);
    QVERIFY(strip->height() <= 80);
}

void tst_NavigationFrame::hasTheLogo()
{
    NavigationFrame bar(nullptr, false, false);
    QCOMPARE(child<QLabel>(bar, "labelSmallestLogo")->pixmap().toImage(),
             QPixmap(QStringLiteral(":/Kavlor Logo Smallest.png")).toImage());
    QVERIFY(!child<QLabel>(bar, "labelSmallestLogo")->pixmap().isNull());
}

KAVLOR_TEST_MAIN(tst_NavigationFrame)
#include "tst_navigationframe.moc"
