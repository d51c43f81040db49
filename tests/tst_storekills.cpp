// SPDX-License-Identifier: MIT

#include "scriptedservice.h"
#include "servicehost.h"
#include "settingsstore.h"
#include "storeprobe.h"
#include "testcase.h"
#include "testmain.h"
#include "uploaddraft.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

// What a program that saves leaves behind when it is killed, or when the disk does not take it.
class tst_StoreKills : public TestCase
{
    Q_OBJECT

private slots:
    void init();
    void cleanupTestCase();

    void aKillAtAnyPlaceLosesNothingSaved_data();
    void aKillAtAnyPlaceLosesNothingSaved();
    void aDiskThatRefusesAtAnyPlaceLosesNothingSaved_data();
    void aDiskThatRefusesAtAnyPlaceLosesNothingSaved();
    void aFileThatWasRemovedIsMadeAnewForItsOwnerAlone_data();
    void aFileThatWasRemovedIsMadeAnewForItsOwnerAlone();
    void aBrokenFileIsNoReasonNotToSave_data();
    void aBrokenFileIsNoReasonNotToSave();
    void twoProgramsThatSaveAtOnceKeepTheFileWhole();
    void whatAMemberPutBesideTheFilesIsLeftAlone();

    void aReplyIsNeverKeptWhereOthersReachIt_data();
    void aReplyIsNeverKeptWhereOthersReachIt();
    void withoutAFolderForRepliesTheMemberIsTold_data();
    void withoutAFolderForRepliesTheMemberIsTold();

private:
    void survive(const QString &what, const QString &named, int from, int place);

    int m_kills = 0;
    int m_lost = 0;
};

namespace {

constexpr int saves = 2; // the first makes the file
constexpr int rowsOfKills = 4;
const QString settings = QStringLiteral("save"); // the probe's words for them
const QString draft = QStringLiteral("draft");
const QByteArray victimsContent = "somebody's own";

/** A folder with settings and the probe that saves into it, with a disk that does as it is told. */
class Store
{
public:
    Store()
    {
        set("XDG_CONFIG_HOME", m_home.path());
        set("KAVLOR_PLACES_FOLDER", folder());
        set("KAVLOR_PLACES_NOTES", notesFile());
        set("LD_PRELOAD", preload());
        set("ASAN_OPTIONS", QStringLiteral("verify_asan_link_order=0"));
    }

    static QString preload()
    {
        // The loader takes no path with a blank in it.
        static const QTemporaryDir folder;
        const QString library = folder.filePath(QStringLiteral("diskplaces.so"));
        QFile::copy(QStringLiteral(KAVLOR_DISK_PLACES), library);
        return library;
    }

    QString folder() const
    {
        return m_home.filePath(QStringLiteral("kavlor"));
    }
    QStringList files() const
    {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                        | QDir::NoDotAndDotDot);
    }

    /** What no save needs, but for what could be a member's own. */
    QStringList litter() const
    {
        static const QRegularExpression expected(
            QStringLiteral("\\A(kavlor\\.conf|upload\\.draft)"
                           "(\\.([A-Za-z][a-z]{5}|[A-Z]{6}))?\\z"));
        QStringList left = files();
        left.removeIf([](const QString &name) { return expected.match(name).hasMatch(); });
        return left;
    }

    void set(const char *variable, const QString &value)
    {
        m_environment.insert(QLatin1String(variable), value);
    }

    void start(QProcess &probe, const QStringList &arguments) const
    {
        probe.setProcessEnvironment(m_environment);
        probe.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        probe.start(QStringLiteral(KAVLOR_STORE_PROBE), arguments);
    }

    /** Saves @p from to @p to, until it is killed; the last number that was told to be saved. */
    int run(const QString &what, int from, int to)
    {
        QProcess probe;
        start(probe, {what, QString::number(from), QString::number(to)});
        probe.waitForFinished(patience);
        m_isKilled = probe.exitStatus() == QProcess::CrashExit;
        const QList<QByteArray> lines = probe.readAllStandardOutput().split('\n');
        int last = 0;
        for (const QByteArray &line : lines) {
            if (line.endsWith(" saved"))
                last = line.split(' ').first().toInt();
        }
        return last;
    }
    bool isKilled() const
    {
        return m_isKilled;
    }

    /** How many places the programs so far have passed. */
    int places() const
    {
        return notes().isEmpty() ? 0 : notes().constLast().split(' ').first().toInt();
    }
    /** Files that others could have opened at some moment. */
    QList<QByteArray> openToOthers() const
    {
        QList<QByteArray> open = notes();
        open.removeIf([](const QByteArray &line) { return !line.contains(" open-to-others "); });
        return open;
    }
    QList<QByteArray> notes() const
    {
        QFile file(notesFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().split('\n')
                                              : QList<QByteArray>();
    }

    /** The number of the save that is read by the real store; 0 = nothing, -1 = no whole one. */
    int read(const QString &what) const
    {
        use();
        const std::unique_ptr<QSettings> open = openSettingsStore();
        return what == draft ? readDraft(*open) : readUser(*open);
    }
    /** As read(), of the file as it is this moment and with no part in its lock. */
    int readCopy() const
    {
        const QTemporaryDir folder;
        const QString copy = folder.filePath(QStringLiteral("copy.conf"));
        QFile::copy(m_home.filePath(QStringLiteral("kavlor/kavlor.conf")), copy);
        QSettings open(copy, QSettings::NativeFormat);
        return readUser(open);
    }
    /** Lets this process have its settings here. */
    void use() const
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_home.path());
    }

    QString folderForReplies() const
    {
        return m_home.filePath(QStringLiteral("tmp"));
    }
    /** From now on the probe's temporary files are looked at, in a folder of the rights @p mode. */
    bool useForReplies(mode_t mode)
    {
        const QByteArray folder = QFile::encodeName(folderForReplies());
        set("TMPDIR", folderForReplies());
        set("KAVLOR_PLACES_FOLDER", folderForReplies());
        return ::mkdir(folder, S_IRWXU) == 0 && ::chmod(folder, mode) == 0;
    }
    /** Sends a request to the service; its reply and its error. */
    QByteArray request() const
    {
        QProcess probe;
        start(probe, {QStringLiteral("request"), serviceHost()});
        const bool hasEnded = waitUntil([&] { return probe.state() == QProcess::NotRunning; });
        return hasEnded ? probe.readAllStandardOutput() : "no end";
    }
    /** What is left of replies, but for what was planted. */
    QStringList filesForReplies(const QString &planted) const
    {
        QStringList left;
        const QFileInfoList found =
            QDir(folderForReplies()).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
        for (const QFileInfo &file : found) {
            QFile content(file.filePath());
            const bool isPlanted =
                file.canonicalFilePath() == QFileInfo(planted).canonicalFilePath()
                || (content.open(QIODevice::ReadOnly) && content.readAll() == victimsContent);
            if (!isPlanted)
                left.append(file.fileName());
        }
        return left;
    }
    /** A file that nobody is to write to, and that belongs to somebody else as far as one can. */
    QString makeVictim() const
    {
        QFile victim(m_home.filePath(QStringLiteral("victim")));
        const bool isWritten =
            victim.open(QIODevice::WriteOnly) && victim.write(victimsContent) > 0;
        victim.setPermissions(QFile::ReadOwner);
        if (::geteuid() == 0)
            (void)!::chown(QFile::encodeName(victim.fileName()), 1, 1);
        return isWritten ? victim.fileName() : QString();
    }
    bool isVictimUntouched() const
    {
        QFile victim(m_home.filePath(QStringLiteral("victim")));
        return victim.open(QIODevice::ReadOnly) && victim.readAll() == victimsContent
            && victim.permissions().testFlag(QFile::ReadOwner);
    }

private:
    static int readUser(QSettings &open)
    {
        CKavlorUser user(&open, nullptr, true, {});
        user.load(open.value(QStringLiteral("last/USERID")).toString());
        if (user.userId() == 0)
            return 0;
        for (int field = 0; field < CKavlorUser::fieldCount; ++field) {
            if (user.field(CKavlorUser::Field(field)) != StoreProbe::fields(user.userId())[field])
                return -1;
        }
        return user.userId();
    }
    static int readDraft(const QSettings &open)
    {
        const auto found = UploadDraft(open.fileName()).load(StoreProbe::member());
        if (!found)
            return 0;
        const CAuctionRecord saved = StoreProbe::record(found->category);
        const bool isWhole = found->mediaPath == saved.mediaPath && found->caption == saved.caption
            && found->description == saved.description;
        return isWhole ? found->category : -1;
    }
    QString notesFile() const
    {
        return m_home.filePath(QStringLiteral("notes"));
    }

    QTemporaryDir m_home;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    bool m_isKilled = false;
};

} // namespace

void tst_StoreKills::init()
{
    TestCase::init();
    ::umask(022); // as on an ordinary desktop, where a new file is readable by everybody
}

void tst_StoreKills::cleanupTestCase()
{
    qInfo("%d kills while saving, %d not survived", m_kills, m_lost);
}

void tst_StoreKills::survive(const QString &what, const QString &named, int from, int place)
{
    Store store;
    store.set("KAVLOR_PLACES_NAMED", named);
    store.set("KAVLOR_PLACES_KILL", QString::number(place));
    const int saved = store.run(what, from, from + saves - 1);
    const QByteArray context = store.notes().constLast();
    QVERIFY2(store.isKilled(), context);
    ++m_kills;
    QCOMPARE(store.openToOthers(), QList<QByteArray>());
    const int found = store.read(what);
    const int next = saved == 0 ? from : saved + 1;
    QVERIFY2(found == saved || found == next, context + " left " + QByteArray::number(found));
    // Nobody waits for the lock of a program that is gone.
    QVERIFY2(!store.files().contains(QStringLiteral("kavlor.conf.lock")), context);

    store.set("KAVLOR_PLACES_KILL", {});
    QCOMPARE(store.run(what, next, next), next);
    QCOMPARE(store.read(what), next);
    QVERIFY2(store.litter().isEmpty(), qPrintable(store.litter().join(QLatin1Char(' '))));
}

void tst_StoreKills::aKillAtAnyPlaceLosesNothingSaved_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("named");

    QTest::newRow("settings") << settings << "";
    QTest::newRow("settings, no files without a name") << settings << "1";
    QTest::newRow("draft") << draft << "";
    QTest::newRow("draft, no files without a name") << draft << "1";
}

// KAVLOR_KILLS asks for that many kills in all, the further ones at random places.
void tst_StoreKills::aKillAtAnyPlaceLosesNothingSaved()
{
    QFETCH(QString, what);
    QFETCH(QString, named);

    Store whole;
    whole.set("KAVLOR_PLACES_NAMED", named);
    QCOMPARE(whole.run(what, 1, saves), saves);
    QCOMPARE(whole.read(what), saves);
    QCOMPARE(whole.openToOthers(), QList<QByteArray>());
    const int places = whole.places();
    QVERIFY(places > 10 * saves);
    const int kills = qMax(places, qEnvironmentVariableIntValue("KAVLOR_KILLS") / rowsOfKills);

    for (int kill = 1; kill <= kills && m_lost == 0; ++kill) {
        const bool isFirstTime = kill <= places;
        const int from = isFirstTime ? 1 : QRandomGenerator::global()->bounded(1, 1000);
        survive(what, named, from,
                isFirstTime ? kill : QRandomGenerator::global()->bounded(1, places + 1));
        m_lost += QTest::currentTestFailed() ? 1 : 0;
    }
}

void tst_StoreKills::aDiskThatRefusesAtAnyPlaceLosesNothingSaved_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("named");
    QTest::addColumn<int>("error");

    QTest::newRow("settings, full") << settings << "" << ENOSPC;
    QTest::newRow("settings, full, no files without a name") << settings << "1" << ENOSPC;
    QTest::newRow("settings, read only") << settings << "" << EROFS;
    QTest::newRow("settings, forbidden") << settings << "1" << EACCES;
    QTest::newRow("draft, full") << draft << "" << ENOSPC;
    QTest::newRow("draft, full, no files without a name") << draft << "1" << ENOSPC;
}

void tst_StoreKills::aDiskThatRefusesAtAnyPlaceLosesNothingSaved()
{
    QFETCH(QString, what);
    QFETCH(QString, named);
    QFETCH(int, error);

    Store whole;
    whole.set("KAVLOR_PLACES_NAMED", named);
    QCOMPARE(whole.run(what, 1, saves), saves);
    const int places = whole.places();

    for (int place = 1; place <= places; ++place) {
        Store store;
        store.set("KAVLOR_PLACES_NAMED", named);
        store.set("KAVLOR_PLACES_REFUSE", QStringLiteral("%1,%2").arg(place).arg(error));
        const int saved = store.run(what, 1, saves);
        QVERIFY2(!store.isKilled(), QByteArray::number(place));
        QCOMPARE(store.openToOthers(), QList<QByteArray>());
        const int found = store.read(what);
        // Nobody is told whether a draft was kept.
        QVERIFY2(what == draft ? found >= 0 : found >= saved, QByteArray::number(place));

        store.set("KAVLOR_PLACES_REFUSE", {});
        QCOMPARE(store.run(what, 9, 9), 9);
        QCOMPARE(store.read(what), 9);
        QVERIFY2(store.litter().isEmpty(), qPrintable(store.litter().join(QLatin1Char(' '))));
    }
}

void tst_StoreKills::aFileThatWasRemovedIsMadeAnewForItsOwnerAlone_data()
{
    QTest::addColumn<bool>("withFolder");

    QTest::newRow("the file") << false;
    QTest::newRow("the folder") << true;
}

void tst_StoreKills::aFileThatWasRemovedIsMadeAnewForItsOwnerAlone()
{
    QFETCH(bool, withFolder);

    const Store store;
    store.use();
    const std::unique_ptr<QSettings> open = openSettingsStore();
    for (int number = 1; number <= 2; ++number) {
        if (withFolder)
            QVERIFY(QDir(store.folder()).removeRecursively());
        else
            QVERIFY(QFile::remove(open->fileName()));
        CKavlorUser user(open.get(), nullptr, false, StoreProbe::fields(number));
        user.setUserId(number);
        user.save();
        open->sync();
        QCOMPARE(open->status(), QSettings::NoError);
        QCOMPARE(store.read(settings), number);
        const QFile::Permissions rights = QFile::permissions(open->fileName());
        QVERIFY(rights.testFlag(QFile::ReadOwner));
        QVERIFY(!(rights & (QFile::ReadGroup | QFile::ReadOther)));
    }
}

void tst_StoreKills::aBrokenFileIsNoReasonNotToSave_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut short") << QByteArray("[last]\nUSERID=m1\n\n[UserData.m1]\nPassw");
    QTest::newRow("cut short in an escape") << QByteArray("[last]\nUSERID=\"m1\\x");
    QTest::newRow("zeros, as after a power cut") << QByteArray(4096, '\0');
    QTest::newRow("no settings at all") << QByteArray("\x89PNG\r\n\x1a\n[[]]=\xff\xfe[\n=\n%zz");
    QTest::newRow("one long line") << QByteArray(1 << 20, 'x');
}

void tst_StoreKills::aBrokenFileIsNoReasonNotToSave()
{
    QFETCH(QByteArray, content);

    Store store;
    QVERIFY(QDir().mkpath(store.folder()));
    QFile file(store.folder() + QStringLiteral("/kavlor.conf"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    file.close();
    QVERIFY(store.read(settings) <= 0);
    store.run(settings, 1, 3);
    QCOMPARE(store.read(settings), 3);
    QCOMPARE(store.openToOthers(), QList<QByteArray>());
    QCOMPARE(store.files(), QStringList(QStringLiteral("kavlor.conf")));
}

void tst_StoreKills::twoProgramsThatSaveAtOnceKeepTheFileWhole()
{
    constexpr int many = 150;
    Store store;
    store.set("KAVLOR_PLACES_FOLDER", {}); // at full speed
    QCOMPARE(store.run(settings, 1, 1), 1);
    QProcess first;
    QProcess second;
    store.start(first, {settings, QStringLiteral("1"), QString::number(many)});
    store.start(second, {settings, QStringLiteral("1001"), QString::number(1000 + many)});
    int looks = 0;
    while (first.state() != QProcess::NotRunning || second.state() != QProcess::NotRunning) {
        QVERIFY(store.readCopy() > 0);
        ++looks;
        QCoreApplication::processEvents();
    }
    QVERIFY(looks > 1);
    for (QProcess *program : {&first, &second})
        QCOMPARE(program->readAllStandardOutput().count(" saved\n"), many);
    const int last = store.read(settings);
    QVERIFY2(last == many || last == 1000 + many, QByteArray::number(last));
    QCOMPARE(store.files(), QStringList(QStringLiteral("kavlor.conf")));
}

void tst_StoreKills::whatAMemberPutBesideTheFilesIsLeftAlone()
{
    const Store store;
    QVERIFY(QDir().mkpath(store.folder()));
    QStringList own;
    for (const char *ending :
         {"backup", "Backup", "BACKUP", "bak", "aBcDeFg", "2026.1", "a", "aB-cDe"})
        own.append(QStringLiteral("kavlor.conf.") + QLatin1String(ending));
    own.append(QStringLiteral("kavlor.confaBcDeF"));
    const QString leftover = QStringLiteral("kavlor.conf.aBcDeF");
    const QStringList all = QStringList(own) << leftover;
    for (const QString &name : all) {
        QFile file(store.folder() + QLatin1Char('/') + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(store.folder()).mkdir(QStringLiteral("kavlor.conf.gHiJkL")));
    QCOMPARE(store.read(settings), 0);
    QVERIFY(!store.files().contains(leftover));
    own << QStringLiteral("kavlor.conf") << QStringLiteral("kavlor.conf.gHiJkL");
    own.sort();
    QStringList left = store.files();
    left.sort();
    QCOMPARE(left, own);
}

void tst_StoreKills::aReplyIsNeverKeptWhereOthersReachIt_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("named");
    QTest::addColumn<bool>("planted");

    for (const int mode : {0700, 0777, 01777}) {
        for (const char *named : {"", "1"}) {
            for (const bool planted : {false, true}) {
                QTest::addRow("%o%s%s", unsigned(mode), *named ? ", no files without a name" : "",
                              planted ? ", names taken" : "")
                    << mode << QString::fromLatin1(named) << planted;
            }
        }
    }
}

void tst_StoreKills::aReplyIsNeverKeptWhereOthersReachIt()
{
    QFETCH(int, mode);
    QFETCH(QString, named);
    QFETCH(bool, planted);

    Store store;
    const QString victim = store.makeVictim();
    QVERIFY(store.useForReplies(mode_t(mode)));
    store.set("KAVLOR_PLACES_NAMED", named);
    store.set("KAVLOR_PLACES_PLANT", planted ? victim : QString());
    ScriptedService service;
    service.expect("GetServiceTerms", "The terms");
    QCOMPARE(store.request(), QByteArray("The terms|\n"));
    QVERIFY2(service.isDone(), service.report());

    QCOMPARE(store.openToOthers(), QList<QByteArray>());
    QList<QByteArray> notes = store.notes();
    const bool isPlanted =
        notes.removeIf([](const QByteArray &line) { return line.contains(" planted "); }) > 0;
    QCOMPARE(isPlanted, planted);
    // One that is there already is never opened to be written.
    notes.removeIf([](const QByteArray &line) { return !line.contains(" open-any "); });
    QCOMPARE(notes, QList<QByteArray>());
    QVERIFY(store.isVictimUntouched());
    QCOMPARE(store.filesForReplies(victim), QStringList());
}

void tst_StoreKills::withoutAFolderForRepliesTheMemberIsTold_data()
{
    QTest::addColumn<QString>("folder");

    QTest::newRow("a file") << QStringLiteral("file");
    QTest::newRow("forbidden") << QStringLiteral("forbidden");
    QTest::newRow("full") << QStringLiteral("full");
}

void tst_StoreKills::withoutAFolderForRepliesTheMemberIsTold()
{
    QFETCH(QString, folder);

    Store store;
    QVERIFY(store.useForReplies(0700));
    if (folder == QLatin1String("file"))
        store.set("TMPDIR", store.makeVictim());
    else
        store.set("KAVLOR_PLACES_REFUSE",
                  QStringLiteral("1,%1").arg(folder == QLatin1String("full") ? ENOSPC : EACCES));
    const ScriptedService service; // which is asked nothing
    QCOMPARE(store.request(), QByteArray("I/O issue|Unable to create a temp file\n"));
    QVERIFY2(service.isDone(), service.report());
}

KAVLOR_TEST_MAIN(tst_StoreKills)
#include "tst_storekills.moc"
