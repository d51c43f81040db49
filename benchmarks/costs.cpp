// SPDX-License-Identifier: MIT

#include "costs.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <sys/resource.h>

#include <algorithm>
#include <ctime>

namespace {

double milliseconds(const timespec &time)
{
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double timeOfEnded()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto part = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return part(usage.ru_utime) + part(usage.ru_stime);
}

// The number behind @p name in a file of the kernel's.
qint64 numberIn(const QString &path, const QByteArray &name)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name + ':'))
            return line.mid(name.size() + 1).simplified().split(' ').constFirst().toLongLong();
    }
    return 0;
}

} // namespace

double processorTime()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return milliseconds(time);
}

double processorTimeOf(qint64 process)
{
    clockid_t clock = 0;
    timespec time = {};
    if (clock_getcpuclockid(static_cast<pid_t>(process), &clock) == 0)
        clock_gettime(clock, &time);
    return milliseconds(time);
}

double costOf(const std::function<void()> &work)
{
    const double before = processorTime();
    work();
    return processorTime() - before;
}

double middle(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

ProgramCost costOfProgram(const QStringList &command)
{
    ProgramCost cost;
    const double before = timeOfEnded();
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(command.constFirst(), command.mid(1));
    cost.isRight = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
    cost.processorTime = timeOfEnded() - before;
    cost.output = process.readAllStandardOutput();
    return cost;
}

qint64 memoryOf(qint64 process)
{
    return numberIn(QStringLiteral("/proc/%1/smaps_rollup").arg(process), "Pss");
}

QHash<QString, qint64> sleepsOf(qint64 process)
{
    const QString tasks = QStringLiteral("/proc/%1/task").arg(process);
    const QStringList threads = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QHash<QString, qint64> sleeps;
    for (const QString &thread : threads) {
        sleeps.insert(thread,
                      numberIn(tasks + QLatin1Char('/') + thread + QStringLiteral("/status"),
                               "voluntary_ctxt_switches"));
    }
    return sleeps;
}

qint64 sleepsBetween(const QHash<QString, qint64> &before, const QHash<QString, qint64> &after)
{
    qint64 sleeps = 0;
    for (auto thread = after.cbegin(); thread != after.cend(); ++thread)
        sleeps += thread.value() - before.value(thread.key());
    for (auto thread = before.cbegin(); thread != before.cend(); ++thread)
        sleeps += after.contains(thread.key()) ? 0 : 1;
    return sleeps;
}
