// SPDX-License-Identifier: MIT

// What the auctions list costs with few and with very many auctions, in milliseconds of processor
// time, against plain tables of the toolkit and against itself with few.

#include "auctionlist.h"
#include "auctionstrip.h"
#include "costs.h"
#include "kavlormyauctionscontroller.h"
#include "kavlormyauctionsmodel.h"
#include "kavloruser.h"
#include "table.h"
#include "testconstants.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QPixmapCache>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>

namespace {

constexpr QSize windowSize(800, 360); // four rows, each whole
constexpr int warmRows = 40;          // of which the pictures are ready in the cache

void settle()
{
    QApplication::processEvents();
    QApplication::processEvents();
}

// All that is seen of it, at once: what the window system asks for may be put off.
void paint(QTableView *table)
{
    table->viewport()->repaint();
    QApplication::processEvents();
}

// The frame on the screen with its list.
class ShownList
{
public:
    explicit ShownList(int rows)
        : m_frame(&m_user, nullptr)
    {
        m_frame.resize(windowSize);
        m_frame.show();
        m_table = m_frame.findChild<QTableView *>();
        settle();
        if (rows > 0)
            showReply(auctionReply(rows));
    }

    void showReply(const QString &reply)
    {
        m_frame.myAuctions(reply);
        settle();
    }
    CKavlorMyAuctionsController &frame()
    {
        return m_frame;
    }
    CKavlorMyAuctionsModel *model() const
    {
        return m_frame.findChild<CKavlorMyAuctionsModel *>();
    }
    QTableView *table() const
    {
        return m_table;
    }

private:
    CKavlorUser m_user{nullptr, nullptr, true, CKavlorUser::defaultFields()};
    CKavlorMyAuctionsController m_frame;
    QTableView *m_table = nullptr;
};

// Ready pixmaps in as many cells as the list has.
class ReadyPictures : public QAbstractTableModel
{
public:
    explicit ReadyPictures(int rows)
        : m_rows(rows)
    {
        for (int row = 0; row < qMin(rows, warmRows); ++row) {
            CAuctionRow auction;
            auction.title = QStringLiteral("Auction %1").arg(row);
            QPixmap thumbnail(CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Thumbnail));
            thumbnail.fill(Qt::darkGreen);
            m_pictures.append({thumbnail, paintAuctionStrip(auction, 1)});
        }
    }
    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : m_rows;
    }
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : 2;
    }
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override
    {
        if (role != Qt::DecorationRole)
            return {};
        return m_pictures.at(index.row() % m_pictures.size()).at(index.column());
    }

private:
    const int m_rows;
    QList<QList<QPixmap>> m_pictures;
};

void setUpPlainTable(QTableView *table)
{
    const QSize strip = CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Info);
    table->horizontalHeader()->hide();
    table->verticalHeader()->hide();
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->verticalHeader()->setDefaultSectionSize(strip.height());
    table->horizontalHeader()->setDefaultSectionSize(120);
    table->resize(windowSize);
}

double showList(const QString &reply)
{
    QPixmapCache::clear();
    ShownList list(0);
    return costOf([&] { list.showReply(reply); });
}

// The same lines with the same numbers, each in the cell that shows it.
double showStandardItems(const QString &reply)
{
    QTableView table;
    setUpPlainTable(&table);
    QStandardItemModel model;
    return costOf([&] {
        const QStringList lines = reply.split(QLatin1Char('\n'));
        for (const QString &line : lines.mid(1)) {
            const QStringList items = line.split(QLatin1Char(','));
            if (items.size() < 11)
                break;
            model.appendRow({new QStandardItem, new QStandardItem(items.at(1))});
        }
        table.setModel(&model);
        table.show();
        settle();
    });
}

void measureShowing(Table *table)
{
    const auto cost = [](double (*show)(const QString &)) {
        return [show](int rows) { return show(auctionReply(rows)); };
    };
    table->compareSizes(
        QStringLiteral("a reply with %1 auctions shown"), 6,
        {table->scaled(1000, 10), table->scaled(10000, 20), table->scaled(100000, 30)},
        {QString(), cost(&showList)}, {QStringLiteral("standard items"), cost(&showStandardItems)});
    table->compare(
        QStringLiteral("a reply with 100,000 auctions shown, against one with 10,000"), 11,
        [=] { return showList(auctionReply(table->scaled(100000, 100))); },
        QStringLiteral("10,000"), [=] { return showList(auctionReply(table->scaled(10000, 10))); });
}

// There and back, so that only rows are seen whose pictures are ready.
double scrollPages(QTableView *table, int pages)
{
    const int rows = table->viewport()->height()
        / CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Info).height();
    const bool byPixels = table->verticalScrollMode() == QAbstractItemView::ScrollPerPixel;
    const int page = rows * (byPixels ? table->rowHeight(0) : 1);
    return costOf([&] {
        for (int i = 0; i < pages; ++i) {
            table->verticalScrollBar()->setValue(i % 4 * page);
            paint(table);
        }
    });
}

double scrollList(int rows, int pages)
{
    QPixmapCache::clear();
    ShownList list(rows);
    QPixmap thumbnail(220, 165);
    thumbnail.fill(Qt::darkGreen);
    for (int id = 1; id <= qMin(rows, warmRows); ++id)
        list.frame().thumbnail(uint(id), thumbnail);
    scrollPages(list.table(), 8);
    return scrollPages(list.table(), pages);
}

double scrollPlainTable(int rows, int pages)
{
    ReadyPictures model(rows);
    QTableView table;
    setUpPlainTable(&table);
    table.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table.setModel(&model);
    table.setColumnWidth(1, 680);
    table.show();
    settle();
    scrollPages(&table, 8);
    return scrollPages(&table, pages);
}

void measureScrolling(Table *table)
{
    const int pages = table->scaled(100, 4);
    table->compareSizes(QStringLiteral("100 pages of scrolling among %1 rows, warm"), 1.3,
                        {table->scaled(100, 20), table->scaled(1000, 30), table->scaled(10000, 40)},
                        {QString(), [=](int rows) { return scrollList(rows, pages); }},
                        {QStringLiteral("table with ready pixmaps"),
                         [=](int rows) { return scrollPlainTable(rows, pages); }});
}

double scrollThrough(int rows)
{
    QPixmapCache::clear();
    ShownList list(rows);
    QScrollBar *position = list.table()->verticalScrollBar();
    const int step = list.table()->verticalScrollMode() == QAbstractItemView::ScrollPerPixel
        ? list.table()->rowHeight(0)
        : 1;
    const int page = list.table()->viewport()->height() / list.table()->rowHeight(0) * step;
    return costOf([&] {
        for (int value = 0; value <= position->maximum(); value += page) {
            position->setValue(value);
            paint(list.table());
        }
    });
}

double paintStrips(int rows)
{
    CKavlorMyAuctionsModel model;
    model.load(auctionReply(rows));
    QList<CAuctionRow> auctions;
    for (int row = 0; row < rows; ++row)
        auctions.append(model.auction(model.auctionId(row)));
    return costOf([&] {
        for (const CAuctionRow &auction : std::as_const(auctions))
            paintAuctionStrip(auction, 1);
    });
}

void measureColdScrolling(Table *table)
{
    table->compareSizes(QStringLiteral("%1 rows from top to bottom, cold"), 1.4,
                        {table->scaled(100, 5), table->scaled(1000, 10), table->scaled(10000, 20)},
                        {QString(), &scrollThrough},
                        {QStringLiteral("painting the strips"), &paintStrips});
}

double takeThumbnails(int rows, int count)
{
    QPixmapCache::clear();
    ShownList list(rows);
    QPixmap thumbnail(220, 165);
    thumbnail.fill(Qt::darkGreen);
    const auto take = [&] {
        list.frame().thumbnail(1, thumbnail);
        paint(list.table());
    };
    take();
    return costOf([&] {
        for (int i = 0; i < count; ++i)
            take();
    });
}

void measureThumbnails(Table *table)
{
    const int count = table->scaled(100, 2);
    table->compareSizes(
        QStringLiteral("100 thumbnails arriving among %1 rows"), 1.1,
        {table->scaled(1000, 20), table->scaled(10000, 30), table->scaled(100000, 40)},
        {QString(), [=](int rows) { return takeThumbnails(rows, count); }},
        {QStringLiteral("among 10 rows"), [=](int) { return takeThumbnails(10, count); }});
}

// Until the first of them has come, in a window in which so many rows are seen.
double thumbnailsAskedFor(int seen)
{
    QPixmapCache::clear();
    ShownList list(0);
    list.frame().resize(windowSize.width(), seen * 90);
    settle();
    const QSignalSpy asked(list.model(), &CKavlorMyAuctionsModel::requestThumb);
    list.showReply(auctionReply(10 * seen));
    QPixmap thumbnail(220, 165);
    thumbnail.fill(Qt::darkGreen);
    list.frame().thumbnail(1, thumbnail);
    settle();
    return double(asked.count());
}

void measureAsking(Table *table)
{
    table->compareSizes(QStringLiteral("thumbnails asked for when %1 rows are seen first"), 2,
                        {4, 8, 16}, {QString(), &thumbnailsAskedFor},
                        {QStringLiteral("rows seen"), [](int seen) { return double(seen); }});
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    testTimeConstants().connectionWait = 0; // nothing is sent
    Table table(app, QStringLiteral("The list of auctions, in milliseconds of processor time"));
    measureShowing(&table);
    measureScrolling(&table);
    measureColdScrolling(&table);
    measureThumbnails(&table);
    measureAsking(&table);
    return table.exitCode();
}
