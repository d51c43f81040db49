// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"
#include "testcase.h"
#include "testmain.h"
#include "uploadrequest.h"
#include "webvisitor.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <fcntl.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <thread>

// What the service does when its folder or its records are not as it left them.
class tst_LocalServiceRecords : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void aFolderOfSomebodyElseIsLeftAlone_data();
    void aFolderOfSomebodyElseIsLeftAlone();
    void anEmptyFolderIsTaken();
    void aFolderThatIsHalfMadeIsTaken();
    void aFolderFromBeforeTheMarkerIsTaken();
    void brokenRecordsAreNotServed_data();
    void brokenRecordsAreNotServed();
    void whatNoAuctionNamesIsMovedAside();

    void aMissingTableIsNoEmptyResult_data();
    void aMissingTableIsNoEmptyResult();
    void aDamagedPageIsNoEmptyResult();
    void aLockedDatabaseRefusesChangesAndServesTheRest();
    void recordsThatNobodyMayReadAreNoEmptyResult();
    void aDiskThatTakesNothingRefusesChangesAndServesTheRest_data();
    void aDiskThatTakesNothingRefusesChangesAndServesTheRest();
    void aFullDiskIsNoReasonNotToStart_data();
    void aFullDiskIsNoReasonNotToStart();

private:
    using Damage = std::function<void(const LocalServiceProcess &)>;

    QByteArray post(const QByteArray &operation, const QByteArray &form) const;
    QStringList media() const;
    QString file(const QString &name) const;
    /** What the service says when it refuses to start on its folder as it is now. */
    QByteArray refusalToStart() const;
    /** From here on, or no longer, every write to a file fails with @p error. */
    void breakDisk(int error);
    void mendDisk();
    void expectChangesRefused();
    void expectRecordsServed();

    std::unique_ptr<QTemporaryDir> m_scratch;
    std::unique_ptr<LocalServiceProcess> m_service;
    QByteArray m_auction;
};

Q_DECLARE_METATYPE(std::function<void(const LocalServiceProcess &)>)

namespace {

const QByteArray login = "Username=m1&Password=secret";
const QByteArray marker = "/kavlor-localservice.folder";

void write(const QString &path, const QByteArray &bytes, qint64 offset = 0)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(offset));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

// Every path below a folder with what is in it, so that two states can be compared.
QStringList inventory(const QString &folder, const QString &prefix = {})
{
    QStringList all;
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString name = prefix + entry.fileName();
        if (entry.isDir())
            all += QStringList(name) + inventory(entry.filePath(), name + QLatin1Char('/'));
        else
            all += name + QLatin1Char('=') + QString::fromLatin1(content(entry.filePath()));
    }
    return all;
}

QStringList optionsFor(const QString &folder)
{
    return {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--data"), folder};
}

// Zeroes where a page of the database holds its cells.
void damagePage(const LocalServiceProcess &service, const char *object)
{
    service.execute(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    const qint64 page =
        service
            .value(QStringLiteral("SELECT rootpage FROM sqlite_master WHERE name = ?"),
                   {QLatin1String(object)})
            .toLongLong();
    const qint64 size = service.value(QStringLiteral("PRAGMA page_size")).toLongLong();
    QVERIFY(page > 1 && size >= 1024);
    write(service.dataDir() + QStringLiteral("/service.sqlite"), QByteArray(512, '\xaa'),
          page * size - 512);
}

} // namespace

// A service of its own for each function, with a member and an auction.
void tst_LocalServiceRecords::init()
{
    TestCase::init();
    m_scratch = std::make_unique<QTemporaryDir>();
    m_service = std::make_unique<LocalServiceProcess>();
    // The loader takes no path with a blank in it.
    const QString library = m_scratch->filePath(QStringLiteral("faultydisk.so"));
    QVERIFY(QFile::copy(QStringLiteral(KAVLOR_FAULTY_DISK), library));
    m_service->setEnvironment(QStringLiteral("LD_PRELOAD"), library);
    m_service->setEnvironment(QStringLiteral("ASAN_OPTIONS"),
                              QStringLiteral("verify_asan_link_order=0"));
    m_service->setEnvironment(QStringLiteral("KAVLOR_FAULTY_DISK"),
                              m_scratch->filePath(QStringLiteral("fault")));
    QVERIFY(m_service->start());
    QCOMPARE(post("CreateAccount",
                  "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org"),
             QByteArray("1"));
    m_auction = m_service->send(UploadRequest().bytes(m_service->host())).body;
    QCOMPARE(m_auction, QByteArray("1"));
}

QByteArray tst_LocalServiceRecords::post(const QByteArray &operation, const QByteArray &form) const
{
    const LocalServiceProcess::Reply reply = m_service->post(operation, form);
    return reply.status == 200 && reply.type == "text/plain" ? reply.body
                                                             : "no text: " + reply.header;
}

QStringList tst_LocalServiceRecords::media() const
{
    return QDir(file(QStringLiteral("/media"))).entryList(QDir::Files | QDir::Hidden);
}

QString tst_LocalServiceRecords::file(const QString &name) const
{
    return m_service->dataDir() + name;
}

QByteArray tst_LocalServiceRecords::refusalToStart() const
{
    const LocalServiceProcess::End end =
        LocalServiceProcess::runToEnd(optionsFor(m_service->dataDir()));
    return end.exitCode == 1 && end.output.isEmpty() ? end.errors
                                                     : "it started or crashed: " + end.errors;
}

void tst_LocalServiceRecords::breakDisk(int error)
{
    write(m_scratch->filePath(QStringLiteral("fault")), QByteArray::number(error));
}

void tst_LocalServiceRecords::mendDisk()
{
    QVERIFY(QFile::remove(m_scratch->filePath(QStringLiteral("fault"))));
}

void tst_LocalServiceRecords::aFolderOfSomebodyElseIsLeftAlone_data()
{
    QTest::addColumn<QStringList>("files");

    QTest::newRow("folders that are named like ours")
        << QStringList{QStringLiteral("media/holiday.jpg"), QStringLiteral("incoming/letter.txt")};
    QTest::newRow("one file") << QStringList{QStringLiteral("notes.txt")};
    QTest::newRow("one hidden file") << QStringList{QStringLiteral(".notes")};
    QTest::newRow("a file that is named like our database")
        << QStringList{QStringLiteral("service.sqlite"), QStringLiteral("media/holiday.jpg")};
    QTest::newRow("a marker of something else")
        << QStringList{QString::fromLatin1(marker.mid(1)), QStringLiteral("media/holiday.jpg")};
}

void tst_LocalServiceRecords::aFolderOfSomebodyElseIsLeftAlone()
{
    QFETCH(QStringList, files);

    const QString folder = m_scratch->filePath(QStringLiteral("theirs"));
    for (const QString &name : files) {
        const QString path = folder + QLatin1Char('/') + name;
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        write(path, "something dear to somebody");
    }
    const auto open = QFileDevice::Permissions(0x7755);
    QVERIFY(QFile::setPermissions(folder, open));
    const QStringList before = inventory(folder);

    const LocalServiceProcess::End end = LocalServiceProcess::runToEnd(optionsFor(folder));
    QCOMPARE(inventory(folder), before);
    QCOMPARE(QFileInfo(folder).permissions(), open);
    QCOMPARE(end.exitCode, 1);
    QVERIFY2(end.errors.contains("made by"), end.errors.constData());
    QVERIFY2(end.errors.contains(folder.toUtf8()), end.errors.constData());
    QCOMPARE(end.errors.count('\n'), 1);
}

void tst_LocalServiceRecords::anEmptyFolderIsTaken()
{
    LocalServiceProcess fresh;
    QVERIFY(QDir().mkpath(fresh.dataDir()));
    QVERIFY(fresh.start());
    QCOMPARE(fresh.terminate(), 0);
    QCOMPARE(fresh.complaints(), QByteArray());
    QVERIFY(QFile::exists(fresh.dataDir() + QLatin1String(marker)));
    QVERIFY(fresh.start());
}

void tst_LocalServiceRecords::aFolderThatIsHalfMadeIsTaken()
{
    const QByteArrayList known = content(file(QLatin1String(marker))).split(' ');
    QCOMPARE(known.size(), 3);
    const QByteArray inTheMaking = known.at(0) + ' ' + known.at(1) + " in the making\n";
    // As a kill may leave it, from the first step on.
    for (const QStringList &files :
         {QStringList{}, QStringList{QStringLiteral("lock")},
          QStringList{QStringLiteral("lock"), QStringLiteral("lock.marker")},
          QStringList{QStringLiteral("lock"), QString::fromLatin1(marker.mid(1))},
          QStringList{QStringLiteral("lock"), QString::fromLatin1(marker.mid(1)),
                      QStringLiteral("service.sqlite")}}) {
        LocalServiceProcess half;
        QVERIFY(QDir().mkpath(half.dataDir()));
        for (const QString &name : files) {
            write(half.dataDir() + QLatin1Char('/') + name,
                  marker.endsWith(name.toLatin1()) ? inTheMaking : QByteArray());
        }
        QVERIFY2(half.start(), qPrintable(files.join(QLatin1Char(' '))));
        QCOMPARE(half.post("ValidateLogin", login).body, QByteArray("0"));
    }
}

void tst_LocalServiceRecords::aFolderFromBeforeTheMarkerIsTaken()
{
    // Both after a good end and after a kill, when the records are still in the log alone.
    for (const bool isKilled : {false, true}) {
        m_service->execute(QStringLiteral("PRAGMA user_version = 0"));
        if (isKilled)
            m_service->kill();
        else
            QCOMPARE(m_service->terminate(), 0);
        QVERIFY(QFile::remove(file(QLatin1String(marker))));
        QVERIFY(m_service->start());
        QCOMPARE(media().size(), 1);
        QCOMPARE(post("GetMyAuctions", login).count('\n'), 2);
        QVERIFY(QFile::exists(file(QLatin1String(marker))));
        QCOMPARE(QDir(file(QStringLiteral("/lost"))).entryList(QDir::Files), QStringList());
    }
}

void tst_LocalServiceRecords::brokenRecordsAreNotServed_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QByteArray>("complaint");

    QTest::newRow("no database") << Damage([](const LocalServiceProcess &service) {
        QVERIFY(QFile::remove(service.dataDir() + QStringLiteral("/service.sqlite")));
    }) << QByteArray("missing");
    QTest::newRow("an empty database") << Damage([](const LocalServiceProcess &service) {
        QVERIFY(QFile::resize(service.dataDir() + QStringLiteral("/service.sqlite"), 0));
    }) << QByteArray("missing or empty");
    QTest::newRow("no database at all") << Damage([](const LocalServiceProcess &service) {
        write(service.dataDir() + QStringLiteral("/service.sqlite"), QByteArray(4096, 'x'));
    }) << QByteArray("cannot be");
    QTest::newRow("a page of an index") << Damage([](const LocalServiceProcess &service) {
        damagePage(service, "sqlite_autoindex_auctions_1");
    }) << QByteArray("is damaged");
    QTest::newRow("a page of a table")
        << Damage([](const LocalServiceProcess &service) { damagePage(service, "members"); })
        << QByteArray("is damaged");
    QTest::newRow("an index that does not fit its table")
        << Damage([](const LocalServiceProcess &service) {
               service.execute(QStringLiteral("PRAGMA writable_schema = ON; "));
               const qint64 page =
                   service
                       .value(QStringLiteral("SELECT rootpage FROM sqlite_master WHERE name ="
                                             " 'sqlite_autoindex_auctions_1'"))
                       .toLongLong();
               const QString name =
                   service.value(QStringLiteral("SELECT media FROM auctions")).toString();
               const QString path = service.dataDir() + QStringLiteral("/service.sqlite");
               const qsizetype at = content(path).indexOf(name.toLatin1(), (page - 1) * 4096);
               QVERIFY(at > 0);
               write(path, "0000", at);
           })
        << QByteArray("is damaged");
    QTest::newRow("an auction of nobody") << Damage([](const LocalServiceProcess &service) {
        service.execute(QStringLiteral("UPDATE auctions SET member = 77"));
    }) << QByteArray("belongs to nothing");
    QTest::newRow("a table is missing") << Damage([](const LocalServiceProcess &service) {
        service.execute(QStringLiteral("ALTER TABLE auctions RENAME TO bygones"));
    }) << QByteArray("no database of this service");
    QTest::newRow("records of a newer service") << Damage([](const LocalServiceProcess &service) {
        service.execute(QStringLiteral("PRAGMA user_version = 1000"));
    }) << QByteArray("newer");
    QTest::newRow("a folder of a newer service") << Damage([](const LocalServiceProcess &service) {
        write(service.dataDir() + QLatin1String(marker), "kavlor-localservice 2 whole\n");
    }) << QByteArray("another version");
}

void tst_LocalServiceRecords::brokenRecordsAreNotServed()
{
    QFETCH(Damage, damage);
    QFETCH(QByteArray, complaint);

    const QStringList before = media();
    QCOMPARE(m_service->terminate(), 0);
    damage(*m_service);
    const QByteArray refusal = refusalToStart();
    QVERIFY2(refusal.contains(complaint), refusal.constData());
    QCOMPARE(refusal.count('\n'), 1);
    QCOMPARE(media(), before);
    QVERIFY(!QFile::exists(file(QStringLiteral("/lost"))));
}

void tst_LocalServiceRecords::whatNoAuctionNamesIsMovedAside()
{
    const QStringList named = media();
    for (int round = 0; round < 2; ++round) {
        m_service->kill();
        write(file(QStringLiteral("/incoming/abc.part")), "half a photo");
        write(file(QStringLiteral("/media/0123.jpg")), "a whole photo");
        QVERIFY(m_service->start());
        QCOMPARE(media(), named);
        QCOMPARE(QDir(file(QStringLiteral("/incoming"))).entryList(QDir::Files), QStringList());
    }
    const QDir lost(file(QStringLiteral("/lost")));
    const QStringList all = lost.entryList(QDir::Files);
    QCOMPARE(all.size(), 4);
    for (const QString &name : all) {
        QCOMPARE(content(lost.filePath(name)),
                 name.endsWith(QLatin1String(".jpg")) ? QByteArray("a whole photo")
                                                      : QByteArray("half a photo"));
    }
}

void tst_LocalServiceRecords::aMissingTableIsNoEmptyResult_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QByteArrayList>("operations");
    QTest::addColumn<QByteArrayList>("pages");

    QTest::newRow("members") << QStringLiteral("members")
                             << QByteArrayList{"ValidateLogin",          "CreateAccount",
                                               "ModifyAccount",          "GetCategoryList",
                                               "GetNotificationOptions", "GetMyAuctions",
                                               "GetThumbnail",           "GetRawMedia"}
                             << QByteArrayList{"/", "/auction?id=1&done=bid", "/thumbnail?id=1",
                                               "/media?id=1"};
    QTest::newRow("auctions") << QStringLiteral("auctions")
                              << QByteArrayList{"GetMyAuctions", "GetThumbnail", "GetRawMedia",
                                                "ModifyAuction"}
                              << QByteArrayList{"/", "/auction?id=1&done=bid", "/thumbnail?id=1",
                                                "/media?id=1"};
    QTest::newRow("bids") << QStringLiteral("bids")
                          << QByteArrayList{"GetMyAuctions", "ModifyAuction"}
                          << QByteArrayList{"/", "/auction?id=1&done=bid"};
    QTest::newRow("mails") << QStringLiteral("mails") << QByteArrayList{}
                           << QByteArrayList{"/outbox"};
    QTest::newRow("password_links") << QStringLiteral("password_links") << QByteArrayList{}
                                    << QByteArrayList{"/index.php?do=newpass&secret=01"};
}

void tst_LocalServiceRecords::aMissingTableIsNoEmptyResult()
{
    QFETCH(QString, table);
    QFETCH(QByteArrayList, operations);
    QFETCH(QByteArrayList, pages);

    const QByteArray form = login
        + "&AuctionID=1&ReservePrice=0&BuyItNowPrice=0&Password1=secret&Password2=secret"
          "&EmailAddress=a@b";
    const QByteArray newcomer = "Username=m2&Password1=x&Password2=x&EmailAddress=a@b";
    m_service->execute(QStringLiteral("PRAGMA legacy_alter_table = ON"));
    m_service->execute(QStringLiteral("ALTER TABLE %1 RENAME TO bygones").arg(table));
    for (const QByteArray &operation : operations) {
        QCOMPARE(operation + ": " + post(operation, operation == "CreateAccount" ? newcomer : form),
                 operation + ": ERROR: the service's records have failed");
    }
    for (const QByteArray &page : pages) {
        const LocalServiceProcess::Reply reply = m_service->get(page);
        QVERIFY2(reply.status == 500, page + ' ' + reply.header);
        QVERIFY(reply.body.contains("records have failed"));
    }
    m_service->execute(QStringLiteral("ALTER TABLE bygones RENAME TO %1").arg(table));
    QCOMPARE(post("ValidateLogin", login), QByteArray("1"));
    QCOMPARE(post("GetMyAuctions", login).count('\n'), 2);

    QCOMPARE(m_service->terminate(), 0);
    const QByteArrayList complaints = m_service->complaints().trimmed().split('\n');
    QCOMPARE(complaints.size(), operations.size() + pages.size());
    for (const QByteArray &complaint : complaints)
        QVERIFY2(complaint.contains("no such table"), complaint.constData());
}

void tst_LocalServiceRecords::aDamagedPageIsNoEmptyResult()
{
    // Something new, so that the service does not answer out of its memory.
    m_service->execute(QStringLiteral("UPDATE members SET first_name = 'x'"));
    m_service->execute(QStringLiteral("UPDATE auctions SET description = 'x'"));
    damagePage(*m_service, "members");
    const QByteArray failed = "ERROR: the service's records have failed";
    QCOMPARE(post("ValidateLogin", login), failed);
    QCOMPARE(post("GetMyAuctions", login), failed);
    QCOMPARE(m_service->get("/").status, 500);
    QCOMPARE(m_service->terminate(), 0);
    QCOMPARE(m_service->complaints().count('\n'), 3);
    QCOMPARE(media().size(), 1);
}

void tst_LocalServiceRecords::expectChangesRefused()
{
    const QByteArrayList answers{
        post("CreateAccount", "Username=m2&Password1=x&Password2=x&EmailAddress=a@b"),
        post("SetNotificationOptions",
             login + "&NotifyOnBid=0&NotifyOnAuctionEnd=0&NotifyOnView=0&NotifyOnBuyerQuestion=0"),
        post("ModifyAuction", login + "&AuctionID=1&ReservePrice=0&BuyItNowPrice=9"),
        m_service->send(UploadRequest().bytes(m_service->host())).body,
    };
    for (const QByteArray &answer : answers) {
        QVERIFY2(answer.startsWith("ERROR: the") && !answer.contains("password"),
                 answer.constData());
    }
    WebVisitor visitor(*m_service);
    QCOMPARE(visitor.bid(1, 7).status, 500);
    QCOMPARE(post("GetMyAuctions", login).count('\n'), 2);
}

void tst_LocalServiceRecords::expectRecordsServed()
{
    QCOMPARE(post("ValidateLogin", login), QByteArray("1"));
    QCOMPARE(post("GetMyAuctions", login).count('\n'), 2);
    QCOMPARE(post("GetMyAuctions", "Username=m1&Password=other"),
             QByteArray("ERROR: wrong user name or password"));
    QVERIFY(m_service->post("GetThumbnail", login + "&AuctionID=1").type.startsWith("image/"));
    QCOMPARE(m_service->post("GetRawMedia", login + "&AuctionID=1").body, UploadRequest().media);
    for (const char *page : {"/", "/auction?id=1", "/outbox"})
        QCOMPARE(m_service->get(page).status, 200);
}

void tst_LocalServiceRecords::aLockedDatabaseRefusesChangesAndServesTheRest()
{
    {
        QSqlDatabase other =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(file(QStringLiteral("/service.sqlite")));
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(QStringLiteral("BEGIN EXCLUSIVE")));
        // Longer than anybody waits for anything.
        QElapsedTimer locked;
        locked.start();
        while (!locked.hasExpired(30000) && !QTest::currentTestFailed()) {
            expectChangesRefused();
            expectRecordsServed();
        }
        QVERIFY(QSqlQuery(other).exec(QStringLiteral("ROLLBACK")));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
    QCOMPARE(m_service->send(UploadRequest().bytes(m_service->host())).body, QByteArray("2"));
}

void tst_LocalServiceRecords::recordsThatNobodyMayReadAreNoEmptyResult()
{
    QCOMPARE(post("ValidateLogin", login), QByteArray("1"));
    // Every lock that readers and writers share, which lie in the middle of the log's index.
    QFile index(file(QStringLiteral("/service.sqlite-shm")));
    QVERIFY(index.open(QIODevice::ReadWrite));
    struct flock all = {};
    all.l_type = F_WRLCK;
    all.l_whence = SEEK_SET;
    all.l_start = 120;
    all.l_len = 8;
    QCOMPARE(::fcntl(index.handle(), F_SETLK, &all), 0);
    // Both at once, since SQLite goes on trying for long.
    QByteArray list;
    std::thread member([this, &list] { list = post("GetMyAuctions", login); });
    const int status = m_service->get("/").status;
    member.join();
    QVERIFY2(list.startsWith("ERROR: the service's records"), list.constData());
    QCOMPARE(status, 500);
    index.close();
    QCOMPARE(post("ValidateLogin", login), QByteArray("1"));
    QCOMPARE(post("GetMyAuctions", login).count('\n'), 2);
}

void tst_LocalServiceRecords::aDiskThatTakesNothingRefusesChangesAndServesTheRest_data()
{
    QTest::addColumn<int>("error");

    QTest::newRow("full") << ENOSPC;
    QTest::newRow("read only") << EROFS;
    QTest::newRow("broken") << EIO;
}

void tst_LocalServiceRecords::aDiskThatTakesNothingRefusesChangesAndServesTheRest()
{
    QFETCH(int, error);

    breakDisk(error);
    expectChangesRefused();
    expectRecordsServed();
    mendDisk();
    QCOMPARE(m_service->send(UploadRequest().bytes(m_service->host())).body, QByteArray("2"));
    QCOMPARE(media().size(), 2);
}

void tst_LocalServiceRecords::aFullDiskIsNoReasonNotToStart_data()
{
    QTest::addColumn<bool>("isKilled");

    QTest::newRow("after a good end") << false;
    QTest::newRow("after a kill") << true;
}

void tst_LocalServiceRecords::aFullDiskIsNoReasonNotToStart()
{
    QFETCH(bool, isKilled);

    if (isKilled)
        m_service->kill();
    else
        QCOMPARE(m_service->terminate(), 0);
    breakDisk(ENOSPC);
    QVERIFY2(m_service->start(), m_service->complaints());
    expectRecordsServed();
    expectChangesRefused();
    mendDisk();
    QCOMPARE(post("CreateAccount", "Username=m2&Password1=x&Password2=x&EmailAddress=a@b"),
             QByteArray("2"));
    QCOMPARE(m_service->terminate(), 0);

    QVERIFY(m_service->start());
    expectRecordsServed();
    QCOMPARE(m_service->send(UploadRequest().bytes(m_service->host())).body, QByteArray("2"));
}

KAVLOR_TEST_MAIN(tst_LocalServiceRecords)
#include "tst_localservicerecords.moc"
