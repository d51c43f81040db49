// SPDX-License-Identifier: MIT

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
#include <cstdlib>

namespace {

enum ExitCode { Ended = 0, CannotServe = 1, BadOptions = 2 };

void say(const QString &text)
{
    std::fprintf(stderr, "kavlor-localservice: %s\n", qPrintable(text));
}

int fail(ExitCode code, const Failure &failure)
{
    say(failure.reason);
    return code;
}

// One line each, whatever they are about.
void sayWarning(QtMsgType, const QMessageLogContext &, const QString &text)
{
    say(text.simplified());
}

// The folder with its records, found whole. Only then is anything in it moved.
Result<void> takeData(DataFolder &folder, Database &database, Auctions &auctions)
{
    const Result<void> taken = folder.open();
    if (!taken.isOk())
        return taken;
    const Result<void> opened =
        database.open(folder.isNew() ? Database::MayBeEmpty : Database::MustBeThere);
    if (!opened.isOk())
        return opened;
    const Result<QStringList> named = auctions.allMedia();
    if (!named.isOk())
        return named.failure();
    const Result<int> aside = folder.setAside(named.value());
    if (!aside.isOk())
        say(aside.failure().reason);
    else if (aside.value() > 0)
        say(QStringLiteral("%1 files that no auction names are now in lost/.").arg(aside.value()));
    const Result<void> marked = folder.finishMaking();
    if (!marked.isOk())
        say(marked.failure().reason);
    return {};
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
void waitFor(const sigset_t &endSignals, Auctions &auctions)
{
    const timespec pause{20, 0};
    while (sigtimedwait(&endSignals, nullptr, &pause) < 0)
        (void)auctions.endDue(); // the database has complained of a failure itself
}

} // namespace

int main(int argc, char *argv[])
{
    const sigset_t endSignals = blockEndSignals();
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kavlor-localservice"));

    qInstallMessageHandler(sayWarning);

    const Result<Options> parsed = Options::parse(QCoreApplication::arguments());
    if (!parsed.isOk())
        return fail(BadOptions, parsed.failure());
    const Options &options = parsed.value();
    if (options.version) {
        std::puts("kavlor-localservice " KAVLOR_VERSION);
        return Ended;
    }
    if (options.help) {
        std::fputs(qPrintable(Options::helpText()), stdout);
        return Ended;
    }

    if (!prepareSecrets())
        return fail(CannotServe, broken(QStringLiteral("there is no source of randomness")));
    DataFolder folder(options.dataFolder);
    Database database(folder.databasePath());
    Accounts accounts(database);
    Auctions auctions(database);
    Pictures pictures(folder);
    Operations operations(accounts, auctions, pictures, folder);
    MailOutbox outbox(database);
    WebSite site(accounts, auctions, outbox, pictures, folder);
    const Result<void> taken = takeData(folder, database, auctions);
    if (!taken.isOk())
        return fail(CannotServe, taken.failure());
    if (options.seed) {
        const Result<void> planted = Seed(database, accounts, auctions, folder).plant();
        if (!planted.isOk())
            return fail(CannotServe, planted.failure());
    }

    HttpService service(accounts, auctions, operations, site, folder, options.maxMediaBytes);
    const Result<int> port = service.start(options.port);
    if (!port.isOk())
        return fail(CannotServe, port.failure());
    std::printf("kavlor-localservice: listening on 127.0.0.1:%d\n", port.value());
    std::fflush(stdout);
    waitFor(endSignals, auctions);
    // What still runs then has not been answered, and nothing that was is lost by this.
    if (!service.stop())
        std::_Exit(Ended);
    return Ended;
}
