// SPDX-License-Identifier: MIT

#include "options.h"

#include <QCommandLineParser>
#include <QStandardPaths>

namespace {

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QStringLiteral("The auction service on this machine alone, for trying out and testing."));
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({
        {QStringLiteral("port"), QStringLiteral("Listen on port <N>; 0 takes any free one."),
         QStringLiteral("N"), QStringLiteral("8470")},
        {QStringLiteral("data"), QStringLiteral("Keep everything in the folder <DIR>."),
         QStringLiteral("DIR"),
         QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
             + QStringLiteral("/kavlor-localservice")},
        {QStringLiteral("max-media"),
         QStringLiteral("Refuse photos and clips of more than <BYTES> bytes."),
         QStringLiteral("BYTES"), QString::number(Options().maxMediaBytes)},
        {QStringLiteral("seed"),
         QStringLiteral(
             "Add the member \"demo\" (password \"demo\") with auctions of every state.")},
        {QStringLiteral("version"), QStringLiteral("Say which version this is and end.")},
        {QStringLiteral("help"), QStringLiteral("Say this and end.")},
    });
}

} // namespace

Result<Options> Options::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments))
        return refused(parser.errorText());
    const QStringList named = parser.optionNames();
    for (const QString &name : named) {
        if (named.count(name) > 1)
            return refused(QStringLiteral("'--%1' is given twice.").arg(name));
    }
    if (!parser.positionalArguments().isEmpty()) {
        return refused(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first()));
    }

    Options options;
    bool isNumber = false;
    const QString port = parser.value(QStringLiteral("port"));
    options.port = port.toUShort(&isNumber);
    if (!isNumber)
        return refused(QStringLiteral("'%1' is no port number (0 to 65535).").arg(port));

    const QString limit = parser.value(QStringLiteral("max-media"));
    options.maxMediaBytes = limit.toLongLong(&isNumber);
    if (!isNumber || options.maxMediaBytes < 1 || options.maxMediaBytes > maxMediaLimit) {
        return refused(
            QStringLiteral("'%1' is no number of bytes (1 to %2).").arg(limit).arg(maxMediaLimit));
    }

    options.dataFolder = parser.value(QStringLiteral("data"));
    if (options.dataFolder.isEmpty())
        return refused(QStringLiteral("The data folder has no name."));
    options.seed = parser.isSet(QStringLiteral("seed"));
    options.version = parser.isSet(QStringLiteral("version"));
    options.help = parser.isSet(QStringLiteral("help"));
    return options;
}

QString Options::helpText()
{
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText();
}
