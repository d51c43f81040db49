// SPDX-License-Identifier: MIT

#include "clientdriver.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

/** What each component puts where, under a prefix that is given only when it is installed. */
class tst_Installation : public TestCase
{
    Q_OBJECT

private slots:
    void theClientStartsFromWhereItWasInstalled();
    void theBusFindsTheBridgeUnderItsPrefix();
    void theServiceComesAlone();

private:
    bool install(const char *component);
    QStringList programs() const;

    QTemporaryDir m_prefix;
};

bool tst_Installation::install(const char *component)
{
    QDir(m_prefix.path()).removeRecursively();
    QProcess cmake;
    cmake.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    cmake.start(QStringLiteral(KAVLOR_CMAKE),
                {QStringLiteral("--install"), QStringLiteral(KAVLOR_BUILD),
                 QStringLiteral("--component"), QLatin1String(component),
                 QStringLiteral("--prefix"), m_prefix.path()});
    return cmake.waitForFinished() && cmake.exitCode() == 0;
}

QStringList tst_Installation::programs() const
{
    return QDir(m_prefix.filePath(QStringLiteral("bin"))).entryList(QDir::Files, QDir::Name);
}

void tst_Installation::theClientStartsFromWhereItWasInstalled()
{
    QVERIFY(install("client"));
    QCOMPARE(programs(), QStringList{QStringLiteral("kavlor")});
    QVERIFY(QFile::exists(m_prefix.filePath(QStringLiteral("share/applications/kavlor.desktop"))));

    ClientDriver client;
    client.setProgram(m_prefix.filePath(QStringLiteral("bin/kavlor")));
    QVERIFY2(client.start(), qPrintable(client.error()));
    QVERIFY2(client.waitFor(QStringLiteral("splashProgress")), qPrintable(client.error()));
}

void tst_Installation::theBusFindsTheBridgeUnderItsPrefix()
{
    QVERIFY(install("bridge"));
    QCOMPARE(programs(), QStringList{QStringLiteral("kavlor-icd2-bridge")});
    QFile activation(
        m_prefix.filePath(QStringLiteral("share/dbus-1/system-services/com.nokia.icd2.service")));
    QVERIFY(activation.open(QIODevice::ReadOnly));
    QVERIFY(activation.readAll().contains("\nExec=" + QFile::encodeName(m_prefix.path())
                                          + "/bin/kavlor-icd2-bridge\n"));
}

void tst_Installation::theServiceComesAlone()
{
    QVERIFY(install("localservice"));
    QCOMPARE(programs(), QStringList{QStringLiteral("kavlor-localservice")});
}

KAVLOR_TEST_MAIN(tst_Installation)
#include "tst_installation.moc"
