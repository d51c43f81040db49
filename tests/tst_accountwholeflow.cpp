// SPDX-License-Identifier: MIT

#include "dostep.h"
#include "testcase.h"
#include "testmain.h"
#include "wholesystem.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

/**
 * A new member's way, from no account to one that was changed, with the real client and the real
 * service, both of them restarted on the way.
 */
class tst_AccountWholeFlow : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();

    void anAccountIsMadeUsedAndChanged();

private:
    bool changeAccount();
    QVariant stored(const char *column) const;
    /** Which alerts the service sends: on a bid, an end, a view, a question. */
    QList<bool> alerts() const;
    bool databaseHolds(const QByteArray &bytes) const;

    WholeSystem m_system;
};

namespace {

const QString member = QStringLiteral("zoe");
const QString oldPassword = QStringLiteral("first secret & more");
const QString newPassword = QStringLiteral("second=secret%20");

QString name(const char *objectName)
{
    return QLatin1String(objectName);
}

} // namespace

void tst_AccountWholeFlow::initTestCase()
{
    QVERIFY(m_system.startConnectivity());
    QVERIFY(m_system.startService());
}

QVariant tst_AccountWholeFlow::stored(const char *column) const
{
    return m_system.service.value(
        QStringLiteral("SELECT %1 FROM members WHERE username = ?").arg(QLatin1String(column)),
        {member});
}

QList<bool> tst_AccountWholeFlow::alerts() const
{
    return {stored("notify_bid").toBool(), stored("notify_end").toBool(),
            stored("notify_view").toBool(), stored("notify_question").toBool()};
}

bool tst_AccountWholeFlow::databaseHolds(const QByteArray &bytes) const
{
    const QFileInfoList files = QDir(m_system.service.dataDir()).entryInfoList(QDir::Files);
    for (const QFileInfo &info : files) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(bytes))
            return true;
    }
    return false;
}

bool tst_AccountWholeFlow::changeAccount()
{
    ClientDriver &client = *m_system.client;
    return client.click(name("buttonSettings")) && client.click(name("pushButtonMyAccount"))
        && client.click(name("checkBoxEmail"))
        && client.type(name("lineEmail"), QStringLiteral("zoe@example.net"))
        && client.click(name("checkBoxPassword")) && client.type(name("linePassword"), newPassword)
        && client.type(name("lineConfirm"), newPassword) && client.click(name("checkBoxPaypal"))
        && client.type(name("linePaypal"), QStringLiteral("pay@example.net"))
        && client.click(name("pushButtonDone")) && client.waitFor(name("pushButtonMyAccount"));
}

void tst_AccountWholeFlow::anAccountIsMadeUsedAndChanged()
{
    ClientDriver &client = *m_system.client;
    DO(client.start());
    DO(m_system.createAccount(member, oldPassword, QStringLiteral("zoe@example.org")));
    DO(m_system.prepareUpload(m_system.makePhoto(Qt::darkCyan), QStringLiteral("A first photo")));
    DO(client.click(name("createAuctionButton")));
    DO(client.click(name("buttonOk")));
    // The new member's alerts are as the service set them; two of them are turned about.
    QCOMPARE(alerts(), (QList<bool>{true, true, false, true}));
    DO(client.click(name("checkBoxOnBid")));
    DO(client.click(name("checkBoxOnView")));
    DO(client.click(name("pushButtonDone")));
    DO(client.waitFor(name("buttonSettings")));
    QCOMPARE(alerts(), (QList<bool>{false, true, true, true}));
    DO(client.close());
    QCOMPARE(m_system.service.terminate(), 0);

    // Both are started again: the member is remembered.
    QVERIFY(m_system.startService());
    DO(client.start());
    DO(client.waitForText(name("labelWelcome"), member));
    DO(changeAccount());
    QCOMPARE(stored("email").toString(), QStringLiteral("zoe@example.net"));
    QCOMPARE(stored("paypal").toString(), QStringLiteral("pay@example.net"));
    DO(client.click(name("backNavigationButton")));
    DO(client.click(name("cancelNavigationButton"))); // signs out

    DO(client.click(name("loginButton")));
    DO(client.type(name("lineUsername"), member));
    DO(client.type(name("linePassword"), oldPassword));
    DO(client.click(name("loginButton")));
    DO(client.waitForText(name("labelError"), QStringLiteral("kavlor authentication failed.")));
    DO(client.type(name("linePassword"), newPassword));
    DO(client.click(name("loginButton")));
    DO(client.waitForText(name("labelWelcome"), member));
    DO(client.close());

    QVERIFY(databaseHolds(member.toUtf8())); // the search finds what is there
    QVERIFY(!databaseHolds(oldPassword.toUtf8()));
    QVERIFY(!databaseHolds(newPassword.toUtf8()));
    QCOMPARE(alerts(), (QList<bool>{false, true, true, true}));
    QCOMPARE(m_system.service.value(QStringLiteral("SELECT count(*) FROM auctions")).toInt(), 1);
    QCOMPARE(m_system.service.terminate(), 0);
    QCOMPARE(m_system.service.complaints(), QByteArray());

    const QString file = client.home() + QStringLiteral("/.config/kavlor/kavlor.conf");
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions permissions = QFileInfo(file).permissions();
    QCOMPARE(permissions & others, QFile::Permissions());
    QCOMPARE(permissions & (QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner),
             QFile::ReadOwner | QFile::WriteOwner);
    const QSettings settings(file, QSettings::IniFormat);
    QCOMPARE(settings.value(QStringLiteral("last/USERID")).toString(), member);
    const QString group = QStringLiteral("UserData.") + member;
    QCOMPARE(settings.value(group + QStringLiteral("/Username")).toString(), member);
    QCOMPARE(settings.value(group + QStringLiteral("/Password")).toString(), newPassword);
    QCOMPARE(settings.value(group + QStringLiteral("/Email Address")).toString(),
             QStringLiteral("zoe@example.net"));
    QCOMPARE(settings.value(group + QStringLiteral("/Paypal Address")).toString(),
             QStringLiteral("pay@example.net"));
    QCOMPARE(settings.value(group + QStringLiteral("/UserID")).toInt(), stored("id").toInt());
}

KAVLOR_TEST_MAIN(tst_AccountWholeFlow)
#include "tst_accountwholeflow.moc"
