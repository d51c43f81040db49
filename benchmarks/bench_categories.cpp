// SPDX-License-Identifier: MIT

// What a level of the category tree costs that holds very many, in milliseconds of processor time,
// against one of a hundred.

#include "costs.h"
#include "kavlorauctioncategorize.h"
#include "kavlorcategorymodel.h"
#include "kavlorcategorystore.h"
#include "table.h"

#include <QApplication>
#include <QPixmapCache>
#include <QTableView>

namespace {

constexpr int few = 100;
constexpr int topLevel = 8;

// The first of the top level has @p count children.
QString reply(int count)
{
    QString text = QStringLiteral("ID,Name,Parent\n");
    for (int id = 1; id <= topLevel; ++id)
        text += QStringLiteral("%1,Category %1,0\n").arg(id);
    for (int id = topLevel + 1; id <= topLevel + count; ++id)
        text += QStringLiteral("%1,Category %1,1\n").arg(id);
    return text;
}

void settle()
{
    QApplication::processEvents();
    QApplication::processEvents();
}

class ShownLevel
{
public:
    explicit ShownLevel(int count)
    {
        CKavlorCategoryStore::load(reply(count));
        QPixmapCache::clear();
        m_page.resize(450, 380);
        m_page.show();
        settle();
    }

    double open()
    {
        return click(CKavlorCategoryModel::CategoryColumn);
    }
    double leave()
    {
        return click(CKavlorCategoryModel::BackColumn);
    }

private:
    double click(int column)
    {
        QTableView *table = m_page.findChild<QTableView *>();
        return costOf([&] {
            m_page.categoryTableClicked(table->model()->index(0, column));
            settle();
        });
    }

    CKavlorAuctionCategorize m_page{nullptr, 0, false};
};

// The top level, where a line tells what is in each category.
double showTop(int count)
{
    CKavlorCategoryStore::load(reply(count));
    QPixmapCache::clear();
    return costOf([] {
        CKavlorAuctionCategorize page(nullptr, 0, false);
        page.resize(450, 380);
        page.show();
        settle();
    });
}

double openLevel(int count)
{
    return ShownLevel(count).open();
}

double leaveLevel(int count)
{
    ShownLevel level(count);
    level.open();
    return level.leave();
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication app(argc, argv);
    Table table(app, QStringLiteral("Categories, in milliseconds of processor time"));
    const auto compare = [&table](const char *what, double bound, double (*cost)(int)) {
        table.compareSizes(
            QString::fromLatin1(what), bound,
            {table.scaled(1000, 20), table.scaled(3000, 30), table.scaled(10000, 40)},
            {QString(), cost}, {QStringLiteral("of 100"), [cost](int) { return cost(few); }});
    };
    openLevel(few);
    compare("a level of %1 categories opened", 3, &openLevel);
    // For information: in the level above, the names of all stand in one line, of which the middle
    // is seen.
    compare("a level of %1 categories left", 0, &leaveLevel);
    compare("the level above one of %1 categories shown", 0, &showTop);
    return table.exitCode();
}
