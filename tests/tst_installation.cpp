// SPDX-License-Identifier: MIT

#include "clientdriver.h"
#include "patience.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>

/** What each component puts where, under a prefix that is given only when it is installed. */
class tst_Installation : public TestCase
{
    Q_OBJECT

private slots:
    void theClientStartsFromWhereItWasInstalled();
    void theBusFindsTheBridgeUnderItsPrefix();
    void theServiceComesAlone();
    void aHandheldGetsItsOwnLauncher();

private:
    bool install(const char *component);
    bool cmake(const QStringList &arguments);
    QStringList programs() const;

    QTemporaryDir m_prefix;
};

bool tst_Installation::install(const char *component)
{
    QDir(m_prefix.path()).removeRecursively();
    return cmake({QStringLiteral("--install"), QStringLiteral(KAVLOR_BUILD),
                  QStringLiteral("--component"), QLatin1String(component),
                  QStringLiteral("--prefix"), m_prefix.path()});
}

bool tst_Installation::cmake(const QStringList &arguments)
{
    QProcess cmake;
    cmake.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    cmake.start(QStringLiteral(KAVLOR_CMAKE), arguments);
    return cmake.waitForFinished(patience) && cmake.exitCode() == 0;
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

    // A picture of it goes where whoever asks for it is, not where the client is.
    const QString folder = QDir::currentPath();
    const auto back = qScopeGuard([folder] { QDir::setCurrent(folder); });
    QVERIFY(QDir::setCurrent(m_prefix.path()));
    QVERIFY2(client.picture(QStringLiteral("start.png")), qPrintable(client.error()));
    QVERIFY(QFile::exists(m_prefix.filePath(QStringLiteral("start.png"))));
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

// Only what lies beside the program is installed, since another build of that would take minutes.
void tst_Installation::aHandheldGetsItsOwnLauncher()
{
    QDir(m_prefix.path()).removeRecursively();
    const QTemporaryDir build;
    QVERIFY(cmake({QStringLiteral("-S"), QStringLiteral(KAVLOR_SOURCE), QStringLiteral("-B"),
                   build.path(), QStringLiteral("-DKAVLOR_HANDHELD=ON"),
                   QStringLiteral("-DBUILD_TESTING=OFF"), QStringLiteral("-DKAVLOR_BRIDGE=OFF"),
                   QStringLiteral("-DKAVLOR_LOCALSERVICE=OFF")}));
    QVERIFY(cmake({QStringLiteral("-DCMAKE_INSTALL_PREFIX=") + m_prefix.path(),
                   QStringLiteral("-DCMAKE_INSTALL_COMPONENT=client"), QStringLiteral("-P"),
                   build.filePath(QStringLiteral("desktop/cmake_install.cmake"))}));

    QStringList files;
    QDirIterator file(m_prefix.path(), QDir::Files, QDirIterator::Subdirectories);
    while (file.hasNext())
        files.append(QDir(m_prefix.path()).relativeFilePath(file.next()));
    files.sort();
    QCOMPARE(files,
             (QStringList{QStringLiteral("share/applications/hildon/kavlor.desktop"),
                          QStringLiteral("share/icons/hicolor/64x64/apps/kavlor.png")}));
    QCOMPARE(QImage(m_prefix.filePath(files.constLast())).size(), QSize(64, 64));
}

KAVLOR_TEST_MAIN(tst_Installation)
#include "tst_installation.moc"
