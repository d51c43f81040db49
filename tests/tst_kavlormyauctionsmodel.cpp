// SPDX-License-Identifier: MIT

#include "auctionlist.h"
#include "auctionstrip.h"
#include "cellfont.h"
#include "kavlormyauctionsmodel.h"
#include "picturecomparison.h"
#include "processmemory.h"
#include "testcase.h"
#include "testmain.h"
#include "testpaths.h"

#include <QAbstractItemModelTester>
#include <QFontDatabase>
#include <QPainter>
#include <QPixmapCache>
#include <QSignalSpy>

namespace {

constexpr QPoint marksStart(1, 28);

QString thumbnailKey(uint id)
{
    return QStringLiteral("auctionid::%1").arg(id);
}

QString stripKey(uint id)
{
    return QStringLiteral("combined::%1").arg(id);
}

bool isCached(const QString &key)
{
    QPixmap ignored;
    return QPixmapCache::find(key, &ignored);
}

QImage plain(const QImage &image)
{
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// A picture with something different everywhere, so that a wrong scaling shows.
QPixmap chequered(QSize size)
{
    QPixmap picture(size);
    picture.fill(QColor(40, 90, 160));
    QPainter painter(&picture);
    for (int y = 0; y < size.height(); y += 20) {
        for (int x = y % 40; x < size.width(); x += 40)
            painter.fillRect(x, y, 20, 20, QColor::fromHsv((x + y) % 360, 200, 220));
    }
    return picture;
}

} // namespace

class tst_KavlorMyAuctionsModel : public TestCase
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void everyItemGoesToItsField();
    void aReplyOfOneLineFailsAndLeavesTheModelEmpty_data();
    void aReplyOfOneLineFailsAndLeavesTheModelEmpty();
    void aLineEndsTheParseAndEarlierRowsRemain_data();
    void aLineEndsTheParseAndEarlierRowsRemain();
    void elevenItemsAndMore();
    void carriageReturnsDoNotCount();
    void aLastLineWithoutLineFeedCounts();
    void titlesAreTakenAsTheyAre_data();
    void titlesAreTakenAsTheyAre();
    void aBadNumberBecomesZero_data();
    void aBadNumberBecomesZero();
    void theLargestIdIsRead();
    void onlyOneMeansFinished_data();
    void onlyOneMeansFinished();
    void aDateThatDoesNotParseIsInvalid();
    void theSameIdTwiceIsTwoRowsOfOneAuction();
    void aPageOfHtmlHoldsNoAuctions();
    void loadingReplacesEverything();

    void headerLabels();
    void rolesOfACell();
    void passesTheModelTester();
    void unknownRowsAndAuctionsAreEmpty();

    void aRowAsksForItsThumbnailOnEveryPaintUntilItIsSet();
    void aThumbnailIsScaledToItsCell();
    void aThumbnailOfAnUnknownAuctionIsIgnored();
    void aNullThumbnailIsAMissingOneAndNotAskedForAgain();
    void aThumbnailOfAnEarlierListIsNotAskedFor();

    void strips_data();
    void strips();
    void numbersAreShownWhole_data();
    void numbersAreShownWhole();
    void numbersThatDoNotFitSaySo();
    void titlesKeepTheirAccentsAndTails_data();
    void titlesKeepTheirAccentsAndTails();
    void titlesLongerThanSixtyCharactersAreCutNotElided();
    void marksStandInARow_data();
    void marksStandInARow();
    void stripsArePaintedOnceAndShared();
    void evictedPicturesAreMadeAgain();
    void thumbnailsOfRowsPassedLongAgoAreNotKept();
    void newPricesLeaveThePaintedStrip();

private:
    QImage cell(int row, CKavlorMyAuctionsModel::Column column) const;
    void compareWithReference(const QImage &image, const QString &name) const;

    std::unique_ptr<CKavlorMyAuctionsModel> m_model;
};

void tst_KavlorMyAuctionsModel::initTestCase()
{
    const int font =
        QFontDatabase::addApplicationFont(QStringLiteral(TEST_DATA "/fonts/DejaVuSans-Bold.ttf"));
    QVERIFY(font >= 0);
    const QString family = QFontDatabase::applicationFontFamilies(font).constFirst();
    for (const char *name : {"LargeSystemFont", "SmallSystemFont"})
        QFont::insertSubstitution(QLatin1String(name), family);
}

void tst_KavlorMyAuctionsModel::init()
{
    TestCase::init();
    QPixmapCache::clear();
    m_model = std::make_unique<CKavlorMyAuctionsModel>();
}

QImage tst_KavlorMyAuctionsModel::cell(int row, CKavlorMyAuctionsModel::Column column) const
{
    const QVariant picture = m_model->index(row, column).data(Qt::DecorationRole);
    return plain(picture.value<QPixmap>().toImage());
}

void tst_KavlorMyAuctionsModel::compareWithReference(const QImage &image, const QString &name) const
{
    const QString path = QStringLiteral(TEST_DATA "/strips/%1.png").arg(name);
    if (qEnvironmentVariableIsSet("KAVLOR_WRITE_REFERENCES"))
        QVERIFY(image.save(path));
    const QImage reference(path);
    QVERIFY2(!reference.isNull(), qPrintable(path));
    QCOMPARE(pictureDifference(image, reference), QString());
}

void tst_KavlorMyAuctionsModel::everyItemGoesToItsField()
{
    QVERIFY(m_model->load(
        QStringLiteral("header\n4711,A title,12,13,14,15,03/09/2026 07:05,1,18,19,110\n")));
    QCOMPARE(m_model->rowCount(), 1);
    QCOMPARE(m_model->columnCount(), 2);
    QCOMPARE(m_model->auctionId(0), 4711u);
    const CAuctionRow auction = m_model->auction(4711);
    QCOMPARE(auction.title, QStringLiteral("A title"));
    QCOMPARE(auction.endDate, QDateTime(QDate(2026, 3, 9), QTime(7, 5)));
    QVERIFY(auction.finished);
    QCOMPARE(auction.item2, 12);
    QCOMPARE(auction.reservePrice, 13);
    QCOMPARE(auction.buyItNowPrice, 14);
    QCOMPARE(auction.item5, 15);
    QCOMPARE(auction.views, 18);
    QCOMPARE(auction.bids, 19);
    QCOMPARE(auction.item10, 110);
    QVERIFY(auction.thumbnail.isNull());
    QVERIFY(auction.noThumbnail);
}

void tst_KavlorMyAuctionsModel::aReplyOfOneLineFailsAndLeavesTheModelEmpty_data()
{
    QTest::addColumn<QString>("reply");
    QTest::newRow("the header") << "id,title,1,2,3,4,5,6,7,8,9";
    QTest::newRow("an auction where the header should be") << AuctionLine().text();
    QTest::newRow("nothing") << "";
}

void tst_KavlorMyAuctionsModel::aReplyOfOneLineFailsAndLeavesTheModelEmpty()
{
    QFETCH(QString, reply);
    QVERIFY(m_model->load(auctionReply(3)));
    QVERIFY(!m_model->load(reply));
    QCOMPARE(m_model->rowCount(), 0);
    QCOMPARE(m_model->auctionId(0), 0u);
}

void tst_KavlorMyAuctionsModel::aLineEndsTheParseAndEarlierRowsRemain_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("ten items") << "9,Title,1,2,3,4,12/24/2026 18:30,0,5,6";
    QTest::newRow("empty") << "";
    QTest::newRow("id of 0") << "0,Title,1,2,3,4,12/24/2026 18:30,0,5,6,7";
    QTest::newRow("id is a word") << "nine,Title,1,2,3,4,12/24/2026 18:30,0,5,6,7";
    QTest::newRow("id is hexadecimal") << "0x9,Title,1,2,3,4,12/24/2026 18:30,0,5,6,7";
    QTest::newRow("id is negative") << "-9,Title,1,2,3,4,12/24/2026 18:30,0,5,6,7";
    QTest::newRow("id is empty") << ",Title,1,2,3,4,12/24/2026 18:30,0,5,6,7";
    QTest::newRow("id overflows") << "4294967296,Title,1,2,3,4,12/24/2026 18:30,0,5,6,7";
}

void tst_KavlorMyAuctionsModel::aLineEndsTheParseAndEarlierRowsRemain()
{
    QFETCH(QString, line);
    AuctionLine after;
    after.id = 77;
    QVERIFY(m_model->load(auctionReply(2) + line + QLatin1Char('\n') + after.text()));
    QCOMPARE(m_model->rowCount(), 2);
    QCOMPARE(m_model->auctionId(1), 2u);
    QCOMPARE(m_model->auction(77).title, QString());
}

void tst_KavlorMyAuctionsModel::elevenItemsAndMore()
{
    QVERIFY(m_model->load(QStringLiteral("header\n"
                                         "5,Eleven,1,2,3,4,12/24/2026 18:30,0,8,9,10\n"
                                         "6,Twelve,1,2,3,4,12/24/2026 18:30,0,8,9,10,11\n")));
    QCOMPARE(m_model->rowCount(), 2);
    QCOMPARE(m_model->auction(5).item10, 10);
    QCOMPARE(m_model->auction(6).item10, 10);
    QCOMPARE(m_model->auction(6).title, QStringLiteral("Twelve"));
}

void tst_KavlorMyAuctionsModel::carriageReturnsDoNotCount()
{
    QVERIFY(m_model->load(QStringLiteral("header\r\n"
                                         "5,First,1,2,3,4,12/24/2026 18:30,0,8,9,10\r\n"
                                         "6,Second,1,2,3,4,12/24/2026 18:30,1,8,9,20\r\n")));
    QCOMPARE(m_model->rowCount(), 2);
    QCOMPARE(m_model->auction(5).item10, 10);
    QCOMPARE(m_model->auction(6).item10, 20);
    QVERIFY(m_model->auction(6).finished);
}

void tst_KavlorMyAuctionsModel::aLastLineWithoutLineFeedCounts()
{
    QString reply = auctionReply(3);
    reply.chop(1);
    QVERIFY(m_model->load(reply));
    QCOMPARE(m_model->rowCount(), 3);
    QCOMPARE(m_model->auctionId(2), 3u);
}

void tst_KavlorMyAuctionsModel::titlesAreTakenAsTheyAre_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("quotes") << "\"A\" and 'B' and \"";
    QTest::newRow("HTML") << "<b>Bold</b> &amp; <img src=x>";
    QTest::newRow("empty") << "";
    QTest::newRow("spaces around") << "  a  ";
    QTest::newRow("percent and backslash") << "%1 \\n %n";
    QTest::newRow("other scripts") << QStringLiteral(u"\u00C5sa \u017Eofie \u6F22\u5B57");
    QTest::newRow("10,000 characters") << QString(10000, QLatin1Char('w'));
}

void tst_KavlorMyAuctionsModel::titlesAreTakenAsTheyAre()
{
    QFETCH(QString, title);
    AuctionLine line;
    line.title = title;
    QVERIFY(m_model->load(auctionReply(line)));
    QCOMPARE(m_model->auction(1).title, title);
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Info).size(), QSize(680, 90));
}

void tst_KavlorMyAuctionsModel::aBadNumberBecomesZero_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<int>("expected");
    QTest::newRow("word") << "many" << 0;
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("fraction") << "1.5" << 0;
    QTest::newRow("hexadecimal") << "0x10" << 0;
    QTest::newRow("leading zero is no octal") << "010" << 10;
    QTest::newRow("negative") << "-3" << -3;
    QTest::newRow("largest") << "2147483647" << 2147483647;
    QTest::newRow("one above 32 bits") << "2147483648" << 0;
    QTest::newRow("far above 64 bits") << "99999999999999999999999" << 0;
}

void tst_KavlorMyAuctionsModel::aBadNumberBecomesZero()
{
    QFETCH(QString, number);
    QFETCH(int, expected);
    const QString line = QStringLiteral("3,Title,%1,%1,%1,%1,12/24/2026 18:30,0,%1,%1,%1");
    QVERIFY(m_model->load(QStringLiteral("header\n") + line.arg(number)));
    const CAuctionRow auction = m_model->auction(3);
    const QList<int> numbers{auction.item2, auction.reservePrice, auction.buyItNowPrice,
                             auction.item5, auction.views,        auction.bids,
                             auction.item10};
    QCOMPARE(numbers, QList<int>(7, expected));
}

void tst_KavlorMyAuctionsModel::theLargestIdIsRead()
{
    AuctionLine line;
    line.id = 4294967295U;
    QVERIFY(m_model->load(auctionReply(line)));
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    cell(0, CKavlorMyAuctionsModel::Thumbnail);
    QCOMPARE(asked.takeFirst().constFirst().toUInt(), 4294967295U);
}

void tst_KavlorMyAuctionsModel::onlyOneMeansFinished_data()
{
    QTest::addColumn<QString>("flag");
    QTest::addColumn<bool>("finished");
    QTest::newRow("1") << "1" << true;
    QTest::newRow("0") << "0" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("01") << "01" << false;
    QTest::newRow("space") << " 1" << false;
    QTest::newRow("true") << "true" << false;
}

void tst_KavlorMyAuctionsModel::onlyOneMeansFinished()
{
    QFETCH(QString, flag);
    QFETCH(bool, finished);
    QVERIFY(m_model->load(
        QStringLiteral("header\n3,Title,1,2,3,4,12/24/2026 18:30,%1,8,9,10").arg(flag)));
    QCOMPARE(m_model->auction(3).finished, finished);
}

void tst_KavlorMyAuctionsModel::aDateThatDoesNotParseIsInvalid()
{
    QVERIFY(m_model->load(QStringLiteral("header\n"
                                         "1,Title,1,2,3,4,24/12/2026 18:30,0,8,9,10\n"
                                         "2,Title,1,2,3,4,,0,8,9,10\n"
                                         "3,Title,1,2,3,4,2026-12-24 18:30,0,8,9,10\n"
                                         "4,Title,1,2,3,4,12/24/2026 18:30,0,8,9,10\n"
                                         "5,Title,1,2,3,4,02/29/2026 18:30,0,8,9,10\n"
                                         "6,Title,1,2,3,4,12/24/2026 24:00,0,8,9,10\n"
                                         "7,Title,1,2,3,4,12/24/2026 18:30:00,0,8,9,10\n"
                                         "8,Title,1,2,3,4,12/24/26 18:30,0,8,9,10\n"
                                         "9,Title,1,2,3,4,02/29/2028 00:00,0,8,9,10\n")));
    QCOMPARE(m_model->auction(9).endDate, QDateTime(QDate(2028, 2, 29), QTime(0, 0)));
    for (const uint id : {1u, 2u, 3u, 5u, 6u, 7u, 8u})
        QVERIFY(!m_model->auction(id).endDate.isValid());
    QVERIFY(m_model->auction(4).endDate.isValid());
    QCOMPARE(m_model->auction(1).bids, 9);
}

void tst_KavlorMyAuctionsModel::theSameIdTwiceIsTwoRowsOfOneAuction()
{
    AuctionLine first;
    first.title = QStringLiteral("First");
    AuctionLine second;
    second.title = QStringLiteral("Second");
    QVERIFY(m_model->load(auctionReply(first) + second.text()));
    QCOMPARE(m_model->rowCount(), 2);
    QCOMPARE(m_model->auctionId(0), m_model->auctionId(1));
    QCOMPARE(m_model->auction(1).title, QStringLiteral("Second"));

    QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
    m_model->setThumbnail(1, chequered({220, 165}));
    const auto topLeft = changed.constFirst().at(0).toModelIndex();
    const auto bottomRight = changed.constFirst().at(1).toModelIndex();
    QVERIFY(topLeft.row() == 0 && bottomRight.row() == 1);
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Thumbnail),
             cell(1, CKavlorMyAuctionsModel::Thumbnail));
}

void tst_KavlorMyAuctionsModel::aPageOfHtmlHoldsNoAuctions()
{
    QVERIFY(m_model->load(QStringLiteral("<!DOCTYPE html>\n<html><head>\n"
                                         "<title>502, Bad, Gateway</title>\n</head></html>\n")));
    QCOMPARE(m_model->rowCount(), 0);
}

void tst_KavlorMyAuctionsModel::loadingReplacesEverything()
{
    QVERIFY(m_model->load(auctionReply(5)));
    QSignalSpy reset(m_model.get(), &QAbstractItemModel::modelReset);
    AuctionLine line;
    line.id = 9;
    QVERIFY(m_model->load(auctionReply(line)));
    QCOMPARE(reset.size(), 1);
    QCOMPARE(m_model->rowCount(), 1);
    QCOMPARE(m_model->auctionId(0), 9u);
    QCOMPARE(m_model->auctionId(1), 0u);
    QCOMPARE(m_model->auction(2).title, QString());
}

void tst_KavlorMyAuctionsModel::headerLabels()
{
    QCOMPARE(m_model->headerData(0, Qt::Horizontal), QStringLiteral("Thumbnail"));
    QCOMPARE(m_model->headerData(1, Qt::Horizontal), QStringLiteral("Info"));
    QVERIFY(!m_model->headerData(2, Qt::Horizontal).isValid());
    QVERIFY(!m_model->headerData(-1, Qt::Horizontal).isValid());
    QVERIFY(!m_model->headerData(0, Qt::Vertical).isValid());
    QVERIFY(!m_model->headerData(0, Qt::Horizontal, Qt::DecorationRole).isValid());
}

void tst_KavlorMyAuctionsModel::rolesOfACell()
{
    m_model->load(auctionReply(1));
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    for (int column = 0; column < m_model->columnCount(); ++column) {
        const QModelIndex index = m_model->index(0, column);
        QCOMPARE(index.data(Qt::TextAlignmentRole).value<Qt::Alignment>(),
                 Qt::AlignLeft | Qt::AlignVCenter);
        for (const int role : {Qt::DisplayRole, Qt::EditRole, Qt::ToolTipRole, Qt::SizeHintRole,
                               Qt::FontRole, Qt::CheckStateRole, Qt::UserRole})
            QVERIFY(!index.data(role).isValid());
    }
    QCOMPARE(asked.size(), 0);
    QVERIFY(!isCached(stripKey(1)));
    QVERIFY(!m_model->data({}, Qt::TextAlignmentRole).isValid());
    QCOMPARE(CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Thumbnail), QSize(120, 90));
    QCOMPARE(CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Info), QSize(680, 90));
}

void tst_KavlorMyAuctionsModel::passesTheModelTester()
{
    QAbstractItemModelTester tester(m_model.get(),
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_model->load(auctionReply(20));
    m_model->setThumbnail(3, chequered({220, 165}));
    m_model->setPrices(3, 1, 2);
    m_model->load(auctionReply(2));
    m_model->load(QString());
    m_model->load(auctionReply(1));
}

void tst_KavlorMyAuctionsModel::unknownRowsAndAuctionsAreEmpty()
{
    m_model->load(auctionReply(1));
    QCOMPARE(m_model->auctionId(-1), 0u);
    QCOMPARE(m_model->auctionId(1), 0u);
    QCOMPARE(m_model->auction(0).title, QString());
    m_model->setPrices(0, 5, 6);
    m_model->setPrices(99, 5, 6);
    QCOMPARE(m_model->rowCount(), 1);
    QCOMPARE(m_model->auction(1).reservePrice, 20);
    QCOMPARE(m_model->auction(99).reservePrice, 0);
    QCOMPARE(m_model->rowCount(m_model->index(0, 0)), 0);
    QCOMPARE(m_model->columnCount(m_model->index(0, 0)), 0);
}

void tst_KavlorMyAuctionsModel::aRowAsksForItsThumbnailOnEveryPaintUntilItIsSet()
{
    m_model->load(auctionReply(3));
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    for (int paint = 1; paint <= 3; ++paint) {
        QVERIFY(cell(1, CKavlorMyAuctionsModel::Thumbnail).isNull());
        cell(1, CKavlorMyAuctionsModel::Info);
        QCOMPARE(asked.size(), paint);
        QCOMPARE(asked.constLast().constFirst().toUInt(), 2u);
    }
    m_model->setThumbnail(2, chequered({220, 165}));
    QVERIFY(!cell(1, CKavlorMyAuctionsModel::Thumbnail).isNull());
    QCOMPARE(asked.size(), 3);
    QVERIFY(cell(0, CKavlorMyAuctionsModel::Thumbnail).isNull());
    QCOMPARE(asked.constLast().constFirst().toUInt(), 1u);
}

void tst_KavlorMyAuctionsModel::aThumbnailIsScaledToItsCell()
{
    m_model->load(auctionReply(1));
    QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
    const QPixmap original = chequered({100, 220});
    m_model->setThumbnail(1, original);
    QCOMPARE(changed.size(), 1);
    const QImage shown = cell(0, CKavlorMyAuctionsModel::Thumbnail);
    QCOMPARE(shown.size(), QSize(120, 90));
    compareWithReference(shown, QStringLiteral("thumbnail"));
    QCOMPARE(m_model->auction(1).thumbnail.cacheKey(), original.cacheKey());
    QVERIFY(!m_model->auction(1).noThumbnail);
    QPixmap cached;
    QVERIFY(QPixmapCache::find(thumbnailKey(1), &cached));
    QCOMPARE(plain(cached.toImage()), shown);
}

void tst_KavlorMyAuctionsModel::aThumbnailOfAnUnknownAuctionIsIgnored()
{
    m_model->load(auctionReply(1));
    QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
    m_model->setThumbnail(2, chequered({220, 165}));
    QCOMPARE(changed.size(), 0);
    QVERIFY(!isCached(thumbnailKey(2)));
    QVERIFY(m_model->auction(2).thumbnail.isNull());
}

void tst_KavlorMyAuctionsModel::aNullThumbnailIsAMissingOneAndNotAskedForAgain()
{
    m_model->load(auctionReply(1));
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    m_model->setThumbnail(1, QPixmap());
    QVERIFY(cell(0, CKavlorMyAuctionsModel::Thumbnail).isNull());
    QCOMPARE(asked.size(), 0);
    QVERIFY(!isCached(thumbnailKey(1)));

    // The next list tries again.
    m_model->load(auctionReply(1));
    QVERIFY(cell(0, CKavlorMyAuctionsModel::Thumbnail).isNull());
    QCOMPARE(asked.size(), 1);
}

void tst_KavlorMyAuctionsModel::aThumbnailOfAnEarlierListIsNotAskedFor()
{
    m_model->load(auctionReply(1));
    m_model->setThumbnail(1, chequered({220, 165}));
    const QImage shown = cell(0, CKavlorMyAuctionsModel::Thumbnail);

    m_model = std::make_unique<CKavlorMyAuctionsModel>();
    m_model->load(auctionReply(1));
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Thumbnail), shown);
    QPixmapCache::clear();
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Thumbnail), shown);
    QCOMPARE(asked.size(), 0);
}

void tst_KavlorMyAuctionsModel::strips_data()
{
    QTest::addColumn<AuctionLine>("line");

    AuctionLine line;
    line.title = QStringLiteral("Sunset over the harbour");
    QTest::newRow("running") << line;
    line.finished = true;
    QTest::newRow("finished") << line;
    line.item10 = line.reservePrice;
    QTest::newRow("finished-reserve-met") << line;
    line.finished = false;
    QTest::newRow("running-reserve-met") << line;
    line.title = QStringLiteral("\"Quoted\" & <b>marked</b> %1");
    line.views = 0;
    line.bids = 0;
    QTest::newRow("marks-and-quotes") << line;
    line.title =
        QStringLiteral("Street musicians in the long evening light of the old town square");
    line.views = 12345;
    line.bids = 678;
    QTest::newRow("long-title") << line;
    line.title = QString(10000, QLatin1Char('i'));
    line.views = 2147483647;
    line.bids = -5;
    QTest::newRow("longest-numbers") << line;
    line.title.clear();
    line.views = 88;
    line.bids = 8;
    QTest::newRow("no-title") << line;
    line.title = QStringLiteral(u"\u00C5sa \u017Eofie \u0416\u0443\u043A jumping gypsy");
    QTest::newRow("accents-and-descenders") << line;
}

void tst_KavlorMyAuctionsModel::strips()
{
    QFETCH(AuctionLine, line);
    m_model->load(auctionReply(line));
    compareWithReference(cell(0, CKavlorMyAuctionsModel::Info),
                         QLatin1String(QTest::currentDataTag()));
}

void tst_KavlorMyAuctionsModel::numbersAreShownWhole_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {0, 88, 12345, 99999, 100000, 123456, 999999, 1000000, 2147483647, -5,
                             -123456, -2147483647})
        QTest::newRow(QByteArray::number(number).constData()) << number;
}

// Nothing of a number reaches the border of its place, where the rest would be missing.
void tst_KavlorMyAuctionsModel::numbersAreShownWhole()
{
    QFETCH(int, number);
    const QImage viewed(QStringLiteral(":/viewed.png"));
    const QImage bidding(QStringLiteral(":/biddingOn.png"));
    const QImage bareViewed = plain(viewed);
    const QImage bareBidding = plain(bidding);
    const auto isMissing = [](const QImage &mark, const QImage &bare, int left, int width) {
        for (int y = 0; y < mark.height(); ++y) {
            for (const int x : {left, left + width - 1}) {
                if (mark.pixel(x, y) != bare.pixel(x, y))
                    return true;
            }
        }
        return false;
    };

    CAuctionRow auction;
    auction.views = number;
    auction.bids = number;
    const QImage strip = plain(paintAuctionStrip(auction).toImage());
    const QImage first = strip.copy(QRect(marksStart, viewed.size()));
    const QImage second = strip.copy(QRect(QPoint(viewed.width() + 2, 28), bidding.size()));
    QVERIFY(first != bareViewed && second != bareBidding);
    QVERIFY(!isMissing(first, bareViewed, viewed.width() / 2 - viewed.width() / 10,
                       viewed.width() / 2));
    QVERIFY(!isMissing(second, bareBidding, bidding.width() / 3 - 1, bidding.width() / 2));
}

void tst_KavlorMyAuctionsModel::numbersThatDoNotFitSaySo()
{
    const auto strip = [](int views) {
        CAuctionRow auction;
        auction.views = views;
        return paintAuctionStrip(auction).toImage();
    };
    QVERIFY(strip(999998) != strip(999999));
    QVERIFY(strip(999999) != strip(2147483647));
    QCOMPARE(strip(1234567890), strip(2147483647));
    QVERIFY(strip(-1234567890) != strip(2147483647));
}

void tst_KavlorMyAuctionsModel::titlesKeepTheirAccentsAndTails_data()
{
    QTest::addColumn<QString>("letters");
    QTest::newRow("tails") << QStringLiteral("gjpqy");
    QTest::newRow("an accent on a capital") << QStringLiteral(u"\u00C5");
    QTest::newRow("two accents and a tail") << QStringLiteral(u"\u1EA4\u1E68g");
    QTest::newRow("marks above marks") << QStringLiteral(u"A\u0302\u0302\u0302");
    QTest::newRow("dots above dots") << QStringLiteral(u"x\u0307\u0307\u0307\u0307");
    QTest::newRow("two accents above a tall letter") << QStringLiteral(u"d\u0302\u0301\u0302");
    QTest::newRow("Arabic vowels") << QStringLiteral(u"\u0644\u0651\u064E");
    QTest::newRow("neither") << QStringLiteral("xom");
}

void tst_KavlorMyAuctionsModel::titlesKeepTheirAccentsAndTails()
{
    QFETCH(QString, letters);
    constexpr int free = 500; // right of all marks
    const QString title = QString(18, QLatin1Char('m')) + letters;
    // The same where there is room above and below.
    QImage canvas(QSize(680, 200), QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setFont(cellFont("LargeSystemFont", 21, QFont::Bold));
    painter.setPen(QColor(249, 167, 31));
    painter.drawText(QRect(1, 80, 679, 27),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     title);
    painter.end();

    const auto inked = [](const QImage &image) {
        QRect ink;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = free; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) > 0)
                    ink |= QRect(x, y, 1, 1);
            }
        }
        return ink;
    };
    CAuctionRow auction;
    auction.title = title;
    const QImage strip = plain(paintAuctionStrip(auction).toImage());
    const QRect whole = inked(canvas);
    QVERIFY(!whole.isEmpty());
    QCOMPARE(inked(strip).size(), whole.size());
    QCOMPARE(pictureDifference(strip.copy(inked(strip)), canvas.copy(whole)), QString());
}

void tst_KavlorMyAuctionsModel::titlesLongerThanSixtyCharactersAreCutNotElided()
{
    const QString sixty = QString(59, QLatin1Char('i')) + QLatin1Char('l');
    CAuctionRow auction;
    auction.title = sixty;
    const QImage whole = paintAuctionStrip(auction).toImage();
    auction.title = sixty + QStringLiteral("mmmmmm");
    QCOMPARE(paintAuctionStrip(auction).toImage(), whole);
    auction.title = sixty.left(59);
    const QImage shorter = paintAuctionStrip(auction).toImage();
    QVERIFY(shorter != whole);
    // Of a character that takes two there is no half.
    auction.title += QStringLiteral(u"\U0001F305 over the bay");
    QCOMPARE(paintAuctionStrip(auction).toImage(), shorter);
}

void tst_KavlorMyAuctionsModel::marksStandInARow_data()
{
    QTest::addColumn<bool>("finished");
    QTest::addColumn<bool>("reserveMet");
    QTest::newRow("running") << false << false;
    QTest::newRow("running, reserve met") << false << true;
    QTest::newRow("finished") << true << false;
    QTest::newRow("finished, reserve met") << true << true;
}

// Where the marks stand and which they are; the numbers in the first two are in the references.
void tst_KavlorMyAuctionsModel::marksStandInARow()
{
    QFETCH(bool, finished);
    QFETCH(bool, reserveMet);
    CAuctionRow auction;
    auction.finished = finished;
    auction.reservePrice = 10;
    auction.item10 = reserveMet ? 10 : 11;
    const QImage strip = plain(paintAuctionStrip(auction).toImage());

    const QImage viewed(QStringLiteral(":/viewed.png"));
    const QImage bidding(QStringLiteral(":/biddingOn.png"));
    const QImage reserve(QStringLiteral(":/reserveMet.png"));
    const QImage sold(QStringLiteral(":/sold.png"));
    QVERIFY(!viewed.isNull() && !bidding.isNull() && !reserve.isNull() && !sold.isNull());

    const int column = viewed.width() / 3; // left of the number
    QCOMPARE(strip.copy(QRect(marksStart, QSize(column, viewed.height()))),
             plain(viewed).copy(0, 0, column, viewed.height()));
    const QPoint second(viewed.width() + 2, 28);
    QCOMPARE(strip.copy(QRect(second, QSize(column, bidding.height()))),
             plain(bidding).copy(0, 0, column, bidding.height()));

    QImage nothing(reserve.size(), QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    const QPoint third(viewed.width() + 3 + bidding.width(), 28);
    QCOMPARE(strip.copy(QRect(third, reserve.size())), reserveMet ? plain(reserve) : nothing);

    const QPoint fourth(viewed.width() + 4 + bidding.width() + reserve.width(), 28);
    QCOMPARE(strip.copy(QRect(fourth, sold.size())), plain(finished ? sold.rgbSwapped() : sold));
    QVERIFY(sold != sold.rgbSwapped());
}

void tst_KavlorMyAuctionsModel::stripsArePaintedOnceAndShared()
{
    m_model->load(auctionReply(2));
    const auto key = [this](int row) {
        return m_model->index(row, CKavlorMyAuctionsModel::Info)
            .data(Qt::DecorationRole)
            .value<QPixmap>()
            .cacheKey();
    };
    const qint64 first = key(0);
    QCOMPARE(key(0), first);
    QVERIFY(key(1) != first);

    // Another list of the same auction shows the picture that is there.
    m_model = std::make_unique<CKavlorMyAuctionsModel>();
    AuctionLine line;
    line.views = 99;
    m_model->load(auctionReply(line));
    QCOMPARE(key(0), first);
}

void tst_KavlorMyAuctionsModel::evictedPicturesAreMadeAgain()
{
    m_model->load(auctionReply(1));
    m_model->setThumbnail(1, chequered({220, 165}));
    const QImage thumbnail = cell(0, CKavlorMyAuctionsModel::Thumbnail);
    const QImage strip = cell(0, CKavlorMyAuctionsModel::Info);
    QPixmapCache::clear();
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Thumbnail), thumbnail);
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Info), strip);
    QVERIFY(isCached(thumbnailKey(1)));
    QVERIFY(isCached(stripKey(1)));

    // A cache that takes nothing costs time, not pictures.
    QPixmapCache::setCacheLimit(0);
    const QImage thumbnailWithoutCache = cell(0, CKavlorMyAuctionsModel::Thumbnail);
    const QImage stripWithoutCache = cell(0, CKavlorMyAuctionsModel::Info);
    QPixmapCache::setCacheLimit(10240);
    QCOMPARE(thumbnailWithoutCache, thumbnail);
    QCOMPARE(stripWithoutCache, strip);
    QCOMPARE(asked.size(), 0);
}

void tst_KavlorMyAuctionsModel::thumbnailsOfRowsPassedLongAgoAreNotKept()
{
    constexpr int rows = 1000;
    constexpr int near = 100;              // some twenty screens
    constexpr qint64 enough = 64LL * 1024; // KiB; all of them would be 142 MB
    m_model->load(auctionReply(rows));
    QSignalSpy asked(m_model.get(), &CKavlorMyAuctionsModel::requestThumb);
    QVERIFY(resetPeakMemory());
    const qint64 before = peakMemory();
    for (int row = 0; row < rows; ++row) {
        m_model->setThumbnail(m_model->auctionId(row), chequered({220, 165}));
        QVERIFY(!cell(row, CKavlorMyAuctionsModel::Thumbnail).isNull());
    }
    QCOMPARE(asked.size(), 0);
    const qint64 spent = peakMemory() - before;
    QVERIFY2(spent < enough, QByteArray::number(spent).constData());

    QPixmapCache::clear();
    for (int row = rows - near; row < rows; ++row) {
        QVERIFY(!cell(row, CKavlorMyAuctionsModel::Thumbnail).isNull());
        QVERIFY(!m_model->auction(m_model->auctionId(row)).thumbnail.isNull());
    }
    QCOMPARE(asked.size(), 0);
    QVERIFY(cell(0, CKavlorMyAuctionsModel::Thumbnail).isNull());
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.constFirst().constFirst().toUInt(), m_model->auctionId(0));
    m_model->setThumbnail(m_model->auctionId(0), chequered({220, 165}));
    QVERIFY(!cell(0, CKavlorMyAuctionsModel::Thumbnail).isNull());
}

void tst_KavlorMyAuctionsModel::newPricesLeaveThePaintedStrip()
{
    AuctionLine line;
    line.item10 = line.reservePrice;
    m_model->load(auctionReply(line));
    const QImage strip = cell(0, CKavlorMyAuctionsModel::Info);
    QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
    m_model->setPrices(1, 70, 0);
    QCOMPARE(m_model->auction(1).reservePrice, 70);
    QCOMPARE(m_model->auction(1).buyItNowPrice, 0);
    QCOMPARE(changed.size(), 0);
    QCOMPARE(cell(0, CKavlorMyAuctionsModel::Info), strip);
    QPixmapCache::clear();
    QVERIFY(cell(0, CKavlorMyAuctionsModel::Info) != strip);
}

KAVLOR_TEST_MAIN(tst_KavlorMyAuctionsModel)
#include "tst_kavlormyauctionsmodel.moc"
