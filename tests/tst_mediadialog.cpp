// SPDX-License-Identifier: MIT

#include "contrast.h"
#include "focusring.h"
#include "keyboard.h"
#include "mediadialog.h"
#include "testcase.h"
#include "testmain.h"
#include "theme.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QHash>
#include <QListView>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <functional>

/**
 * The dialog in which a photo is chosen, as a member sees and works it. Run with a large font, too.
 */
class tst_MediaDialog : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void fitsTheSmallestWindow();
    void growsWithTheWindow();
    void rowsCanBeTapped();
    void everythingIsReadable_data();
    void everythingIsReadable();
    void focusIsSeenOnEveryPart();
    void aTapOpensAFolderAndChoosesAPhoto();
    void aDragScrollsAndChoosesNothing();
    void aTypedPathIsChosen();
    void aFileIsSelectedWhereItLies();
    void escapeChoosesNothing();
    void goesWithItsParent();

private:
    /** Opens the dialog, does @p action in it, cancels it if it is still there; what was chosen. */
    QString inDialog(const std::function<void(MediaDialog *)> &action);
    QString path(const char *file) const;

    QTemporaryDir m_folder;
    QString m_start;
    QPalette m_palette;
    std::unique_ptr<QWidget> m_window;
};

namespace {

constexpr QSize smallestWindow(800, 424);
constexpr int touchHeight = 45; // pixels

QWidget *part(const MediaDialog *dialog, const char *name)
{
    return dialog->findChild<QWidget *>(QLatin1String(name));
}

QListView *rows(const MediaDialog *dialog)
{
    return dialog->findChild<QListView *>(QStringLiteral("listView"));
}

QModelIndex rowOf(const MediaDialog *dialog, const QString &name)
{
    const QListView *list = rows(dialog);
    const QAbstractItemModel *model = list->model();
    for (int row = 0; row < model->rowCount(list->rootIndex()); ++row) {
        const QModelIndex index = model->index(row, 0, list->rootIndex());
        if (index.data().toString() == name)
            return index;
    }
    return {};
}

bool tap(const MediaDialog *dialog, const QString &name)
{
    if (!QTest::qWaitFor([&] { return rowOf(dialog, name).isValid(); }))
        return false;
    QListView *list = rows(dialog);
    list->scrollTo(rowOf(dialog, name));
    const QPoint middle = list->visualRect(rowOf(dialog, name)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(60, middle.y()));
    return true;
}

QRect placeIn(const MediaDialog *dialog, const QWidget *widget)
{
    return {widget->mapTo(dialog, QPoint()), widget->size()};
}

// How much the letters stand out from what is around them, which most of the picture is.
double contrastOf(QWidget *widget)
{
    const QImage shown = widget->window()
                             ->grab({widget->mapTo(widget->window(), QPoint()), widget->size()})
                             .toImage()
                             .convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> counts;
    for (int y = 4; y < shown.height() - 4; ++y) {
        for (int x = 4; x < shown.width() - 4; ++x)
            ++counts[shown.pixel(x, y)];
    }
    QRgb ground = 0;
    int most = 0;
    for (auto colour = counts.cbegin(); colour != counts.cend(); ++colour) {
        if (colour.value() > most) {
            most = colour.value();
            ground = colour.key();
        }
    }
    double highest = 1;
    for (auto colour = counts.cbegin(); colour != counts.cend(); ++colour)
        highest = qMax(highest, contrast(QColor(colour.key()), QColor(ground)));
    return highest;
}

QPalette darkPalette()
{
    QPalette dark(QColor(40, 40, 44), QColor(30, 30, 34));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::ButtonText, Qt::white);
    dark.setColor(QPalette::Base, QColor(20, 20, 22));
    dark.setColor(QPalette::AlternateBase, QColor(60, 60, 66));
    return dark;
}

} // namespace

void tst_MediaDialog::initTestCase()
{
    m_palette = QApplication::palette();
    QDir folder(m_folder.path());
    QVERIFY(folder.mkpath(QStringLiteral("Holidays at the northern lakes")));
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (int number = 10; number < 40; ++number) {
        QVERIFY(image.save(folder.filePath(
            QStringLiteral("Holidays at the northern lakes/DSC%1.jpg").arg(number))));
    }
    QVERIFY(image.save(folder.filePath(QStringLiteral("a boat.jpg"))));
}

void tst_MediaDialog::init()
{
    TestCase::init();
    m_start = m_folder.path();
    m_window = std::make_unique<QWidget>();
    m_window->setStyleSheet(themeStyleSheet());
    m_window->resize(smallestWindow);
    m_window->show();
}

void tst_MediaDialog::cleanup()
{
    m_window.reset();
    QApplication::setPalette(m_palette);
}

QString tst_MediaDialog::path(const char *file) const
{
    return m_folder.filePath(QLatin1String(file));
}

QString tst_MediaDialog::inDialog(const std::function<void(MediaDialog *)> &action)
{
    QMetaObject::invokeMethod(
        this,
        [action] {
            const QPointer<MediaDialog> dialog =
                qobject_cast<MediaDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->activateWindow();
            const bool isReady =
                QTest::qWaitFor([&] { return dialog->isAncestorOf(QApplication::focusWidget()); });
            if (isReady)
                action(dialog);
            if (dialog && dialog->isVisible())
                dialog->reject();
            QVERIFY(isReady);
        },
        Qt::QueuedConnection);
    return MediaDialog::choose(m_window.get(), QStringLiteral("Choose"), m_start,
                               QStringLiteral("Images (*.png *.jpg *.bmp *.gif *.jpeg);; "
                                              "Video (*.mp4 *.3gp)"));
}

void tst_MediaDialog::fitsTheSmallestWindow()
{
    inDialog([](MediaDialog *dialog) {
        QVERIFY(
            QTest::qWaitFor([&] { return rowOf(dialog, QStringLiteral("a boat.jpg")).isValid(); }));
        if (qEnvironmentVariableIsSet("KAVLOR_SCREEN_PICTURES")) {
            dialog->grab().save(qEnvironmentVariable("KAVLOR_SCREEN_PICTURES")
                                + QStringLiteral("/file dialog.png"));
        }
        QCOMPARE(dialog->size(), smallestWindow);
        QList<QWidget *> controls{part(dialog, "toParentButton"), part(dialog, "lookInCombo"),
                                  part(dialog, "fileNameEdit"), part(dialog, "fileTypeCombo"),
                                  part(dialog, "listView")};
        for (QAbstractButton *button :
             dialog->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"))->buttons())
            controls.append(button);
        QCOMPARE(controls.size(), 7);
        for (const QWidget *control : std::as_const(controls)) {
            QVERIFY(control->isVisible());
            QVERIFY2(dialog->rect().contains(placeIn(dialog, control)),
                     qPrintable(control->objectName()));
            QVERIFY2(control->height() >= touchHeight, qPrintable(control->objectName()));
            const auto *button = qobject_cast<const QPushButton *>(control);
            QVERIFY(!button || button->width() >= button->sizeHint().width());
            QVERIFY(!button || button->icon().isNull());
        }
        QVERIFY(rows(dialog)->viewport()->height() >= 3 * touchHeight);
    });
}

void tst_MediaDialog::growsWithTheWindow()
{
    m_window->resize(780, 700); // the screen is no larger
    inDialog([](MediaDialog *dialog) { QCOMPARE(dialog->size(), QSize(780, 700)); });
}

void tst_MediaDialog::rowsCanBeTapped()
{
    inDialog([](MediaDialog *dialog) {
        const QString folder = QStringLiteral("Holidays at the northern lakes");
        QVERIFY(QTest::qWaitFor([&] { return rowOf(dialog, folder).isValid(); }));
        const QListView *list = rows(dialog);
        const QRect row = list->visualRect(rowOf(dialog, folder));
        QVERIFY(row.height() >= touchHeight);
        // The name stands there whole.
        const int room = list->viewport()->width() - list->iconSize().width();
        QVERIFY(list->fontMetrics().horizontalAdvance(folder) + 20 < room);
        QVERIFY(row.width() >= list->fontMetrics().horizontalAdvance(folder));
    });
}

void tst_MediaDialog::everythingIsReadable_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light desktop") << false;
    QTest::newRow("dark desktop") << true;
}

void tst_MediaDialog::everythingIsReadable()
{
    QFETCH(bool, isDark);
    if (isDark)
        QApplication::setPalette(darkPalette());
    inDialog([](MediaDialog *dialog) {
        QVERIFY(tap(dialog, QStringLiteral("Holidays at the northern lakes")));
        QVERIFY(
            QTest::qWaitFor([&] { return rowOf(dialog, QStringLiteral("DSC10.jpg")).isValid(); }));
        if (qEnvironmentVariableIsSet("KAVLOR_SCREEN_PICTURES")) {
            dialog->grab().save(qEnvironmentVariable("KAVLOR_SCREEN_PICTURES")
                                + QStringLiteral("/file dialog, %1.png")
                                      .arg(QLatin1String(QTest::currentDataTag())));
        }
        part(dialog, "fileNameEdit")->setFocus();
        Keyboard::type(QStringLiteral("x"));
        for (const char *name : {"toParentButton", "lookInCombo", "fileNameLabel", "fileNameEdit",
                                 "fileTypeLabel", "fileTypeCombo", "listView"}) {
            const double found = contrastOf(part(dialog, name));
            QVERIFY2(found >= 4.5,
                     qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(name)).arg(found)));
        }
    });
}

void tst_MediaDialog::focusIsSeenOnEveryPart()
{
    inDialog([](MediaDialog *dialog) {
        QVERIFY(
            QTest::qWaitFor([&] { return rowOf(dialog, QStringLiteral("a boat.jpg")).isValid(); }));
        QCOMPARE(unseenFocus(), QString());
    });
}

void tst_MediaDialog::aTapOpensAFolderAndChoosesAPhoto()
{
    const QString chosen = inDialog([](MediaDialog *dialog) {
        QVERIFY(tap(dialog, QStringLiteral("Holidays at the northern lakes")));
        QVERIFY(dialog->isVisible());
        QVERIFY(tap(dialog, QStringLiteral("DSC30.jpg")));
    });
    QCOMPARE(chosen, path("Holidays at the northern lakes/DSC30.jpg"));
}

void tst_MediaDialog::aDragScrollsAndChoosesNothing()
{
    m_start = path("Holidays at the northern lakes");
    const QString chosen = inDialog([](MediaDialog *dialog) {
        QVERIFY(
            QTest::qWaitFor([&] { return rowOf(dialog, QStringLiteral("DSC39.jpg")).isValid(); }));
        const QListView *sorted = rows(dialog);
        QTRY_COMPARE(sorted->model()->index(0, 0, sorted->rootIndex()).data().toString(),
                     QStringLiteral("DSC10.jpg"));
        QWidget *list = rows(dialog)->viewport();
        QTest::mousePress(list, Qt::LeftButton, {}, QPoint(60, 120));
        for (int y = 110; y >= 10; y -= 10)
            QTest::mouseMove(list, QPoint(60, y), 10);
        QTest::mouseRelease(list, Qt::LeftButton, {}, QPoint(60, 10));
        QVERIFY(dialog->isVisible());
    });
    QCOMPARE(chosen, QString());
}

void tst_MediaDialog::aTypedPathIsChosen()
{
    const QString chosen = inDialog([this](MediaDialog *) {
        Keyboard::type(path("a boat.jpg"));
        Keyboard::press(Qt::Key_Return);
    });
    QCOMPARE(chosen, path("a boat.jpg"));
}

void tst_MediaDialog::aFileIsSelectedWhereItLies()
{
    m_start = path("a boat.jpg");
    const QString chosen = inDialog([this](MediaDialog *dialog) {
        QCOMPARE(dialog->directory().absolutePath(), m_folder.path());
        QTRY_COMPARE(dialog->selectedFiles(), QStringList{m_start});
        Keyboard::press(Qt::Key_Return);
    });
    QCOMPARE(chosen, m_start);
}

void tst_MediaDialog::escapeChoosesNothing()
{
    QCOMPARE(inDialog([](MediaDialog *) { Keyboard::press(Qt::Key_Escape); }), QString());
}

void tst_MediaDialog::goesWithItsParent()
{
    QCOMPARE(inDialog([this](MediaDialog *) { m_window.reset(); }), QString());
}

KAVLOR_TEST_MAIN(tst_MediaDialog)
#include "tst_mediadialog.moc"
