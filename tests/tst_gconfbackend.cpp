// SPDX-License-Identifier: MIT

#include "gconfbackend.h"
#include "privatebus.h"
#include "qgconfloader.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>

#include <csignal>

namespace {

const char key[] = "/apps/kavlor-test/value";

// What the probe says of GConf when it finds libraries in that folder first.
QByteArray probeWithLibraries(const QString &folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), folder);
    QProcess probe;
    probe.setProcessEnvironment(environment);
    probe.setProcessChannelMode(QProcess::MergedChannels);
    probe.start(QStringLiteral(KAVLOR_CONNECTOR_PROBE), {QStringLiteral("gconf")});
    probe.closeWriteChannel();
    probe.waitForFinished();
    return probe.readAll();
}

// How many threads wait for an answer. The toolkit names a thread by its class; GConf and the bus
// have others, which come and go.
int waitingThreads()
{
    int count = 0;
    QDirIterator threads(QStringLiteral("/proc/self/task"), QDir::Dirs | QDir::NoDotAndDotDot);
    while (threads.hasNext()) {
        QFile name(threads.next() + QStringLiteral("/comm"));
        count += name.open(QIODevice::ReadOnly) && name.readAll().startsWith("QThread") ? 1 : 0;
    }
    return count;
}

} // namespace

class tst_GConfBackend : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void hungServerIsGivenUp_data();
    void hungServerIsGivenUp(); // first, since only the first read shares its time with the opening
    void thereIsOneReader();
    void everyType_data();
    void everyType();
    void listYieldsItsFirstElementAsText_data();
    void listYieldsItsFirstElementAsText();
    void unsupportedTypesAreWarnedOf_data();
    void unsupportedTypesAreWarnedOf();
    void unsetKeyIsWarnedOf();
    void impossibleKeyIsWarnedOf_data();
    void impossibleKeyIsWarnedOf();
    void valueIsReadAnewEachTime();
    void functionsResolveByName();
    void withoutTheLibraryThereIsNoReader();
    void withoutAServerNothingIsRead();

private:
    static bool store(const QStringList &arguments);
    static QVariant read();

    PrivateBus m_bus;
};

void tst_GConfBackend::initTestCase()
{
    QVERIFY(m_bus.start());
}

void tst_GConfBackend::cleanupTestCase()
{
    PrivateBus::gconfTool({QStringLiteral("--shutdown")});
}

bool tst_GConfBackend::store(const QStringList &arguments)
{
    return PrivateBus::gconfTool(
        QStringList{QStringLiteral("--set"), QLatin1String(key), QStringLiteral("--type")}
        + arguments);
}

QVariant tst_GConfBackend::read()
{
    CGConfBackend *reader = CGConfBackend::instance();
    return reader ? reader->value(QLatin1String(key)) : QVariant(QStringLiteral("no reader"));
}

void tst_GConfBackend::thereIsOneReader()
{
    QVERIFY(CGConfBackend::instance());
    QCOMPARE(CGConfBackend::instance(), CGConfBackend::instance());
}

void tst_GConfBackend::everyType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("string") << "string"
                            << "any" << QVariant(QStringLiteral("any"));
    QTest::newRow("empty string") << "string"
                                  << "" << QVariant(QString());
    QTest::newRow("string beyond Latin-1") << "string" << QStringLiteral(u"\u010Desk\u00FD \u20AC")
                                           << QVariant(QStringLiteral(u"\u010Desk\u00FD \u20AC"));
    QTest::newRow("long string") << "string" << QString(60000, QLatin1Char('x'))
                                 << QVariant(QString(60000, QLatin1Char('x')));
    QTest::newRow("int") << "int"
                         << "42" << QVariant(42);
    QTest::newRow("negative int") << "int"
                                  << "-7" << QVariant(-7);
    QTest::newRow("zero") << "int"
                          << "0" << QVariant(0);
    QTest::newRow("true") << "bool"
                          << "true" << QVariant(true);
    QTest::newRow("false") << "bool"
                           << "false" << QVariant(false);
}

void tst_GConfBackend::everyType()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QVariant, value);

    QVERIFY(store({type, QStringLiteral("--"), text}));
    const QVariant result = read();
    QVERIFY(result.isValid());
    QCOMPARE(result.metaType(), value.metaType());
    QCOMPARE(result, value);
}

void tst_GConfBackend::listYieldsItsFirstElementAsText_data()
{
    QTest::addColumn<QString>("elements");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("one") << "string"
                         << "[*]" << QVariant(QStringLiteral("*"));
    QTest::newRow("several") << "string"
                             << "[WLAN_INFRA,GPRS]" << QVariant(QStringLiteral("WLAN_INFRA"));
    QTest::newRow("ints") << "int"
                          << "[3,2,1]" << QVariant(QStringLiteral("3"));
    QTest::newRow("bools") << "bool"
                           << "[true,false]" << QVariant(QStringLiteral("true"));
    QTest::newRow("empty") << "string"
                           << "[]" << QVariant();
}

void tst_GConfBackend::listYieldsItsFirstElementAsText()
{
    QFETCH(QString, elements);
    QFETCH(QString, text);
    QFETCH(QVariant, value);

    QVERIFY(store({QStringLiteral("list"), QStringLiteral("--list-type"), elements, text}));
    const QVariant result = read();
    QCOMPARE(result.metaType(), value.metaType());
    QCOMPARE(result, value);
}

void tst_GConfBackend::unsupportedTypesAreWarnedOf_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("number");

    const QString name = QLatin1String(key);
    QTest::newRow("float") << QStringList{QStringLiteral("--set"), name, QStringLiteral("--type"),
                                          QStringLiteral("float"), QStringLiteral("1.5")}
                           << 3;
    QTest::newRow("schema") << QStringList{QStringLiteral("--set-schema"),
                                           name,
                                           QStringLiteral("--type"),
                                           QStringLiteral("int"),
                                           QStringLiteral("--short-desc"),
                                           QStringLiteral("A number")}
                            << 5;
    QTest::newRow("pair") << QStringList{QStringLiteral("--set"),      name,
                                         QStringLiteral("--type"),     QStringLiteral("pair"),
                                         QStringLiteral("--car-type"), QStringLiteral("int"),
                                         QStringLiteral("--cdr-type"), QStringLiteral("int"),
                                         QStringLiteral("(1,2)")}
                          << 7;
}

void tst_GConfBackend::unsupportedTypesAreWarnedOf()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, number);

    QVERIFY(PrivateBus::gconfTool(arguments));
    const QString warning =
        QStringLiteral("CGConfBackend::value: the type %1 is not yet supported.").arg(number);
    QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
    QVERIFY(!read().isValid());
}

void tst_GConfBackend::unsetKeyIsWarnedOf()
{
    QVERIFY(PrivateBus::gconfTool({QStringLiteral("--unset"), QLatin1String(key)}));
    QTest::ignoreMessage(QtWarningMsg,
                         "Warning: CGConfBackend::value got a NULL value for key: "
                         "\"/apps/kavlor-test/value\"");
    QVERIFY(!read().isValid());
}

void tst_GConfBackend::impossibleKeyIsWarnedOf_data()
{
    QTest::addColumn<QString>("impossible");

    QTest::newRow("no path") << "value";
    QTest::newRow("empty") << "";
    QTest::newRow("space") << "/apps/kavlor test";
    QTest::newRow("two slashes") << "/apps//value";
    QTest::newRow("slash at the end") << "/apps/";
    QTest::newRow("beyond ASCII") << QStringLiteral(u"/apps/\u010Desk\u00FD");
}

void tst_GConfBackend::impossibleKeyIsWarnedOf()
{
    QFETCH(QString, impossible);

    const QString warning =
        QStringLiteral("Warning: CGConfBackend::value unable to find key: \"%1\"").arg(impossible);
    QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
    QVERIFY(!CGConfBackend::instance()->value(impossible).isValid());
}

void tst_GConfBackend::valueIsReadAnewEachTime()
{
    for (const char *text : {"first", "second", "third"}) {
        QVERIFY(store({QStringLiteral("string"), QLatin1String(text)}));
        QCOMPARE(read(), QVariant(QLatin1String(text)));
    }
}

void tst_GConfBackend::functionsResolveByName()
{
    QVERIFY(CGConfBackend::instance());
    QVERIFY(qgconf_resolve_me("gconf_client_get"));
    QVERIFY(qgconf_resolve_me("g_free"));
    QVERIFY(!qgconf_resolve_me("gconf_no_such_function"));

    // A load of one's own is taken back without harm to the reader's.
    qgconf_loadLibGConf();
    qgconf_unloadLibGConf();
    QVERIFY(store({QStringLiteral("int"), QStringLiteral("5")}));
    QCOMPARE(read(), QVariant(5));
}

void tst_GConfBackend::withoutTheLibraryThereIsNoReader()
{
    QTemporaryDir folder;
    QCOMPARE(probeWithLibraries(folder.path()), QByteArray("gconf\nready\n"));

    QFile library(folder.filePath(QStringLiteral("libgconf-2.so.4")));
    QVERIFY(library.open(QIODevice::WriteOnly));
    library.write("no library\n");
    library.close();
    QCOMPARE(probeWithLibraries(folder.path()), QByteArray("no gconf\nready\n"));
}

void tst_GConfBackend::hungServerIsGivenUp_data()
{
    QTest::addColumn<bool>("wasRead");
    QTest::newRow("at the first read") << false;
    QTest::newRow("later") << true;
}

void tst_GConfBackend::hungServerIsGivenUp()
{
    QFETCH(const bool, wasRead);
    QVERIFY(store({QStringLiteral("int"), QStringLiteral("5")}));
    QVERIFY(CGConfBackend::instance());
    if (wasRead)
        QCOMPARE(read(), QVariant(5));
    const QDBusReply<uint> server =
        QDBusConnection::sessionBus().interface()->servicePid(QStringLiteral("org.gnome.GConf"));
    QVERIFY2(server.isValid(), qPrintable(server.error().message()));
    const auto pid = static_cast<pid_t>(server.value());
    QCOMPARE(kill(pid, SIGSTOP), 0);
    const auto resume = qScopeGuard([pid] { kill(pid, SIGCONT); });

    // The first read takes the time it is given; no other waits for what hangs already.
    for (const qint64 atMost : {3500, 500, 500}) {
        QTest::ignoreMessage(QtWarningMsg,
                             "Warning: CGConfBackend::value unable to find key: "
                             "\"/apps/kavlor-test/value\"");
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!read().isValid());
        QVERIFY2(timer.elapsed() < atMost, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(waitingThreads(), 1);
    }

    // Once it has answered, and the thread that waited for it is gone, it is asked again.
    QCOMPARE(kill(pid, SIGCONT), 0);
    QTRY_COMPARE(waitingThreads(), 0);
    QCOMPARE(read(), QVariant(5));
}

void tst_GConfBackend::withoutAServerNothingIsRead()
{
    // The bus ends, and GConf's server with it.
    QVERIFY(store({QStringLiteral("int"), QStringLiteral("5")}));
    QCOMPARE(read(), QVariant(5));
    m_bus.stop();
    QTest::ignoreMessage(QtWarningMsg,
                         "Warning: CGConfBackend::value unable to find key: "
                         "\"/apps/kavlor-test/value\"");
    QVERIFY(!read().isValid());
}

KAVLOR_TEST_MAIN(tst_GConfBackend)
#include "tst_gconfbackend.moc"
