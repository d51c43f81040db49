// SPDX-License-Identifier: MIT

#include "dostep.h"
#include "testcase.h"
#include "testmain.h"
#include "wholesystem.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <csignal>
#include <sys/resource.h>

/**
 * Where a member's password may be found: in the settings file, which its owner alone can read, and
 * nowhere else.
 *
 * The real client is worked with passwords that hold a word found nowhere else. After each step,
 * and while requests that carry a password hang, that word is looked for in all that outlives the
 * program or that others can read.
 */
class tst_Secrets : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void aPasswordIsFoundOnlyInTheSettings();
    void noMessageHoldsAPassword();
    void aCrashLeavesNoPassword();

private:
    /** Everything but the memory of the programs that holds the word now. */
    QStringList placesWithPassword();

    WholeSystem m_system;
};

namespace {

const QString word = QStringLiteral("Wq7zvMarker");
const QString password = QStringLiteral("old ") + word;
const QString nextPassword = QStringLiteral("new ") + word;
const QString member = QStringLiteral("zoe");
const QString settingsFile = QStringLiteral("kavlor.conf");

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

bool holdsWord(const QByteArray &bytes)
{
    const auto *utf16 = reinterpret_cast<const char *>(word.utf16());
    return bytes.contains(word.toLatin1())
        || bytes.contains(QByteArray(utf16, word.size() * qsizetype(sizeof(char16_t))));
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Which files below the folder hold the word. One that vanishes meanwhile holds nothing.
QStringList filesWithWord(const QString &folder)
{
    QStringList found;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (holdsWord(contents(path)))
            found.append(QFileInfo(path).fileName());
    }
    return found;
}

} // namespace

void tst_Secrets::initTestCase()
{
    // A crash would leave a core wherever the system lets it.
    rlimit limit = {};
    QCOMPARE(getrlimit(RLIMIT_CORE, &limit), 0);
    limit.rlim_cur = limit.rlim_max;
    QCOMPARE(setrlimit(RLIMIT_CORE, &limit), 0);

    QVERIFY(m_system.startConnectivity());
    QVERIFY(m_system.startService({QStringLiteral("--seed")}));
    const QByteArray login = "Username=zoe&Password1=" + password.toLatin1().toPercentEncoding();
    const LocalServiceProcess::Reply reply = m_system.service.post(
        "CreateAccount",
        login + "&Password2=" + password.toLatin1().toPercentEncoding()
            + "&EmailAddress=zoe@example.org&CountryID=US&Gender=M&Language=EN&SUBMIT=Submit");
    QVERIFY2(reply.body.toInt() > 0, reply.body.constData());
    m_system.client->setEnvironment(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*=true"));
    m_system.client->setEnvironment(QStringLiteral("QT_MESSAGE_PATTERN"),
                                    QStringLiteral("%{category}: %{message}"));
}

void tst_Secrets::cleanup()
{
    m_system.client->kill();
    m_system.service.resume();
}

QStringList tst_Secrets::placesWithPassword()
{
    ClientDriver &client = *m_system.client;
    // The home and the service's data lie in the temporary folder.
    QStringList places = filesWithWord(QDir::tempPath());
    const QString process = QStringLiteral("/proc/%1/").arg(client.processId());
    for (const char *file : {"cmdline", "environ", "comm", "status"}) {
        // As anybody but root cannot read most of them, an empty one is as it should be.
        if (holdsWord(contents(process + QLatin1String(file))))
            places.append(QLatin1String(file));
    }
    if (holdsWord(client.output()))
        places.append(QStringLiteral("output"));
    return places;
}

void tst_Secrets::aPasswordIsFoundOnlyInTheSettings()
{
    ClientDriver &client = *m_system.client;
    const QStringList settingsAlone{settingsFile};
    DO(client.start());
    DO(client.click(name("loginButton")));
    DO(client.type(name("lineUsername"), member));
    DO(client.type(name("linePassword"), password));
    m_system.service.pause();
    DO(client.click(name("loginButton")));
    QCOMPARE(placesWithPassword(), QStringList());
    m_system.service.resume();
    DO(client.waitFor(name("buttonUpload")));
    QCOMPARE(placesWithPassword(), settingsAlone);

    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkRed), QStringLiteral("A photo")));
    m_system.service.pause();
    DO(client.click(name("createAuctionButton")));
    QVERIFY(!client.isThere(name("createAuctionButton"))); // disabled: the upload is under way
    QCOMPARE(placesWithPassword(), settingsAlone);
    m_system.service.resume();
    DO(client.click(name("buttonOk")));
    DO(client.click(name("pushButtonDone")));
    DO(client.waitFor(name("buttonSettings")));
    QCOMPARE(placesWithPassword(), settingsAlone);

    DO(client.click(name("buttonSettings")));
    DO(client.click(name("pushButtonMyAccount")));
    DO(client.click(name("checkBoxEmail")));
    DO(client.type(name("lineEmail"), QStringLiteral("zoe@example.net")));
    DO(client.click(name("checkBoxPassword")));
    DO(client.type(name("linePassword"), nextPassword));
    DO(client.type(name("lineConfirm"), nextPassword));
    m_system.service.pause();
    DO(client.click(name("pushButtonDone")));
    QCOMPARE(placesWithPassword(), settingsAlone);
    m_system.service.resume();
    DO(client.waitFor(name("pushButtonMyAccount")));
    QCOMPARE(placesWithPassword(), settingsAlone);
    DO(client.close());
    QCOMPARE(placesWithPassword(), settingsAlone);
    const QFile::Permissions ownerOnly =
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    QCOMPARE(
        QFileInfo(client.home() + QStringLiteral("/.config/kavlor/") + settingsFile).permissions(),
        ownerOnly);
    QVERIFY2(client.output().contains("qt."), client.output().constData()); // it does log
    QVERIFY(!holdsWord(m_system.service.complaints()));
}

void tst_Secrets::noMessageHoldsAPassword()
{
    ClientDriver &client = *m_system.client;
    QStringList told;
    // Every request but the first fails.
    DO(client.start());
    DO(client.waitFor(name("buttonUpload")));
    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkRed), QStringLiteral("Another")));
    m_system.service.kill();
    DO(client.click(name("createAuctionButton")));
    told.append(client.closeBox());
    QVERIFY2(told.constLast().startsWith(QStringLiteral("Media uploading failed. Reason: ")),
             qPrintable(told.constLast()));
    DO(client.click(name("cancelNavigationButton"))); // signs out
    DO(client.click(name("loginButton")));
    DO(client.type(name("lineUsername"), member));
    DO(client.type(name("linePassword"), nextPassword));
    DO(client.click(name("loginButton")));
    told.append(client.closeBox());
    QVERIFY(!told.constLast().isEmpty());

    QVERIFY(m_system.startService());
    DO(client.type(name("linePassword"), password)); // no longer the right one
    DO(client.click(name("loginButton")));
    DO(client.waitForText(name("labelError"), QStringLiteral("kavlor authentication failed.")));
    told.append(client.text(name("labelError")));
    DO(client.type(name("linePassword"), nextPassword));
    DO(client.click(name("loginButton")));
    DO(client.waitFor(name("buttonUpload")));
    DO(client.close());

    QCOMPARE(m_system.service.terminate(), 0);
    DO(client.start());
    told.append(client.closeBox());
    QVERIFY2(told.constLast().startsWith(QStringLiteral("kavlor experienced an error")),
             qPrintable(told.constLast()));
    QCOMPARE(client.waitForEnd(), 0);
    for (const QString &text : std::as_const(told))
        QVERIFY2(!text.contains(word), qPrintable(text));
    // The draft of the failed upload is there, and holds none either.
    QVERIFY(QFileInfo::exists(client.home() + QStringLiteral("/.config/kavlor/upload.draft")));
    QCOMPARE(placesWithPassword(), QStringList{settingsFile});
    QVERIFY(m_system.startService());
}

void tst_Secrets::aCrashLeavesNoPassword()
{
    ClientDriver &client = *m_system.client;
    DO(client.start());
    DO(client.waitFor(name("buttonUpload")));
    QVERIFY(!client.isDumpable());
    QCOMPARE(::kill(static_cast<pid_t>(client.processId()), SIGABRT), 0);
    QCOMPARE(client.waitForEnd(), -1);
    QCOMPARE(placesWithPassword(), QStringList{settingsFile});
}

KAVLOR_TEST_MAIN(tst_Secrets)
#include "tst_secrets.moc"
