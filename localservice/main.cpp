#include "accounts.h"
#include "auctions.h"
#include "database.h"
#include "datafolder.h"
#include "httpservice.h"
#include "mailoutbox.h"
#include "operations.h"
#include "options.h"
#include "passwords.h"
#include "pictures.h"
#include "seed.h"
#include "website.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <thread>

namespace {

enum ExitCode { Ended = 0, CannotServe = 1, BadOptions = 2 };

int fail(ExitCode code, const QString &reason)
{
    std::fprintf(stderr, "kavlor-localservice: %s\n", qPrintable(reason));
    return code;
}

// Every thread started from now on leaves these to the main thread, which waits for them.
sigset_t blockEndSignals()
{
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGTERM);
    sigaddset(&endSignals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return endSignals;
}

// Auctions end in time even while nobody asks for them, so that sellers get their mails.
void serveUntil(HttpService &service, Auctions &auctions, const sigset_t &endSignals, int port)
{
    std::thread server([&service] { service.run(); });
    while (!service.isRunning())
        std::this_thread::yield();
    std::printf("kavlor-localservice: listening on 127.0.0.1:%d\n", port);
    std::fflush(stdout);
    const timespec pause{20, 0};
    while (sigtimedwait(&endSignals, nullptr, &pause) < 0)
        auctions.endDue();
    service.stop();
    server.join();
}

} // namespace

int main(int argc, char *argv[])
{
    const sigset_t endSignals = blockEndSignals();
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kavlor-localservice"));

    const Result<Options> parsed = Options::parse(QCoreApplication::arguments());
    if (!parsed.isOk())
        return fail(BadOptions, parsed.error);
    const Options &options = parsed.value;
    if (options.help) {
        std::fputs(qPrintable(Options::helpText()), stdout);
        return Ended;
    }

    if (!prepareSecrets())
        return fail(CannotServe, QStringLiteral("there is no source of randomness"));
    DataFolder folder(options.dataFolder);
    const QString folderError = folder.open();
    if (!folderError.isEmpty())
        return fail(CannotServe, folderError);
    Database database(folder.databasePath());
    const QString databaseError = database.open();
    if (!databaseError.isEmpty())
        return fail(CannotServe, databaseError);

    Accounts accounts(database);
    Auctions auctions(database);
    Pictures pictures(folder);
    Operations operations(accounts, auctions, pictures, folder);
    MailOutbox outbox(database);
    WebSite site(accounts, auctions, outbox, pictures, folder);
    folder.removeLeftovers(auctions.allMedia());
    if (options.seed) {
        const QString seedError = Seed(database, accounts, auctions, folder).plant();
        if (!seedError.isEmpty())
            return fail(CannotServe, seedError);
    }

    HttpService service(accounts, auctions, operations, site, folder, options.maxMediaBytes);
    const int port = service.bind(options.port);
    if (port == 0)
        return fail(CannotServe, QStringLiteral("port %1 is in use").arg(options.port));
    serveUntil(service, auctions, endSignals, port);
    return Ended;
}
