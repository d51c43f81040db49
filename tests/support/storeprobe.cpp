// SPDX-License-Identifier: MIT

// A program that keeps what the client keeps, by the client's own classes, and little else: it
// carries out its command line and prints one line when a piece of it is done.
//   save FROM TO      saves the member's record and options of each number into the settings
//   draft FROM TO     saves the draft of an upload of each number
//   request HOST      gets the terms of the service, and prints the reply and the error

#include "storeprobe.h"
#include "auctionrecord.h"
#include "httptolvex.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "settingsstore.h"
#include "testconstants.h"
#include "uploaddraft.h"

#include <QCoreApplication>
#include <QTextStream>

namespace {

void tell(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

void save(int from, int to)
{
    const std::unique_ptr<QSettings> settings = openSettingsStore();
    for (int number = from; number <= to; ++number) {
        CKavlorUser user(settings.get(), nullptr, false, StoreProbe::fields(number));
        user.setUserId(number);
        user.save();
        settings->sync(); // as the event loop does
        const bool isSaved = settings->status() == QSettings::NoError;
        tell(QStringLiteral("%1 %2").arg(number).arg(isSaved ? QStringLiteral("saved")
                                                             : QStringLiteral("refused")));
    }
}

void draft(int from, int to)
{
    const UploadDraft draft(openSettingsStore()->fileName());
    for (int number = from; number <= to; ++number) {
        draft.save(StoreProbe::member(), StoreProbe::record(number));
        tell(QStringLiteral("%1 saved").arg(number));
    }
}

int request(const QString &host)
{
    setServiceHost(host);
    const OnlineConnector connector;
    CHttpTolvex http;
    QObject::connect(&http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), qApp,
                     [](const QString &response, const QString &error) {
                         tell(response + QLatin1Char('|') + error);
                         QCoreApplication::quit();
                     });
    QMetaObject::invokeMethod(&http, &CHttpTolvex::getServiceTerms, Qt::QueuedConnection);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString what = arguments.value(1);
    if (what == QLatin1String("request"))
        return request(arguments.value(2));
    const auto work = what == QLatin1String("save") ? save : draft;
    work(arguments.value(2).toInt(), arguments.value(3).toInt());
    return EXIT_SUCCESS;
}
