// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include <functional>

// What things cost. Processor time is that of all threads, since other programs on the machine
// change how long a thing takes, but hardly how much of that it is.

/** The processor time that this process has had, in milliseconds. */
double processorTime();
/** That of another process; 0 when there is none. */
double processorTimeOf(qint64 process);
/** The processor time that @p work takes, in milliseconds. */
double costOf(const std::function<void()> &work);
/** The middle one of @p values. */
double middle(QList<double> values);

/** What a program that was run to its end has cost and said. */
struct ProgramCost
{
    bool isRight = false; ///< it ended with 0
    double processorTime = 0;
    QByteArray output;
};
ProgramCost costOfProgram(const QStringList &command);

/** The memory that the process @p id has now (PSS), shared parts divided; in KiB. */
qint64 memoryOf(qint64 process);
/** How often each thread of the process @p id has gone to sleep, and so will have been woken. */
QHash<QString, qint64> sleepsOf(qint64 process);
/** The sleeps from @p before to @p after; the end of a thread counts as one. */
qint64 sleepsBetween(const QHash<QString, qint64> &before, const QHash<QString, qint64> &after);
