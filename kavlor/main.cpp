#include "connector.h"
#include "fonts.h"
#include "rootviewcontroller.h"
#include "settingsstore.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    CConnector connector; // before the application object, after everything on the way out
    const std::unique_ptr<QSettings> settings = openSettingsStore();
    QApplication app(argc, argv);
    installFontSubstitutes();
    const auto root = std::make_unique<RootViewController>(settings.get());
    return QApplication::exec();
}
