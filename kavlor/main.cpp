// SPDX-License-Identifier: MIT

#include "connector.h"
#include "fonts.h"
#include "languages.h"
#include "oneinstance.h"
#include "rootviewcontroller.h"
#include "settingsstore.h"
#include "startoptions.h"

#include <QApplication>
#include <QDebug>
#include <QTextStream>

#include <cstdlib>

#include <sys/prctl.h>

namespace {

constexpr int wrongUsage = 2; // exit code

QStringList argumentList(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

// Needs no display, unlike everything else.
int tellText(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    Languages languages;
    languages.use(QLocale());
    QTextStream(stdout) << startText(QCoreApplication::arguments());
    return EXIT_SUCCESS;
}

int runWindow(QSettings *settings, OneInstance *instance, const QString &mediaPath)
{
    const auto root = std::make_unique<RootViewController>(settings);
    QObject::connect(instance, &OneInstance::startedAgain, root.get(),
                     [&root](const QString &path) {
                         root->comeForward();
                         if (!path.isEmpty())
                             root->openMedia(path);
                     });
    instance->hear();
    if (!mediaPath.isEmpty())
        root->openMedia(mediaPath);
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    // The memory holds passwords: a crash writes none of it to a file, and no other program of the
    // same user may look into it.
    ::prctl(PR_SET_DUMPABLE, 0);
    // A line is written as it is, without its category; QT_MESSAGE_PATTERN shows that too.
    qSetMessagePattern(QStringLiteral("%{message}"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KAVLOR_VERSION));
    if (askForText(argumentList(argc, argv)))
        return tellText(argc, argv);

    CConnector connector; // before the application object, after everything on the way out
    const std::unique_ptr<QSettings> settings = openSettingsStore();
    QApplication app(argc, argv);
    Languages languages;
    languages.use(QLocale());
    const StartOptions options = readStartOptions(QApplication::arguments());
    if (!options.error.isEmpty()) {
        QTextStream(stderr) << QApplication::applicationName() << ": " << options.error << Qt::endl;
        return wrongUsage;
    }
    OneInstance instance(settings->fileName());
    if (instance.handOver(options.mediaPath))
        return EXIT_SUCCESS;
    installFontSubstitutes();
    return runWindow(settings.get(), &instance, options.mediaPath);
}
