// SPDX-License-Identifier: MIT

// What the client's real binary costs until it is seen, and while nobody touches it: processor time
// in milliseconds, memory in MB, and how often it wakes up, against a program that only shows the
// picture of the start-up window.

#include "costs.h"
#include "kavloruser.h"
#include "settingsstore.h"
#include "table.h"
#include "testpaths.h"
#include "wholesystem.h"

#include <QApplication>
#include <QPixmap>
#include <QProcess>
#include <QTest>

namespace {

constexpr int mostPatience = 30000; // ms
constexpr int animationSteps = 9;   // of the strip in the start-up window in 3 s, one each 350 ms
constexpr int minute = 60;
const QString member = QStringLiteral("demo");

// A program with the observer in it.
class Program
{
public:
    Program(const QStringList &command, const QString &home, const QString &observed)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), home);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
        environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"),
                           QStringLiteral("kavlorobserver"));
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"),
                           QStringLiteral(KAVLOR_OBSERVER_PLUGINS));
        environment.insert(QStringLiteral("KAVLOR_OBSERVED"), observed);
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(command.constFirst(), command.mid(1));
        while (m_process.state() != QProcess::NotRunning && !m_said.contains('\n')
               && m_process.waitForReadyRead(mostPatience))
            m_said += m_process.readAllStandardOutput();
    }
    ~Program()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /** The processor time until the observed was painted; 0 when it never was. */
    double cost() const
    {
        return m_said.startsWith("painted ") ? m_said.trimmed().mid(8).toDouble() : 0;
    }
    double memory() const
    {
        return cost() > 0 ? double(memoryOf(id())) / 1024 : 0;
    }
    qint64 id() const
    {
        return m_process.processId();
    }

private:
    QProcess m_process;
    QByteArray m_said;
};

class Bench
{
public:
    explicit Bench(Table *table)
        : m_table(table)
    {
    }
    bool run();

private:
    enum What { Cost, Memory };

    bool makeHome();
    double measured(const QStringList &command, const QString &home, const QString &observed,
                    What what) const;
    Table::Cost client(const QString &home, const QString &observed, What what) const;
    Table::Cost plain(What what) const;
    void measureStart();
    double wakeups(qint64 process, int seconds) const;
    void limitWakeups(const QString &where, double bound, qint64 process, int seconds);
    void measureIdlePlainWindow();
    bool measureIdleClient();

    Table *m_table;
    WholeSystem m_system;
    QTemporaryDir m_home; // of a member who is signed in
    QTemporaryDir m_emptyHome;
    QString m_picture;
    QString m_logo;
    double m_plainWakeups = 0; // of the plain window in a minute
};

// What the client finds there: a member who is signed in, and the pictures for the plain window.
bool Bench::makeHome()
{
    m_picture = m_home.filePath(QStringLiteral("picture.png"));
    m_logo = m_home.filePath(QStringLiteral("logo.png"));
    if (!QPixmap(QStringLiteral(":/Background.png")).save(m_picture)
        || !QPixmap(QStringLiteral(":/Kavlor Logo Small.png")).save(m_logo))
        return false;
    qputenv("XDG_CONFIG_HOME", m_home.filePath(QStringLiteral(".config")).toLocal8Bit());
    const std::unique_ptr<QSettings> settings = openSettingsStore();
    CKavlorUser user(settings.get(), nullptr, false, CKavlorUser::defaultFields());
    user.setField(CKavlorUser::Username, member);
    user.setField(CKavlorUser::Password, member);
    user.save();
    settings->setValue(QStringLiteral("last/USERID"), member);
    settings->sync();
    return settings->status() == QSettings::NoError;
}

double Bench::measured(const QStringList &command, const QString &home, const QString &observed,
                       What what) const
{
    const Program program(command, home, observed);
    return what == Cost ? program.cost() : program.memory();
}

Table::Cost Bench::client(const QString &home, const QString &observed, What what) const
{
    return [this, home, observed, what] {
        return measured({QStringLiteral(KAVLOR_CLIENT)}, home, observed, what);
    };
}

Table::Cost Bench::plain(What what) const
{
    return [this, what] {
        return measured({QStringLiteral(KAVLOR_PLAIN_WINDOW), m_picture, m_logo},
                        m_emptyHome.path(), {}, what);
    };
}

void Bench::measureStart()
{
    const QString peer = QStringLiteral("plain window");
    const QString anything;
    const QString home = QStringLiteral("KavlorKnownUser");
    m_table->compare(QStringLiteral("from start to first paint"), 1.35,
                     client(m_emptyHome.path(), anything, Cost), peer, plain(Cost));
    m_table->compare(QStringLiteral("memory (PSS) at first paint"), 1.35,
                     client(m_emptyHome.path(), anything, Memory), peer, plain(Memory));
    m_table->compare(QStringLiteral("memory (PSS) at home"), 1.35,
                     client(m_home.path(), home, Memory), peer, plain(Memory));
}

double Bench::wakeups(qint64 process, int seconds) const
{
    const QHash<QString, qint64> before = sleepsOf(process);
    QTest::qWait(m_table->isTiny() ? 100 : seconds * 1000);
    return double(sleepsBetween(before, sleepsOf(process)));
}

void Bench::limitWakeups(const QString &where, double bound, qint64 process, int seconds)
{
    m_table->limitOnce(QStringLiteral("idle for %2 s: %1").arg(where).arg(seconds), bound,
                       QStringLiteral("wakeups"), [=] { return wakeups(process, seconds); });
}

// Waits for locks and for memory count as well, so that a window that only stands is woken, too.
void Bench::measureIdlePlainWindow()
{
    const Program program({QStringLiteral(KAVLOR_PLAIN_WINDOW), m_picture, m_logo},
                          m_emptyHome.path(), {});
    QTest::qWait(m_table->scaled(1000, 0));
    m_plainWakeups = wakeups(program.id(), minute);
}

bool Bench::measureIdleClient()
{
    ClientDriver &client = *m_system.client;
    client.setHome(m_home.path());
    // The start-up window stays for 5 s; what it asks the service for in its first is over then.
    if (!client.start() || !client.waitFor(QStringLiteral("splashProgress")))
        return false;
    QTest::qWait(m_table->scaled(1000, 0));
    limitWakeups(QStringLiteral("start-up window"), double(animationSteps), client.processId(), 3);
    // The time-outs of the requests are never called off, and pass within so many milliseconds.
    const int settling = m_table->scaled(12000, 0);
    if (!client.waitFor(QStringLiteral("buttonUpload")))
        return false;
    QTest::qWait(settling);
    limitWakeups(QStringLiteral("home"), m_plainWakeups, client.processId(), minute);
    if (!client.click(QStringLiteral("buttonMyKavlor"))
        || !client.waitForPhoto(QStringLiteral("myAuctionsTable"), 0, 0))
        return false;
    QTest::qWait(settling);
    limitWakeups(QStringLiteral("list of auctions"), m_plainWakeups, client.processId(), minute);
    if (!client.click(QStringLiteral("backNavigationButton"))
        || !client.click(QStringLiteral("buttonUpload"))
        || !client.click(QStringLiteral("photoClicker"))
        || !client.chooseFile(m_system.makePhoto(Qt::darkCyan))
        || !client.waitFor(QStringLiteral("doneButton")))
        return false;
    QTest::qWait(settling);
    limitWakeups(QStringLiteral("wizard with a photo"), m_plainWakeups, client.processId(), minute);
    return true;
}

bool Bench::run()
{
    if (!m_system.startConnectivity() || !m_system.startService({QStringLiteral("--seed")})
        || !makeHome())
        return false;
    measureStart();
    if (!m_table->isWanted(QStringLiteral("idle")))
        return true;
    measureIdlePlainWindow();
    if (measureIdleClient())
        return true;
    qWarning("%s", qPrintable(m_system.client->error()));
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    Table table(app, QStringLiteral("Start and rest, in milliseconds of processor time and MB"));
    return Bench(&table).run() ? table.exitCode() : 1;
}
