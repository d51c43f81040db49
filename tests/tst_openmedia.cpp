// SPDX-License-Identifier: MIT

#include "rootwindow.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPlainTextEdit>
#include <QSettings>
#include <QUrl>

#include <algorithm>

/**
 * A photo or clip that comes from outside of the wizard: with the start of the program, from a
 * later start, or dragged onto the window.
 */
class tst_OpenMedia : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aRememberedMemberFindsItInTheWizard();
    void aMemberWhoLogsInFindsItInTheWizard();
    void aClipIsOpenedToo();
    void whatIsNoPhotoIsToldByTheWizard_data();
    void whatIsNoPhotoIsToldByTheWizard();
    void onLaterPagesItWaitsUntilTheMemberIsBackAtHome();
    void amongTheSettingsItWaits();
    void aDropOntoTheHomeScreenOpensTheWizard();
    void aDropOntoTheWizardTakesItsPlace_data();
    void aDropOntoTheWizardTakesItsPlace();
    void aDropThatIsNoSingleFileIsLeftAlone_data();
    void aDropThatIsNoSingleFileIsLeftAlone();
    void underAnOpenDialogNothingIsTaken();
    void theLauncherOffersWhatTheWizardTakes();

private:
    QString make(const QString &name, const QByteArray &content) const;

    QTemporaryDir m_folder;
    QString m_photo;
};

namespace {

QMimeData *files(const QStringList &paths)
{
    auto *data = new QMimeData;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data->setUrls(urls);
    return data;
}

// What the window system sends when something is dragged onto a widget; whether it was taken.
bool drag(QWidget *widget, const QMimeData &data)
{
    const QPointF place = QRectF(widget->rect()).center();
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(place.toPoint(), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &enter);
    if (!enter.isAccepted())
        return false;
    QDragMoveEvent move(place.toPoint(), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &move);
    QDropEvent drop(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &drop);
    return drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
}

// The wizard shows its description page, which it does only for media that it could read.
bool isDescribing(const RootWindow &window)
{
    return window.find("doneButton") && window.find("doneButton")->isEnabled();
}

} // namespace

void tst_OpenMedia::initTestCase()
{
    m_photo = m_folder.filePath(QStringLiteral("photo.png"));
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(m_photo));
}

QString tst_OpenMedia::make(const QString &name, const QByteArray &content) const
{
    QFile file(m_folder.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
        ? file.fileName()
        : QString();
}

void tst_OpenMedia::aRememberedMemberFindsItInTheWizard()
{
    RootWindow window;
    window.remember(QStringLiteral("m1"), QStringLiteral("secret"));
    window.scriptSignedInStart();
    window.start();
    window.root()->openMedia(m_photo);
    QTRY_VERIFY(isDescribing(window));
    QCOMPARE(window.title(), QStringLiteral("Upload"));
    QCOMPARE(window.dialogs.boxes().size(), 0);
    // It was opened once, and is not there again.
    QVERIFY(window.click("cancelNavigationButton"));
    QTRY_VERIFY(window.find("buttonUpload"));
    QCoreApplication::processEvents();
    QVERIFY(window.find("buttonUpload"));
}

void tst_OpenMedia::aMemberWhoLogsInFindsItInTheWizard()
{
    RootWindow window;
    QVERIFY2(window.startAtWelcome(), window.service.report());
    window.root()->openMedia(m_photo);
    QCOMPARE(window.dialogs.boxes().size(), 0);
    QVERIFY(window.click("loginButton"));
    window.service.expect("ValidateLogin", "1");
    window.service.expect("GetNotificationOptions", "options\n1,0,0,1\n");
    window.service.expect("GetCategoryList", "categories\n4,Sports,0\n");
    QVERIFY(window.type("lineUsername", QStringLiteral("m1")));
    QVERIFY(window.type("linePassword", QStringLiteral("secret")));
    QVERIFY(window.click("loginButton"));
    QTRY_VERIFY(isDescribing(window));
    QTRY_VERIFY2(window.service.isDone(), window.service.report());
}

void tst_OpenMedia::aClipIsOpenedToo()
{
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    window.root()->openMedia(make(QStringLiteral("clip.mp4"), "moving"));
    QTRY_VERIFY(isDescribing(window));
}

void tst_OpenMedia::whatIsNoPhotoIsToldByTheWizard_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("photo that is not there") << m_folder.filePath(QStringLiteral("gone.jpg"));
    QTest::newRow("clip that is not there") << m_folder.filePath(QStringLiteral("gone.mp4"));
    QTest::newRow("folder") << m_folder.path();
    QTest::newRow("text") << make(QStringLiteral("text.txt"), "no picture");
}

void tst_OpenMedia::whatIsNoPhotoIsToldByTheWizard()
{
    QFETCH(QString, path);
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    window.root()->openMedia(path);
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QCOMPARE(window.dialogs.boxes().at(0).title, QStringLiteral("kavlor media"));
    QCOMPARE(window.dialogs.boxes().at(0).text, QStringLiteral("Cannot load %1.").arg(path));
    QVERIFY(window.find("photoClicker"));
    QVERIFY(!isDescribing(window));
}

void tst_OpenMedia::onLaterPagesItWaitsUntilTheMemberIsBackAtHome()
{
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    window.root()->openMedia(m_photo);
    QTRY_VERIFY(isDescribing(window));
    QVERIFY(window.type("lineCaption", QStringLiteral("Sunset")));
    QVERIFY(window.click("doneButton"));
    QVERIFY(window.find("categoriesTable"));

    const QString other = make(QStringLiteral("other.mp4"), "moving");
    window.root()->openMedia(other);
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(window.dialogs.boxes().at(0).text.startsWith(other));
    QVERIFY(window.find("categoriesTable"));

    QVERIFY(window.click("cancelNavigationButton"));
    QTRY_VERIFY(isDescribing(window));
    QCOMPARE(window.text("lineCaption"), QStringLiteral("Caption"));
}

void tst_OpenMedia::amongTheSettingsItWaits()
{
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    QVERIFY(window.click("buttonSettings"));
    QTRY_VERIFY(window.find("pushButtonMyAccount"));
    window.root()->openMedia(m_photo);
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(window.find("pushButtonMyAccount"));
    QVERIFY(window.click("backNavigationButton"));
    QTRY_VERIFY(isDescribing(window));
}

void tst_OpenMedia::aDropOntoTheHomeScreenOpensTheWizard()
{
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    const std::unique_ptr<QMimeData> data(files({m_photo}));
    QVERIFY(drag(window.find("buttonUpload"), *data));
    QTRY_VERIFY(isDescribing(window));
}

void tst_OpenMedia::aDropOntoTheWizardTakesItsPlace_data()
{
    QTest::addColumn<QByteArray>("where");
    QTest::newRow("preview") << QByteArray("photoClicker");
    QTest::newRow("caption") << QByteArray("lineCaption");
    QTest::newRow("description") << QByteArray("textDescription");
}

void tst_OpenMedia::aDropOntoTheWizardTakesItsPlace()
{
    QFETCH(QByteArray, where);
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    window.root()->openMedia(make(QStringLiteral("clip.mp4"), "moving"));
    QTRY_VERIFY(isDescribing(window));
    const QImage clip = window.find<QLabel>("photoLabel")->pixmap().toImage();
    QVERIFY(window.type("lineCaption", QStringLiteral("Sunset")));

    QWidget *widget = window.find(where.constData());
    if (auto *text = qobject_cast<QPlainTextEdit *>(widget))
        widget = text->viewport();
    const std::unique_ptr<QMimeData> data(files({m_photo}));
    QVERIFY(drag(widget, *data));
    QTRY_VERIFY(window.find<QLabel>("photoLabel")->pixmap().toImage() != clip);
    QCOMPARE(window.text("lineCaption"), QStringLiteral("Sunset"));
    QCOMPARE(window.text("textDescription"), QStringLiteral("Description"));
}

void tst_OpenMedia::aDropThatIsNoSingleFileIsLeftAlone_data()
{
    QTest::addColumn<QStringList>("urls");
    QTest::newRow("two files") << QStringList{QStringLiteral("file:///a.jpg"),
                                              QStringLiteral("file:///b.jpg")};
    QTest::newRow("an address") << QStringList{QStringLiteral("https://example.org/a.jpg")};
    QTest::newRow("nothing") << QStringList();
}

void tst_OpenMedia::aDropThatIsNoSingleFileIsLeftAlone()
{
    QFETCH(QStringList, urls);
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    QMimeData data;
    data.setUrls(QUrl::fromStringList(urls));
    QVERIFY(!drag(window.find("buttonUpload"), data));
    QVERIFY(window.find("buttonUpload"));
}

void tst_OpenMedia::underAnOpenDialogNothingIsTaken()
{
    RootWindow window;
    QVERIFY2(window.startAtHome(), window.service.report());
    const std::unique_ptr<QMimeData> data(files({m_photo}));
    bool isTaken = true;
    window.dialogs.beforeNextAnswer([&] { isTaken = drag(window.find("photoClicker"), *data); });
    window.root()->openMedia(QStringLiteral("/nowhere/a.jpg"));
    QTRY_COMPARE(window.dialogs.boxes().size(), 1);
    QVERIFY(!isTaken);
    QVERIFY(!isDescribing(window));
}

void tst_OpenMedia::theLauncherOffersWhatTheWizardTakes()
{
    QFile launcher(QStringLiteral(KAVLOR_DESKTOP_FILE));
    QVERIFY(launcher.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = launcher.readAll().split('\n');
    QVERIFY(lines.contains("Exec=kavlor %f"));
    const auto types = std::find_if(lines.begin(), lines.end(), [](const QByteArray &line) {
        return line.startsWith("MimeType=");
    });
    QVERIFY(types != lines.end());
    QList<QByteArray> offered = types->mid(types->indexOf('=') + 1).split(';');
    QCOMPARE(offered.takeLast(), QByteArray());
    QVERIFY(offered.removeOne("video/mp4"));
    const QList<QByteArray> readable = QImageReader::supportedMimeTypes();
    for (const QByteArray &type : std::as_const(offered))
        QVERIFY2(readable.contains(type), type.constData());
    QVERIFY(offered.contains("image/jpeg"));
}

KAVLOR_TEST_MAIN(tst_OpenMedia)
#include "tst_openmedia.moc"
