// SPDX-License-Identifier: MIT

#include "testcase.h"
#include "testmain.h"
#include "uploaddraft.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace {

CAuctionRecord record()
{
    CAuctionRecord record;
    record.mediaPath = QStringLiteral("/photos/caf\u00e9.jpg");
    record.caption = QStringLiteral("\"Sunset\" \u65e5\n%1");
    record.description = QStringLiteral("Two lines:\nthe second");
    record.category = 112;
    record.startPrice = 5;
    record.reservePrice = 25;
    record.buyItNowPrice = 10'000'000;
    return record;
}

QString member()
{
    return QStringLiteral("m1");
}

} // namespace

class tst_UploadDraft : public TestCase
{
    Q_OBJECT

private slots:
    void init();

    void whatIsSavedIsLoaded();
    void aLaterOneTakesItsPlace();
    void itIsItsOwnersAlone();
    void itBelongsToOneMember();
    void aBrokenFileIsNoDraft_data();
    void aBrokenFileIsNoDraft();
    void absurdPricesAreBounded();
    void aFolderThatCannotBeWrittenIsNoHarm();

private:
    QString path() const;
    void write(const QByteArray &content) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<UploadDraft> m_draft;
};

void tst_UploadDraft::init()
{
    TestCase::init();
    m_folder = std::make_unique<QTemporaryDir>();
    m_draft = std::make_unique<UploadDraft>(m_folder->filePath(QStringLiteral("kavlor.conf")));
}

QString tst_UploadDraft::path() const
{
    return m_folder->filePath(QStringLiteral("upload.draft"));
}

void tst_UploadDraft::write(const QByteArray &content) const
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void tst_UploadDraft::whatIsSavedIsLoaded()
{
    QVERIFY(!m_draft->load(member()));
    m_draft->save(member(), record());
    const std::optional<CAuctionRecord> loaded = m_draft->load(member());
    QVERIFY(loaded);
    QCOMPARE(loaded->mediaPath, record().mediaPath);
    QCOMPARE(loaded->caption, record().caption);
    QCOMPARE(loaded->description, record().description);
    QCOMPARE(loaded->category, record().category);
    QCOMPARE(loaded->startPrice, record().startPrice);
    QCOMPARE(loaded->reservePrice, record().reservePrice);
    QCOMPARE(loaded->buyItNowPrice, record().buyItNowPrice);
    m_draft->remove();
    QVERIFY(!m_draft->load(member()));
    QVERIFY(!QFile::exists(path()));
}

void tst_UploadDraft::aLaterOneTakesItsPlace()
{
    CAuctionRecord longer = record();
    longer.description = QString(10000, QLatin1Char('x'));
    m_draft->save(member(), longer);
    m_draft->save(member(), record());
    QCOMPARE(m_draft->load(member())->description, record().description);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden),
             QStringList{QStringLiteral("upload.draft")});
}

void tst_UploadDraft::itIsItsOwnersAlone()
{
    const auto rights = [this] {
        return QFile::permissions(path()) & ~(QFile::ReadUser | QFile::WriteUser);
    };
    m_draft->save(member(), record());
    QCOMPARE(rights(), QFile::ReadOwner | QFile::WriteOwner);
    // Also where it was wider before.
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
    m_draft->save(member(), record());
    QCOMPARE(rights(), QFile::ReadOwner | QFile::WriteOwner);
}

void tst_UploadDraft::itBelongsToOneMember()
{
    m_draft->save(member(), record());
    QVERIFY(!m_draft->load(QStringLiteral("M1")));
    QVERIFY(!m_draft->load(QString()));
    m_draft->keepOnlyOf(member());
    QVERIFY(m_draft->load(member()));
    m_draft->keepOnlyOf(QStringLiteral("m2"));
    QVERIFY(!m_draft->load(member()));
    QVERIFY(!QFile::exists(path()));
}

void tst_UploadDraft::aBrokenFileIsNoDraft_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("\x00\xff\xfe garbage", 11);
    QTest::newRow("cut off") << QByteArray(R"({"member": "m1", "media": "/a.jpg", "cap)");
    QTest::newRow("a list") << QByteArray(R"(["m1", "/a.jpg"])");
    QTest::newRow("no media") << QByteArray(R"({"member": "m1"})");
    QTest::newRow("media is a number") << QByteArray(R"({"member": "m1", "media": 7})");
    QTest::newRow("member is a list") << QByteArray(R"({"member": ["m1"], "media": "/a.jpg"})");
    QTest::newRow("nested too deep") << QByteArray(100000, '[');
    QTest::newRow("too large") << R"({"member": "m1", "media": "/a.jpg", "caption": ")"
            + QByteArray(2'000'000, 'x') + "\"}";
}

void tst_UploadDraft::aBrokenFileIsNoDraft()
{
    QFETCH(QByteArray, content);
    write(content);
    QVERIFY(!m_draft->load(member()));
    m_draft->save(member(), record());
    QVERIFY(m_draft->load(member()));
}

void tst_UploadDraft::absurdPricesAreBounded()
{
    write(R"({"member": "m1", "media": "/a.jpg", "category": "x", "caption": 5,
              "startPrice": -7, "reservePrice": 99999999999, "buyItNowPrice": 20000000})");
    const std::optional<CAuctionRecord> loaded = m_draft->load(member());
    QVERIFY(loaded);
    QCOMPARE(loaded->caption, QString());
    QCOMPARE(loaded->category, 0);
    QCOMPARE(loaded->startPrice, 1U);
    QCOMPARE(loaded->reservePrice, 0U); // no number that a price can be
    QCOMPARE(loaded->buyItNowPrice, 10'000'000U);
}

void tst_UploadDraft::aFolderThatCannotBeWrittenIsNoHarm()
{
    const UploadDraft nowhere(QStringLiteral("/proc/kavlor/kavlor.conf"));
    nowhere.save(member(), record());
    QVERIFY(!nowhere.load(member()));
    nowhere.keepOnlyOf(member());
    nowhere.remove();
}

KAVLOR_TEST_MAIN(tst_UploadDraft)
#include "tst_uploaddraft.moc"
