// SPDX-License-Identifier: MIT

#include "settingsstore.h"
#include "testcase.h"
#include "testmain.h"

#include <QDir>
#include <QFileInfo>
#include <sys/stat.h>

namespace {

constexpr QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
    | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;

} // namespace

class tst_SettingsStore : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void liesUnderTheOrganisationKavlor();
    void isClosedToOthersFromTheFirstMoment();
    void staysClosedWhenItIsRewritten();
    void anOpenFileIsClosed();

private:
    QTemporaryDir m_home;
};

void tst_SettingsStore::init()
{
    TestCase::init();
    QDir(m_home.filePath(QStringLiteral("kavlor"))).removeRecursively();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_home.path());
    ::umask(022); // as on an ordinary desktop, where a new file is readable by everybody
}

void tst_SettingsStore::liesUnderTheOrganisationKavlor()
{
    const auto settings = openSettingsStore();
    QCOMPARE(settings->fileName(), m_home.filePath(QStringLiteral("kavlor/kavlor.conf")));
    QCOMPARE(settings->applicationName(), QStringLiteral("kavlor"));
}

void tst_SettingsStore::isClosedToOthersFromTheFirstMoment()
{
    const auto settings = openSettingsStore();
    const QFileInfo file(settings->fileName());
    QVERIFY(file.exists());
    QVERIFY(!(file.permissions() & others));
}

void tst_SettingsStore::staysClosedWhenItIsRewritten()
{
    const auto settings = openSettingsStore();
    for (int round = 0; round < 3; ++round) {
        settings->setValue(QStringLiteral("UserData.m1/Password"), round);
        settings->sync();
        QVERIFY(!(QFileInfo(settings->fileName()).permissions() & others));
    }
    QVERIFY(QFileInfo(settings->fileName()).size() > 0);
}

void tst_SettingsStore::anOpenFileIsClosed()
{
    QDir().mkpath(m_home.filePath(QStringLiteral("kavlor")));
    QFile file(m_home.filePath(QStringLiteral("kavlor/kavlor.conf")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[last]\nUSERID=m1\n");
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));

    const auto settings = openSettingsStore();
    QVERIFY(!(QFileInfo(file.fileName()).permissions() & others));
    QCOMPARE(settings->value(QStringLiteral("last/USERID")).toString(), QStringLiteral("m1"));
}

KAVLOR_TEST_MAIN(tst_SettingsStore)
#include "tst_settingsstore.moc"
