#include "wholesystem.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QTextStream>

// Walks a member's way through every screen of the real client, by clicks and keys, against the
// real service, and leaves a picture of each: kavlor-tour FOLDER

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

    bool show(const char *picture);
    bool failed(const QString &why);
    QString makePhoto() const;
    ClientDriver &client()
    {
        return *m_system.client;
    }

    WholeSystem m_system;
    QDir m_folder;
    int m_number = 0;
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
    const QString file = QStringLiteral("%1-%2.png").arg(m_number, 2, 10, QLatin1Char('0'));
    return client().picture(m_folder.filePath(file.arg(QLatin1String(picture))));
}

QString Tour::makePhoto() const
{
    QImage image(1200, 900, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 900);
    sky.setColorAt(0, QColor(72, 96, 160));
    sky.setColorAt(0.55, QColor(250, 178, 96));
    sky.setColorAt(0.56, QColor(32, 66, 104));
    sky.setColorAt(1, QColor(16, 30, 60));
    painter.fillRect(image.rect(), sky);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 226, 150));
    painter.drawEllipse(QPoint(600, 430), 90, 90);
    painter.end();
    const QString path = m_system.client->home() + QStringLiteral("/Pictures/sunset.jpg");
    return image.save(path, "JPEG") ? path : QString();
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
    DO(client().click(name("buttonMyKavlor")));
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
    DO(client().click(name("photoClicker")));
    DO(client().chooseFile(makePhoto()));
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
    DO(client().type(name("reservePrice"), text("40")));
    DO(client().type(name("buyItNowPrice"), text("95")));
    DO(show("upload-prices"));
    DO(client().click(name("finalizeButton")));
    DO(client().waitForText(name("auctionOverallInfo"), text("Evening at the lake")));
    DO(show("upload-confirm"));
    DO(client().click(name("createAuctionButton")));
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
    DO(!client().closeBox().isEmpty());
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
    DO(client().close());
    return true;
}

#undef DO

bool Tour::walk()
{
    return start() && welcomeAndAccount() && login() && upload() && alerts() && myAuctions()
        && settings();
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
