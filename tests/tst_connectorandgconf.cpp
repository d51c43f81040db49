// SPDX-License-Identifier: MIT

#include "connector.h"
#include "privatebus.h"
#include "standindaemon.h"
#include "testcase.h"
#include "testmain.h"

/** The connection manager with the real GConf server, which decides how it connects. */
class tst_ConnectorAndGConf : public TestCase
{
    Q_OBJECT

private slots:
    void cleanupTestCase();

    void theStoredSettingDecides();
};

void tst_ConnectorAndGConf::cleanupTestCase()
{
    PrivateBus::gconfTool({QStringLiteral("--shutdown")});
}

void tst_ConnectorAndGConf::theStoredSettingDecides()
{
    const QString key = QStringLiteral("/system/osso/connectivity/network_type/auto_connect");
    PrivateBus bus;
    QVERIFY(bus.start());
    StandInDaemon daemon(bus.address());
    QVERIFY(daemon.enter());
    CConnector connector;
    QTRY_COMPARE(daemon.members(), QStringList{QStringLiteral("state_req")});

    for (const auto &[setting, member] :
         {std::pair{"[]", "show_conn_dlg"}, std::pair{"[WLAN_INFRA,GPRS]", "connect_req"}}) {
        QVERIFY(PrivateBus::gconfTool({QStringLiteral("--set"), key, QStringLiteral("--type"),
                                       QStringLiteral("list"), QStringLiteral("--list-type"),
                                       QStringLiteral("string"), QLatin1String(setting)}));
        daemon.takeCalls();
        connector.smartConnect();
        QTRY_COMPARE(daemon.members(), QStringList{QLatin1String(member)});
    }
}

KAVLOR_TEST_MAIN(tst_ConnectorAndGConf)
#include "tst_connectorandgconf.moc"
