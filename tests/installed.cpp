// SPDX-License-Identifier: MIT

#include "clientdriver.h"

#include <QApplication>
#include <QTextStream>

// A member's first minute with the installed client, on the bus and with the service that are
// there: the welcome screen, the login of the local service's demo member, the list of its
// auctions. kavlor-installed PROGRAM

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app(argc, argv);
    if (argc != 2) {
        QTextStream(stderr) << "usage: kavlor-installed PROGRAM\n";
        return 2;
    }
    ClientDriver client;
    client.setProgram(QString::fromLocal8Bit(argv[1]));
    const QString demo = QStringLiteral("demo");
    const bool shown = client.start() && client.click(QStringLiteral("loginButton"))
        && client.type(QStringLiteral("lineUsername"), demo)
        && client.type(QStringLiteral("linePassword"), demo)
        && client.click(QStringLiteral("loginButton"))
        && client.click(QStringLiteral("buttonMyKavlor"))
        && client.waitForPhoto(QStringLiteral("myAuctionsTable"), 0, 0) && client.close();
    if (!shown)
        QTextStream(stderr) << client.error() << '\n' << client.output();
    return shown ? 0 : 1;
}
