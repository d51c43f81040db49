// SPDX-License-Identifier: MIT

#include "table.h"

#include "costs.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLocale>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace {

constexpr int usualRuns = 9;

QString figure(double value)
{
    return QString::number(value, value >= 1000 ? 'f' : 'g', value >= 1000 ? 0 : 3);
}

// The power of the size with which the cost grows, as a line through the logarithms of both.
double exponent(const QList<int> &sizes, const QList<double> &costs)
{
    double sumX = 0;
    double sumY = 0;
    double sumXX = 0;
    double sumXY = 0;
    for (qsizetype i = 0; i < sizes.size(); ++i) {
        const double x = std::log(double(sizes.at(i)));
        const double y = std::log(costs.at(i));
        sumX += x;
        sumY += y;
        sumXX += x * x;
        sumXY += x * y;
    }
    const auto count = double(sizes.size());
    return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

} // namespace

Table::Table(const QCoreApplication &app, const QString &title)
    : m_title(title)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption tiny(QStringLiteral("tiny"),
                                  QStringLiteral("Do everything once and small."));
    const QCommandLineOption runs(QStringLiteral("runs"),
                                  QStringLiteral("Measure everything so often."),
                                  QStringLiteral("number"), QString::number(usualRuns));
    const QCommandLineOption only(QStringLiteral("only"),
                                  QStringLiteral("Only lines that begin so."),
                                  QStringLiteral("text"));
    parser.addOptions({tiny, runs, only});
    parser.process(app);
    m_isTiny = parser.isSet(tiny);
    m_runs = m_isTiny ? 1 : std::max(1, parser.value(runs).toInt());
    m_only = parser.value(only);
}

bool Table::isTiny() const
{
    return m_isTiny;
}

int Table::scaled(int size, int tiny) const
{
    return m_isTiny ? tiny : size;
}

void Table::compare(const QString &what, double bound, const Cost &own, const QString &peerName,
                    const Cost &peer)
{
    if (isWanted(what))
        printRow(what, peerName, measure(own, peer), bound, QString());
}

void Table::compareSizes(const QString &what, double bound, const QList<int> &sizes,
                         const Side &own, const Side &peer)
{
    if (!isWanted(what))
        return;
    QList<double> costs;
    for (const int size : sizes) {
        const Outcome outcome =
            measure([&] { return own.cost(size); }, [&] { return peer.cost(size); });
        costs.append(outcome.own);
        const bool isLast = costs.size() == sizes.size();
        printRow(what.arg(QLocale::c().toString(size)), peer.name, outcome, bound,
                 isLast && sizes.size() > 1 ? figure(exponent(sizes, costs)) : QString());
    }
}

void Table::limit(const QString &what, double bound, const QString &unit, const Cost &cost)
{
    if (!isWanted(what))
        return;
    QList<double> values;
    for (int run = 0; run < m_runs; ++run)
        values.append(cost());
    printLimit(what, bound, unit, values);
}

void Table::limitOnce(const QString &what, double bound, const QString &unit, const Cost &cost)
{
    if (isWanted(what))
        printLimit(what, bound, unit, {cost()});
}

void Table::printLimit(const QString &what, double bound, const QString &unit, QList<double> values)
{
    std::sort(values.begin(), values.end());
    const double value = middle(values);
    m_isComplete = m_isComplete && values.constFirst() >= 0;
    const QString range = values.size() > 1
        ? figure(values.constFirst()) + QStringLiteral(" to ") + figure(values.constLast())
        : QString();
    print({what, figure(value) + QLatin1Char(' ') + unit, QString(), QString(), range,
           figure(bound) + QLatin1Char(' ') + unit, QString(), verdict(value, bound)});
}

int Table::exitCode() const
{
    return m_isComplete ? 0 : 1;
}

bool Table::isWanted(const QString &what) const
{
    return what.startsWith(m_only);
}

Table::Outcome Table::measure(const Cost &own, const Cost &peer) const
{
    QList<double> owns;
    QList<double> peers;
    Outcome outcome;
    for (int run = 0; run < m_runs; ++run) {
        // The one that begins has the colder caches: they take turns in that, too.
        const bool ownFirst = run % 2 == 0;
        const double first = ownFirst ? own() : peer();
        const double second = ownFirst ? peer() : own();
        owns.append(ownFirst ? first : second);
        peers.append(ownFirst ? second : first);
        outcome.ratios.append(owns.constLast() / peers.constLast());
    }
    std::sort(outcome.ratios.begin(), outcome.ratios.end());
    outcome.own = middle(owns);
    outcome.peer = middle(peers);
    return outcome;
}

void Table::printRow(const QString &what, const QString &peerName, const Outcome &outcome,
                     double bound, const QString &growth)
{
    if (!(outcome.own > 0) || !(outcome.peer > 0))
        m_isComplete = false;
    const double ratio = middle(outcome.ratios);
    print({what, figure(outcome.own), peerName + QStringLiteral(": ") + figure(outcome.peer),
           figure(ratio),
           figure(outcome.ratios.constFirst()) + QStringLiteral(" to ")
               + figure(outcome.ratios.constLast()),
           bound > 0 ? figure(bound) : QString(), growth,
           bound > 0 ? verdict(ratio, bound) : QString()});
}

void Table::print(const QStringList &cells)
{
    QTextStream out(stdout);
    if (!m_hasHead)
        out << QStringLiteral("### ") << m_title
            << "\n\n| what | own | peer | ratio | least to most | bound | exponent | |\n"
               "|---|---|---|---|---|---|---|---|\n";
    m_hasHead = true;
    out << QStringLiteral("| ") << cells.join(QStringLiteral(" | ")) << QStringLiteral(" |\n");
}

QString Table::verdict(double value, double bound) const
{
    if (m_isTiny)
        return QStringLiteral("not judged");
    return value <= bound ? QStringLiteral("kept") : QStringLiteral("missed");
}
