// SPDX-License-Identifier: MIT

#include "languages.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <algorithm>

/** The texts in other languages: complete, in step with the sources, and found. */
class tst_Languages : public TestCase
{
    Q_OBJECT

private slots:
    void everyTextOfTheSourcesIsTranslated_data();
    void everyTextOfTheSourcesIsTranslated();
    void translationsKeepWhatIsFilledIn_data();
    void translationsKeepWhatIsFilledIn();
    void theFirstLanguageThatIsKnownIsUsed_data();
    void theFirstLanguageThatIsKnownIsUsed();
    void theProgramAndTheToolkitSpeakIt();
};

namespace {

struct Message
{
    QString context;
    QString source;
    QString translation;
    QString state; // of the translation: empty = finished

    QString name() const
    {
        return context + QStringLiteral(": ") + source;
    }
};

QList<Message> messagesIn(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QList<Message> messages;
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            messages.append({context, xml.readElementText(), {}, {}});
        } else if (xml.name() == QLatin1String("translation")) {
            messages.last().state = xml.attributes().value(QLatin1String("type")).toString();
            messages.last().translation = xml.readElementText();
        }
    }
    return xml.hasError() ? QList<Message>() : messages;
}

QStringList namesOf(const QList<Message> &messages)
{
    QStringList names;
    for (const Message &message : messages)
        names.append(message.name());
    names.sort();
    return names;
}

QString translationFile(const QString &language)
{
    return QStringLiteral(KAVLOR_TRANSLATIONS "/kavlor_%1.ts").arg(language);
}

void addLanguages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("German") << QStringLiteral("de");
    QTest::newRow("Finnish") << QStringLiteral("fi");
}

// The places of a text where something is put in, and the patterns of a file filter.
QStringList placesIn(const QString &text)
{
    static const QRegularExpression place(QStringLiteral("%L?(\\d)|\\*\\.\\w+|</?\\w+"));
    QStringList places;
    for (auto each = place.globalMatch(text); each.hasNext();) {
        const QRegularExpressionMatch found = each.next();
        places.append(found.captured(1).isEmpty() ? found.captured() : found.captured(1));
    }
    places.sort();
    return places;
}

} // namespace

void tst_Languages::everyTextOfTheSourcesIsTranslated_data()
{
    addLanguages();
}

void tst_Languages::everyTextOfTheSourcesIsTranslated()
{
    QFETCH(QString, language);
    const QTemporaryDir folder;
    const QString updated = folder.filePath(QStringLiteral("updated.ts"));
    QVERIFY(QFile::copy(translationFile(language), updated));
    QProcess update;
    update.setProcessChannelMode(QProcess::MergedChannels);
    update.start(QStringLiteral(KAVLOR_LUPDATE),
                 {QStringLiteral("-locations"), QStringLiteral("none"),
                  QStringLiteral(KAVLOR_SOURCES), QStringLiteral("-ts"), updated});
    QVERIFY2(update.waitForFinished(patience) && update.exitCode() == 0,
             update.readAll().constData());

    const QList<Message> messages = messagesIn(updated);
    QVERIFY(messages.size() > 200);
    for (const Message &message : messages) {
        QVERIFY2(message.state.isEmpty(),
                 qPrintable(message.state + QLatin1Char(' ') + message.name()));
        QVERIFY2(!message.translation.isEmpty(), qPrintable(message.name()));
    }
    QCOMPARE(namesOf(messagesIn(translationFile(language))), namesOf(messages));
}

void tst_Languages::translationsKeepWhatIsFilledIn_data()
{
    addLanguages();
}

void tst_Languages::translationsKeepWhatIsFilledIn()
{
    QFETCH(QString, language);
    const auto spaces = [](const QString &text) { return text.endsWith(QLatin1Char(' ')); };
    const QList<Message> messages = messagesIn(translationFile(language));
    for (const Message &message : messages) {
        QVERIFY2(placesIn(message.source) == placesIn(message.translation),
                 qPrintable(message.translation));
        QVERIFY2(spaces(message.source) == spaces(message.translation),
                 qPrintable(message.translation));
    }
}

void tst_Languages::theFirstLanguageThatIsKnownIsUsed_data()
{
    QTest::addColumn<QStringList>("languages");
    QTest::addColumn<QString>("translation");
    const auto row = [](const char *name, const QString &languages, const char *translation) {
        QTest::newRow(name) << languages.split(QLatin1Char(' '))
                            << QString::fromLatin1(translation);
    };
    row("German", QStringLiteral("de"), "de");
    row("German of Austria", QStringLiteral("de-AT de"), "de");
    row("German with its script", QStringLiteral("de-Latn-DE"), "de");
    row("Finnish", QStringLiteral("fi-FI fi"), "fi");
    row("English", QStringLiteral("en-US en"), "");
    row("English before German", QStringLiteral("en-GB de"), "");
    row("Filipino, which is no Finnish", QStringLiteral("fil-PH"), "");
    row("unknown before Finnish", QStringLiteral("sv-FI fi-FI"), "fi");
    row("unknown", QStringLiteral("fr"), "");
    row("none", QStringLiteral("C"), "");
}

void tst_Languages::theFirstLanguageThatIsKnownIsUsed()
{
    QFETCH(QStringList, languages);
    QFETCH(QString, translation);
    QCOMPARE(Languages::translationFor(languages), translation);
}

void tst_Languages::theProgramAndTheToolkitSpeakIt()
{
    const auto own = [] { return QCoreApplication::translate("KavlorLogin", "Password"); };
    const auto toolkit = [] { return QCoreApplication::translate("QPlatformTheme", "Cancel"); };
    {
        Languages languages;
        languages.use(QLocale(QLocale::German));
        QCOMPARE(own(), QStringLiteral("Passwort"));
        QCOMPARE(toolkit(), QStringLiteral("Abbrechen"));
        languages.use(QLocale(QLocale::Finnish));
        QCOMPARE(own(), QStringLiteral("Salasana"));
        QCOMPARE(toolkit(), QStringLiteral("Peru"));
        languages.use(QLocale(QLocale::English));
        QCOMPARE(own(), QStringLiteral("Password"));
        languages.use(QLocale(QLocale::German));
    }
    QCOMPARE(own(), QStringLiteral("Password"));
    QCOMPARE(toolkit(), QStringLiteral("Cancel"));
}

KAVLOR_TEST_MAIN(tst_Languages)
#include "tst_languages.moc"
