// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QString>

#include <functional>

class QCoreApplication;

/**
 * The lines of a benchmark: reads the program's options, measures each line against its peer and
 * prints it as a row of docs/performance.md.
 *
 * Own and peer take turns, so that what else the machine does falls on both. With --tiny everything
 * is done once and small, which shows only that it can be measured: no bound is judged then.
 */
class Table
{
public:
    /** Gives the cost of one run, the lower the better; 0 says that there is nothing to measure. */
    using Cost = std::function<double()>;
    using CostOfSize = std::function<double(int size)>;
    /** A thing whose cost is compared. */
    struct Side
    {
        QString name;
        CostOfSize cost;
    };

    /** @p title says what the lines are about, and in which unit costs are. */
    Table(const QCoreApplication &app, const QString &title);

    bool isTiny() const;
    /** Whether a line of this name was asked for. */
    bool isWanted(const QString &what) const;
    /** @p size, or next to nothing with --tiny. */
    int scaled(int size, int tiny) const;

    /** @p what may cost up to @p bound times what its peer does; a bound of 0 is for information.
     */
    void compare(const QString &what, double bound, const Cost &own, const QString &peerName,
                 const Cost &peer);
    /** The same at several sizes, the last row of which tells how the cost grows with the size. */
    void compareSizes(const QString &what, double bound, const QList<int> &sizes, const Side &own,
                      const Side &peer);
    /**
     * @p what, in @p unit, may be up to @p bound: the middle one of several runs. One below 0 could
     * not be measured.
     */
    void limit(const QString &what, double bound, const QString &unit, const Cost &cost);
    /** The same of something that is measured once. */
    void limitOnce(const QString &what, double bound, const QString &unit, const Cost &cost);

    /** For main(): 0 when every line that was wanted has been measured. */
    int exitCode() const;

private:
    struct Outcome
    {
        double own = 0;
        double peer = 0;
        QList<double> ratios; // sorted
    };

    void printLimit(const QString &what, double bound, const QString &unit, QList<double> values);
    Outcome measure(const Cost &own, const Cost &peer) const;
    void printRow(const QString &what, const QString &peerName, const Outcome &outcome,
                  double bound, const QString &growth);
    void print(const QStringList &cells);
    QString verdict(double value, double bound) const;

    const QString m_title;
    int m_runs = 0;
    bool m_isTiny = false;
    QString m_only;
    bool m_hasHead = false;
    bool m_isComplete = true;
};
