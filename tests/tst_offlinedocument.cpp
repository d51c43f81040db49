// SPDX-License-Identifier: MIT

#include "auctionrecord.h"
#include "framecreateaccount.h"
#include "framestage.h"
#include "kavlorauctionconfirm.h"
#include "offlinedocument.h"
#include "testcase.h"
#include "testmain.h"

#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHelpEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScopeGuard>
#include <QTabWidget>
#include <QTextBlock>
#include <QTimer>
#include <QToolTip>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

/** What a service, or the name of a photo, can do with markup: nothing but set its own text. */
class tst_OfflineDocument : public TestCase
{
    Q_OBJECT

private slots:
    void termsLoadNothing_data();
    void termsLoadNothing();
    void summaryLoadsNothing();
    void termsAreHtml();
    void largeOrDeepTermsArePlainText_data();
    void largeOrDeepTermsArePlainText();
    void elementsWithoutEndsAreNotDeep();
    void linksAreNotFollowed();
    void toolTipsAreNoMarkup();
    void shortLinesKeepTheText();
    void longTextWithoutBlanksIsBrokenInTime();
};

namespace {

// A pipe that has something in it for whoever opens it, and then keeps them waiting.
class Bait
{
public:
    explicit Bait(const QString &path)
        : m_bytes("p{color:#ff0000}")
    {
        const QByteArray name = QFile::encodeName(path);
        m_made = mkfifo(name.constData(), 0600) == 0;
        m_pipe = ::open(name.constData(), O_RDWR | O_NONBLOCK);
        m_made =
            m_made && ::write(m_pipe, m_bytes.constData(), static_cast<size_t>(m_bytes.size())) > 0;
    }
    ~Bait()
    {
        ::close(m_pipe);
    }
    Q_DISABLE_COPY_MOVE(Bait)

    bool isUntouched() const
    {
        int waiting = 0;
        return m_made && ioctl(m_pipe, FIONREAD, &waiting) == 0 && waiting == m_bytes.size();
    }

private:
    QByteArray m_bytes;
    bool m_made = false;
    int m_pipe = -1;
};

// The terms as the frame shows them.
class Terms
{
public:
    bool show(const QByteArray &reply)
    {
        stage.service.expectHeld("GetServiceTerms", reply);
        if (!stage.show(&frame))
            return false;
        frame.findChild<QTabWidget *>()->setCurrentIndex(1);
        if (!waitUntil([this] { return stage.service.isHolding(); }))
            return false;
        stage.service.release();
        const auto *accepted = frame.findChild<QCheckBox *>();
        const bool shown = QTest::qWaitFor([accepted] { return accepted->isEnabled(); }, 60000);
        edit->grab();
        return shown;
    }

    FrameStage stage;
    CKavlorUser user{&stage.settings, nullptr, false, CKavlorUser::defaultFields()};
    FrameCreateAccount frame{&stage.settings, &user, stage.area()};
    QPlainTextEdit *edit = frame.findChild<QPlainTextEdit *>();
};

QByteArray table(int depth)
{
    return QByteArray("<table><tr><td>").repeated(depth) + "x"
        + QByteArray("</td></tr></table>").repeated(depth);
}

} // namespace

void tst_OfflineDocument::termsLoadNothing_data()
{
    QTest::addColumn<QByteArray>("markup");
    QTest::newRow("style sheet") << QByteArray("<html><head><link rel=stylesheet type='text/css' "
                                               "href='%1'></head><body><p>terms</p></body>");
    QTest::newRow("import") << QByteArray("<style>@import url('%1');</style><p>terms</p>");
    QTest::newRow("picture") << QByteArray("<p>terms<img src='%1'></p>");
    QTest::newRow("background") << QByteArray("<p style=\"background-image:url('%1')\">terms</p>");
    QTest::newRow("background of a body")
        << QByteArray("<body background='%1'><p>terms</p></body>");
    QTest::newRow("background of a cell")
        << QByteArray("<table><tr><td background='%1'><p>terms</p></td></tr></table>");
    QTest::newRow("list mark") << QByteArray(
        "<ul style=\"list-style-image:url('%1')\"><li>terms</ul>");
}

void tst_OfflineDocument::termsLoadNothing()
{
    QFETCH(QByteArray, markup);

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("bait"));
    const Bait bait(path);
    QVERIFY(bait.isUntouched());
    for (const QByteArray &url : {QFile::encodeName(path), "file://" + QFile::encodeName(path)}) {
        Terms shown;
        QVERIFY(shown.show(QByteArray(markup).replace("%1", url)));
        const QString text = shown.edit->toPlainText();
        QVERIFY2(text.contains(QLatin1String("terms")) && !text.contains(QLatin1Char('<')),
                 qPrintable(text));
        QVERIFY(bait.isUntouched());
    }
}

void tst_OfflineDocument::summaryLoadsNothing()
{
    FrameStage stage;
    const QString folder = QDir::currentPath();
    const auto back = qScopeGuard([folder] { QDir::setCurrent(folder); });
    QVERIFY(QDir::setCurrent(stage.folder.path()));
    const Bait bait(stage.folder.filePath(QStringLiteral("bait")));
    CAuctionRecord record;
    record.mediaPath = QStringLiteral("/home/user/<img src=bait>.jpg");
    auto *page = new CKavlorAuctionConfirm(&record, stage.area());
    QVERIFY(stage.show(page));
    page->grab();
    QVERIFY(bait.isUntouched());
}

void tst_OfflineDocument::termsAreHtml()
{
    Terms terms;
    QVERIFY(terms.show("<p>some <b>bold</b> &amp; <i>slanted</i> words</p>"));
    QCOMPARE(terms.edit->toPlainText().trimmed(), QStringLiteral("some bold & slanted words"));
    const QTextCursor found = terms.edit->document()->find(QStringLiteral("bold"));
    QCOMPARE(found.charFormat().fontWeight(), static_cast<int>(QFont::Bold));
}

void tst_OfflineDocument::largeOrDeepTermsArePlainText_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("html");
    const int megabyte = 1024 * 1024;
    const QByteArray words("<p>some words of the terms of service, as they are written</p>\n");
    QTest::newRow("nested 33 times") << table(33) << true;
    QTest::newRow("nested 1000 times") << table(1000) << false;
    QTest::newRow("nested 100 deep") << QByteArray("<div>").repeated(100) + "x" << true;
    QTest::newRow("nested 101 deep") << QByteArray("<div>").repeated(101) + "x" << false;
    QTest::newRow("half a megabyte")
        << words.repeated(megabyte / 2 / static_cast<int>(words.size())) << true;
    QTest::newRow("more than a megabyte")
        << words.repeated(megabyte / static_cast<int>(words.size()) + 1) << false;
    QTest::newRow("20 megabytes") << words.repeated(20 * megabyte / static_cast<int>(words.size()))
                                  << false;
    QTest::newRow("20 megabytes in one line")
        << QByteArray("some words ").repeated(20 * megabyte / 11) << false;
    QTest::newRow("a megabyte in one word") << QByteArray(megabyte, 'x') << false;
}

void tst_OfflineDocument::largeOrDeepTermsArePlainText()
{
    QFETCH(const QByteArray, reply);
    QFETCH(const bool, html);

    Terms terms;
    // The longest time in which the window did nothing.
    QElapsedTimer since;
    qint64 longest = 0;
    QTimer beat;
    connect(&beat, &QTimer::timeout, this, [&] {
        longest = qMax(longest, since.elapsed());
        since.restart();
    });
    since.start();
    beat.start(0);
    QVERIFY(terms.show(reply));
    QCOMPARE(terms.edit->toPlainText().contains(QLatin1String("</")),
             !html && reply.contains("</"));
    // Ten times what it takes, as other programs run beside.
    QVERIFY2(longest < 10000, qPrintable(QString::number(longest)));
}

void tst_OfflineDocument::elementsWithoutEndsAreNotDeep()
{
    QVERIFY(OfflineDocument::isModest(QStringLiteral("<p>paragraph<br>").repeated(500)));
    QVERIFY(OfflineDocument::isModest(QStringLiteral("<ul>")
                                      + QStringLiteral("<li>item").repeated(500)));
    QVERIFY(OfflineDocument::isModest(QStringLiteral("<table>")
                                      + QStringLiteral("<tr><th>a<td>b").repeated(500)));
    QVERIFY(OfflineDocument::isModest(QStringLiteral("<dl>")
                                      + QStringLiteral("<dt>a<dd>b").repeated(500)));
    QVERIFY(OfflineDocument::isModest(QStringLiteral("</div>a < b<img src=x>").repeated(500)));
    QVERIFY(!OfflineDocument::isModest(QStringLiteral("<B>a").repeated(500)));
}

void tst_OfflineDocument::linksAreNotFollowed()
{
    Terms terms;
    QVERIFY(terms.show("<p><a href='file:///etc/passwd'>a link over a whole line</a></p>"));
    const QString before = terms.edit->toPlainText();
    QVERIFY(!terms.edit->textInteractionFlags().testAnyFlags(Qt::LinksAccessibleByMouse
                                                             | Qt::LinksAccessibleByKeyboard));
    QTest::mouseClick(terms.edit->viewport(), Qt::LeftButton, {}, QPoint(60, 20));
    QCOMPARE(terms.edit->toPlainText(), before);
}

void tst_OfflineDocument::toolTipsAreNoMarkup()
{
    Terms terms;
    QVERIFY(terms.show("terms"));
    auto *tabs = terms.frame.findChild<QTabWidget *>();
    const QString refusal = QStringLiteral("ERROR: <b>name</b> & <img src='/x'>\nsecond line");
    tabs->setToolTip(refusal);
    QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), tabs->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(tabs, &help);
    QTRY_VERIFY(QToolTip::isVisible());
    const QWidgetList windows = QApplication::topLevelWidgets();
    const QLabel *tip = nullptr;
    for (const QWidget *window : windows) {
        if (window->inherits("QTipLabel") && window->isVisible())
            tip = qobject_cast<const QLabel *>(window);
    }
    if (!tip)
        QFAIL("no tool tip is shown");
    QTextDocument document;
    document.setHtml(tip->text());
    QCOMPARE(document.toPlainText(), refusal);
    QCOMPARE(tabs->toolTip(), refusal);

    tabs->setToolTip(QStringLiteral("line\n").repeated(400));
    QCoreApplication::sendEvent(tabs, &help);
    QTRY_VERIFY(tip->height() < 424 && tip->width() < 800);
    QToolTip::hideText();
}

void tst_OfflineDocument::shortLinesKeepTheText()
{
    const QString text = QStringLiteral("a short line\n\n") + QString(1700, QLatin1Char('x'))
        + QLatin1Char(' ') + QStringLiteral("words of it ").repeated(200) + QLatin1Char('\n');
    const QString lines = OfflineDocument::withShortLines(text);
    QCOMPARE(QString(lines).remove(QLatin1Char('\n')), QString(text).remove(QLatin1Char('\n')));
    for (const QString &line : lines.split(QLatin1Char('\n')))
        QVERIFY(line.size() <= 501);
    QVERIFY(lines.startsWith(QLatin1String("a short line\n\nx")));
    QCOMPARE(OfflineDocument::withShortLines(QString()), QString());
    QCOMPARE(OfflineDocument::withShortLines(QStringLiteral("a\nb")), QStringLiteral("a\nb"));
}

void tst_OfflineDocument::longTextWithoutBlanksIsBrokenInTime()
{
    constexpr qsizetype length = 32L * 1024 * 1024;
    QElapsedTimer timer;
    timer.start();
    const QString lines = OfflineDocument::withShortLines(QString(length, QLatin1Char('x')));
    QVERIFY2(!timer.hasExpired(patience), QByteArray::number(timer.elapsed()).constData());
    QVERIFY(lines.size() > length);
}

KAVLOR_TEST_MAIN(tst_OfflineDocument)
#include "tst_offlinedocument.moc"
