// SPDX-License-Identifier: MIT

#include "connector.h"
#include "fonts.h"
#include "rootviewcontroller.h"
#include "settingsstore.h"

#include <QApplication>
#include <QDebug>

#include <cstdlib>

int main(int argc, char *argv[])
{
    // A line is written as it is, without its category; QT_MESSAGE_PATTERN shows that too.
    qSetMessagePattern(QStringLiteral("%{message}"));
    CConnector connector; // before the application object, after everything on the way out
    const std::unique_ptr<QSettings> settings = openSettingsStore();
    QApplication app(argc, argv);
    installFontSubstitutes();
    const auto root = std::make_unique<RootViewController>(settings.get());
    // The start may have waited for a connection already, and the member may have closed the window
    // meanwhile: no event loop would end then.
    return root->isVisible() ? QApplication::exec() : EXIT_SUCCESS;
}
