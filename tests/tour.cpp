// SPDX-License-Identifier: MIT

#include "wholesystem.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QTextStream>

#include <cmath>
#include <csignal>

// Walks a member's way through every screen of the real client, by clicks and keys, against the
// real service, and leaves a picture of each, at first in the handheld's window with every message
// box that is on the way, then of the main screens in larger ones: kavlor-tour FOLDER

namespace {

class Tour
{
public:
    explicit Tour(const QString &folder)
        : m_folder(folder)
    {
    }

    bool walk();
    QString error() const
    {
        return m_error;
    }

private:
    bool start();
    bool welcomeAndAccount();
    bool login();
    bool upload();
    bool alerts();
    bool myAuctions();
    bool settings();
    bool failures();
    bool rooms();

    bool showRooms(const char *picture);
    bool showBox(const char *picture);
    void freezeService();
    void thawService();
    bool show(const char *picture);
    bool showBesides(const char *picture);
    bool failed(const QString &why);
    QString makePhoto() const;
    ClientDriver &client()
    {
        return *m_system.client;
    }

    WholeSystem m_system;
    QDir m_folder;
    int m_number = 0;
    char m_letter = 'a'; // of what is shown besides the numbered picture
    QString m_error;
};

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

QString text(const char *typed)
{
    return QLatin1String(typed);
}

bool Tour::failed(const QString &why)
{
    m_error = QStringLiteral("after picture %1: %2").arg(m_number).arg(why);
    return false;
}

// Numbered, so that the pictures lie in a member's order.
bool Tour::show(const char *picture)
{
    ++m_number;
    m_letter = 'a';
    const QString file = QStringLiteral("%1-%2.png").arg(m_number, 2, 10, QLatin1Char('0'));
    return client().picture(m_folder.filePath(file.arg(QLatin1String(picture))));
}

// What comes up on the way from one screen to the next.
bool Tour::showBesides(const char *picture)
{
    ++m_letter;
    const QString file = QStringLiteral("%1%2-%3.png")
                             .arg(m_number, 2, 10, QLatin1Char('0'))
                             .arg(QLatin1Char(m_letter))
                             .arg(text(picture));
    return client().picture(m_folder.filePath(file));
}

bool Tour::showBox(const char *picture)
{
    return client().waitForBox() && showBesides(picture) && !client().closeBox().isEmpty();
}

// The handheld's window is in the pictures already.
bool Tour::showRooms(const char *picture)
{
    static const QSize sizes[] = {{1280, 800}, {1920, 1080}};
    for (const QSize &size : sizes) {
        const QString file = QStringLiteral("%1-%2.jpg").arg(text(picture)).arg(size.width());
        if (!client().resize(size.width(), size.height())
            || !client().picture(m_folder.filePath(file)))
            return false;
    }
    return true;
}

// So that a request waits for its reply until it is thawed.
void Tour::freezeService()
{
    ::kill(static_cast<pid_t>(m_system.service.processId()), SIGSTOP);
}

void Tour::thawService()
{
    ::kill(static_cast<pid_t>(m_system.service.processId()), SIGCONT);
}

// A lake in the evening: ridges in the haze under the sun, and all of it again in the water.
QString Tour::makePhoto() const
{
    constexpr int width = 2400;
    constexpr int shore = 1000;
    QImage image(width, 1600, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QLinearGradient sky(0, 0, 0, shore);
    sky.setColorAt(0, QColor(58, 84, 150));
    sky.setColorAt(0.6, QColor(232, 150, 110));
    sky.setColorAt(1, QColor(255, 214, 140));
    painter.fillRect(0, 0, width, shore, sky);
    QRadialGradient sun(1500, 720, 520);
    sun.setColorAt(0, QColor(255, 250, 220));
    sun.setColorAt(0.13, QColor(255, 240, 190));
    sun.setColorAt(0.16, QColor(255, 220, 150, 140));
    sun.setColorAt(1, QColor(255, 200, 120, 0));
    painter.fillRect(0, 0, width, shore, sun);
    for (int ridge = 0; ridge < 5; ++ridge) {
        QPolygonF line{QPointF(0, shore)};
        for (int x = 0; x <= width; x += 8) {
            const double at = x / 260.0 + ridge * 2.3;
            const double rise =
                130 * std::sin(at) + 60 * std::sin(2.7 * at) + 14 * std::sin(11 * at);
            line << QPointF(x, 700 + ridge * 62 - rise * (1.1 - 0.17 * ridge));
        }
        line << QPointF(width, shore);
        painter.setBrush(QColor(150 - ridge * 28, 120 - ridge * 20, 138 - ridge * 18));
        painter.drawPolygon(line);
    }
    // The water, by lines that waves move to the side.
    const QImage land = image.copy(0, 0, width, shore).mirrored();
    for (int y = 0; y < image.height() - shore; ++y) {
        const int wave = qRound(y / 14.0 * std::sin(y * y / 900.0 + y / 3.0));
        painter.drawImage(QRect(0, shore + y, width, 1), land,
                          QRect(qAbs(wave), y, width - 2 * qAbs(wave), 1));
    }
    painter.fillRect(0, shore, width, image.height() - shore, QColor(20, 40, 90, 90));
    painter.end();
    const QString path = m_system.client->home() + QStringLiteral("/Pictures/sunset.jpg");
    return image.save(path, "JPEG", 92) ? path : QString();
}

#define DO(step)                                                                                   \
    do {                                                                                           \
        if (!(step))                                                                               \
            return failed(client().error());                                                       \
    } while (false)

bool Tour::start()
{
    if (!m_system.startConnectivity() || !m_system.startService({text("--seed")}))
        return failed(text("the surroundings did not start"));
    DO(client().start());
    DO(client().waitForText(name("version"), text("0.1.6")));
    DO(show("start"));
    return true;
}

bool Tour::welcomeAndAccount()
{
    DO(client().waitFor(name("createAccountButton")));
    DO(show("welcome"));
    DO(client().click(name("createAccountButton")));
    DO(client().waitFor(name("submitButton")));
    DO(show("create-account"));
    DO(client().click(name("submitButton")));
    DO(client().waitForText(name("errorLabelText"), text("must be defined")));
    DO(show("create-account-error"));
    DO(client().type(name("lineUsername"), text("zoe")));
    DO(client().type(name("linePassword"), text("secret")));
    DO(client().type(name("lineEmailaddress"), text("zoe@example.org")));
    DO(client().type(name("lineAgain"), text("zoe@example.org")));
    DO(client().clickTab(name("tabWidget"), 1));
    DO(client().click(name("checkTerms")));
    DO(show("create-account-terms"));
    DO(client().click(name("submitButton")));
    DO(client().waitFor(name("buttonMyKavlor")));
    freezeService();
    DO(client().click(name("buttonMyKavlor")));
    DO(client().waitForText(name("labelPleaseWait"), text("Please wait")));
    DO(showBesides("my-auctions-waiting"));
    thawService();
    DO(client().waitForText(name("labelPleaseWait"), text("There is no data to display.")));
    DO(show("my-auctions-none"));
    DO(client().click(name("backNavigationButton")));
    DO(client().waitFor(name("buttonUpload")));
    DO(client().click(name("cancelNavigationButton"))); // signs out
    DO(client().waitFor(name("createAccountButton")));
    return true;
}

bool Tour::login()
{
    DO(client().click(name("loginButton")));
    DO(client().type(name("lineUsername"), text("demo")));
    DO(client().type(name("linePassword"), text("wrong")));
    DO(show("login"));
    DO(client().click(name("loginButton")));
    DO(client().waitForText(name("labelError"), text("authentication failed")));
    DO(show("login-refused"));
    DO(client().type(name("linePassword"), text("demo")));
    DO(client().click(name("loginButton")));
    DO(client().waitFor(name("buttonUpload")));
    DO(show("home"));
    return true;
}

bool Tour::upload()
{
    DO(client().click(name("buttonUpload")));
    DO(client().waitFor(name("photoClicker")));
    DO(show("upload-media"));
    const QString photo = makePhoto();
    DO(client().click(name("photoClicker")));
    DO(client().waitFor(name("fileNameEdit")));
    DO(showBesides("upload-choose"));
    DO(client().chooseFile(photo));
    DO(client().click(name("doneButton")));
    DO(showBox("box-caption-missing"));
    DO(client().type(name("lineCaption"), text("evening at the lake")));
    DO(client().type(name("textDescription"), text("t")));
    DO(show("upload-description"));
    DO(client().click(name("doneButton")));
    DO(client().waitFor(name("categoriesTable")));
    DO(show("upload-category"));
    DO(client().clickCell(name("categoriesTable"), 5, 1));
    DO(client().waitForText(name("categorySelected"), text("Places")));
    DO(show("upload-subcategory"));
    DO(client().clickCell(name("categoriesTable"), 2, 1)); // Monuments, which ends there
    DO(client().type(name("startPrice"), text("12")));
    DO(client().type(name("reservePrice"), text("12")));
    DO(client().click(name("finalizeButton")));
    DO(showBox("box-reserve-too-low"));
    DO(client().type(name("reservePrice"), text("40")));
    DO(client().type(name("buyItNowPrice"), text("95")));
    DO(show("upload-prices"));
    DO(client().click(name("finalizeButton")));
    DO(client().waitForText(name("auctionOverallInfo"), text("Evening at the lake")));
    DO(show("upload-confirm"));
    freezeService();
    DO(client().click(name("createAuctionButton")));
    DO(showBesides("upload-waiting"));
    thawService();
    DO(client().waitFor(name("buttonOk")));
    DO(show("upload-done"));
    return true;
}

bool Tour::alerts()
{
    DO(client().click(name("buttonOk")));
    DO(client().click(name("checkBoxOnView")));
    DO(show("alerts"));
    DO(client().click(name("pushButtonDone")));
    DO(client().waitFor(name("buttonUpload")));
    return true;
}

bool Tour::myAuctions()
{
    DO(client().click(name("buttonMyKavlor")));
    DO(client().waitFor(name("myAuctionsTable")));
    for (int row = 0; row < 4; ++row)
        DO(client().waitForPhoto(name("myAuctionsTable"), row, 0));
    DO(show("my-auctions"));
    DO(client().clickCell(name("myAuctionsTable"), 0, 1));
    DO(client().waitFor(name("reservedPrice")));
    DO(show("change-prices"));
    DO(client().type(name("reservedPrice"), text("55")));
    DO(client().click(name("done")));
    DO(showBox("box-prices-changed"));
    DO(client().waitFor(name("myAuctionsTable")));
    DO(client().click(name("backNavigationButton")));
    DO(client().waitFor(name("buttonSettings")));
    return true;
}

bool Tour::settings()
{
    DO(client().click(name("buttonSettings")));
    DO(client().waitFor(name("pushButtonMyAccount")));
    DO(show("settings"));
    DO(client().click(name("pushButtonMyAccount")));
    DO(client().click(name("checkBoxEmail")));
    DO(client().type(name("lineEmail"), text("demo@example.org")));
    DO(client().click(name("checkBoxPassword")));
    DO(client().type(name("linePassword"), text("other")));
    DO(client().click(name("pushButtonDone")));
    DO(client().waitForText(name("errorLabelText"), text("does not match")));
    DO(show("my-account"));
    DO(client().click(name("backNavigationButton")));
    DO(client().click(name("pushButtonNotifications")));
    DO(client().waitFor(name("checkBoxOnBid")));
    DO(show("alerts-from-the-menu"));
    DO(client().click(name("backNavigationButton")));
    DO(client().waitFor(name("pushButtonMyAccount")));
    DO(client().click(name("backNavigationButton")));
    DO(client().waitFor(name("buttonUpload")));
    return true;
}

bool Tour::rooms()
{
    DO(client().waitFor(name("buttonUpload")));
    DO(showRooms("home"));
    DO(client().click(name("buttonUpload")));
    DO(client().waitFor(name("photoClicker")));
    DO(client().click(name("photoClicker")));
    DO(client().chooseFile(m_system.client->home() + QStringLiteral("/Pictures/sunset.jpg")));
    DO(client().type(name("lineCaption"), text("evening at the lake")));
    DO(client().type(name("textDescription"), text("the sun goes down behind the hills")));
    DO(showRooms("upload-description"));
    DO(client().click(name("doneButton")));
    DO(client().waitFor(name("categoriesTable")));
    DO(showRooms("upload-category"));
    DO(client().clickCell(name("categoriesTable"), 5, 1));
    DO(client().waitForText(name("categorySelected"), text("Places")));
    DO(client().clickCell(name("categoriesTable"), 2, 1));
    DO(client().waitFor(name("startPrice")));
    DO(showRooms("upload-prices"));
    DO(client().click(name("finalizeButton")));
    DO(client().waitForText(name("auctionOverallInfo"), text("Evening at the lake")));
    DO(showRooms("upload-confirm"));
    DO(client().click(name("cancelNavigationButton")));
    DO(client().click(name("buttonMyKavlor")));
    DO(client().waitFor(name("myAuctionsTable")));
    for (int row = 0; row < 5; ++row)
        DO(client().waitForPhoto(name("myAuctionsTable"), row, 0));
    DO(showRooms("my-auctions"));
    DO(client().clickCell(name("myAuctionsTable"), 0, 1));
    DO(client().waitFor(name("reservedPrice")));
    DO(showRooms("change-prices"));
    DO(client().click(name("backNavigationButton")));
    DO(client().click(name("buttonSettings")));
    DO(client().waitFor(name("pushButtonMyAccount")));
    DO(showRooms("settings"));
    DO(client().click(name("pushButtonMyAccount")));
    DO(client().waitFor(name("checkBoxEmail")));
    DO(showRooms("my-account"));
    DO(client().click(name("backNavigationButton")));
    DO(client().click(name("pushButtonNotifications")));
    DO(client().waitFor(name("checkBoxOnBid")));
    DO(showRooms("alerts"));
    DO(client().click(name("backNavigationButton")));
    DO(client().click(name("backNavigationButton")));
    DO(client().click(name("cancelNavigationButton"))); // signs out
    DO(client().waitFor(name("createAccountButton")));
    DO(showRooms("welcome"));
    DO(client().click(name("createAccountButton")));
    DO(client().waitFor(name("submitButton")));
    DO(showRooms("create-account"));
    DO(client().clickTab(name("tabWidget"), 1));
    DO(client().waitFor(name("checkTerms")));
    DO(showRooms("create-account-terms"));
    DO(client().click(name("cancelNavigationButton")));
    DO(client().click(name("loginButton")));
    DO(client().waitFor(name("linePassword")));
    DO(showRooms("login"));
    DO(client().resize(800, 480));
    return true;
}

// What a member sees when the service is gone: while logging in, and at the next start.
bool Tour::failures()
{
    m_system.service.kill();
    DO(client().type(name("lineUsername"), text("demo")));
    DO(client().type(name("linePassword"), text("demo")));
    DO(client().click(name("loginButton")));
    DO(showBox("box-login-failed"));
    DO(client().close());
    DO(client().start());
    DO(showBox("box-start-failed"));
    return client().waitForEnd() == 0;
}

#undef DO

bool Tour::walk()
{
    return start() && welcomeAndAccount() && login() && upload() && alerts() && myAuctions()
        && settings() && rooms() && failures();
}

} // namespace

int main(int argc, char *argv[])
{
    // The client needs the screen; this program does not.
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app(argc, argv);
    qputenv("QT_QPA_PLATFORM", platform);
    const QString folder = QApplication::arguments().value(1);
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        QTextStream(stderr) << "usage: kavlor-tour FOLDER\n";
        return 2;
    }
    Tour tour(folder);
    if (!tour.walk()) {
        QTextStream(stderr) << "kavlor-tour: " << tour.error() << '\n';
        return 1;
    }
    QTextStream(stdout) << "The pictures are in " << folder << '\n';
    return 0;
}
