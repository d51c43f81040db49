// SPDX-License-Identifier: MIT

#include "startoptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

namespace {

class StartParser : public QCommandLineParser
{
public:
    StartParser()
        : m_help(addHelpOption())
        , m_version(addVersionOption())
    {
        setApplicationDescription(
            QCoreApplication::translate("StartOptions", "Sells your photos and clips at auction."));
        addPositionalArgument(
            QStringLiteral("file"),
            QCoreApplication::translate("StartOptions", "A photo or clip to upload."),
            QStringLiteral("[file]"));
    }

    bool isHelpSet() const
    {
        return isSet(m_help);
    }
    bool isVersionSet() const
    {
        return isSet(m_version);
    }

private:
    const QCommandLineOption m_help;
    const QCommandLineOption m_version;
};

} // namespace

StartOptions readStartOptions(const QStringList &arguments)
{
    StartParser parser;
    if (!parser.parse(arguments))
        return {QString(), parser.errorText()};
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1)
        return {QString(),
                QCoreApplication::translate("StartOptions", "Only one file can be opened.")};
    if (files.isEmpty() || files.constFirst().isEmpty())
        return {};
    return {QFileInfo(files.constFirst()).absoluteFilePath(), QString()};
}

bool askForText(const QStringList &arguments)
{
    // The toolkit's own arguments are still among them; to the parser they are only wrong.
    StartParser parser;
    parser.parse(arguments);
    return parser.isHelpSet() || parser.isVersionSet();
}

QString startText(const QStringList &arguments)
{
    StartParser parser;
    parser.parse(arguments);
    if (parser.isHelpSet())
        return parser.helpText();
    return QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                         QCoreApplication::applicationVersion());
}
