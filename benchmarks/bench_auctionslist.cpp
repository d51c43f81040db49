// SPDX-License-Identifier: MIT

// What the auctions list costs with few and with very many auctions. The shorter list is the peer
// of the longer one: both show the same number of rows, so that each operation should cost the
// same. Loading alone grows with the list and is given for one row.

#include "auctionlist.h"
#include "kavlormyauctionscontroller.h"
#include "kavlormyauctionsmodel.h"
#include "kavloruser.h"
#include "testconstants.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QPixmapCache>
#include <QScrollBar>
#include <QTableView>
#include <QTextStream>

#include <algorithm>
#include <functional>

namespace {

constexpr int fewRows = 10;
constexpr int manyRows = 10000;

struct Operation
{
    QString name;
    std::function<double(int rows, int repeats)> measure; // in microseconds
};

// The median of several runs of what is to be measured, each prepared anew.
double median(int repeats, const std::function<void()> &prepare, const std::function<void()> &run)
{
    QList<double> times;
    for (int i = 0; i < repeats; ++i) {
        prepare();
        QElapsedTimer timer;
        timer.start();
        run();
        times.append(static_cast<double>(timer.nsecsElapsed()) / 1000);
    }
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

// The frame on the screen with its list.
class ShownList
{
public:
    explicit ShownList(int rows)
        : m_frame(&m_user, nullptr)
    {
        QPixmapCache::clear();
        m_frame.resize(800, 480);
        m_frame.show();
        m_frame.myAuctions(auctionReply(rows));
        m_table = m_frame.findChild<QTableView *>();
        QApplication::processEvents();
    }

    CKavlorMyAuctionsController *frame()
    {
        return &m_frame;
    }
    QScrollBar *position() const
    {
        return m_table->verticalScrollBar();
    }
    void paint() const
    {
        m_table->viewport()->grab();
    }

private:
    CKavlorUser m_user{nullptr, nullptr, true, CKavlorUser::defaultFields()};
    CKavlorMyAuctionsController m_frame;
    QTableView *m_table = nullptr;
};

double loadOneRow(int rows, int repeats)
{
    const QString reply = auctionReply(rows);
    CKavlorMyAuctionsModel model;
    return median(
               repeats, [] { QPixmapCache::clear(); }, [&] { model.load(reply); })
        / rows;
}

double paintAgain(int rows, int repeats)
{
    const ShownList list(rows);
    return median(
        repeats, [] { QApplication::processEvents(); }, [&list] { list.paint(); });
}

double paintAnew(int rows, int repeats)
{
    const ShownList list(rows);
    const auto prepare = [] {
        QApplication::processEvents();
        QPixmapCache::clear();
    };
    return median(repeats, prepare, [&list] { list.paint(); });
}

double takeThumbnail(int rows, int repeats)
{
    ShownList list(rows);
    QPixmap thumbnail(220, 165);
    thumbnail.fill(Qt::darkGreen);
    return median(
        repeats, [] { QApplication::processEvents(); },
        [&list, &thumbnail] {
            list.frame()->thumbnail(1, thumbnail);
            list.paint();
        });
}

double scrollAPage(int rows, int repeats)
{
    const ShownList list(rows);
    bool down = false;
    const auto prepare = [&down] {
        QApplication::processEvents();
        down = !down;
    };
    return median(repeats, prepare, [&list, &down] {
        list.position()->setValue(down ? 400 : 0);
        list.paint();
    });
}

QList<Operation> operations()
{
    return {
        {QStringLiteral("load"), loadOneRow},      {QStringLiteral("paint"), paintAgain},
        {QStringLiteral("paint-anew"), paintAnew}, {QStringLiteral("thumbnail"), takeThumbnail},
        {QStringLiteral("scroll"), scrollAPage},
    };
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    testTimeConstants().connectionWait = 0; // nothing is sent

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption only(QStringLiteral("only"), QStringLiteral("Measure one operation."),
                                  QStringLiteral("operation"));
    const QCommandLineOption rowsOption(QStringLiteral("rows"),
                                        QStringLiteral("Measure one length of the list, to count "
                                                       "instructions: what a further repeat adds."),
                                        QStringLiteral("number"));
    const QCommandLineOption repeatOption(QStringLiteral("repeat"),
                                          QStringLiteral("Take the median of so many runs."),
                                          QStringLiteral("number"), QStringLiteral("51"));
    parser.addOptions({only, rowsOption, repeatOption});
    parser.process(app);
    const int repeats = std::max(1, parser.value(repeatOption).toInt());

    QTextStream out(stdout);
    out << QStringLiteral("auctions list, microseconds; load is for one row\n");
    for (const Operation &operation : operations()) {
        if (parser.isSet(only) && parser.value(only) != operation.name)
            continue;
        out << qSetFieldWidth(12) << Qt::left << operation.name << qSetFieldWidth(0);
        if (parser.isSet(rowsOption)) {
            out << operation.measure(parser.value(rowsOption).toInt(), repeats) << Qt::endl;
            continue;
        }
        const double few = operation.measure(fewRows, repeats);
        const double many = operation.measure(manyRows, repeats);
        out << QStringLiteral("%1 rows %2   %3 rows %4   ratio %5")
                   .arg(fewRows)
                   .arg(few, 9, 'f', 2)
                   .arg(manyRows)
                   .arg(many, 9, 'f', 2)
                   .arg(many / few, 0, 'f', 2)
            << Qt::endl;
    }
    return 0;
}
