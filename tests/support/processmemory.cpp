// SPDX-License-Identifier: MIT

#include "processmemory.h"

#include <QFile>

// There only under the sanitizer.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is the sanitizer's
extern "C" [[gnu::weak]] size_t __sanitizer_get_current_allocated_bytes();

namespace {

qint64 peakMemoryIn(const QString &status)
{
    QFile file(status);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = file.readAll();
    const qsizetype start = text.indexOf("VmHWM:") + 6;
    return text.mid(start, text.indexOf("kB", start) - start).trimmed().toLongLong();
}

} // namespace

qint64 peakMemory()
{
    return peakMemoryIn(QStringLiteral("/proc/self/status"));
}

qint64 ownMemory()
{
    constexpr qint64 kibibyte = 1024;
    if (__sanitizer_get_current_allocated_bytes)
        return qint64(__sanitizer_get_current_allocated_bytes()) / kibibyte;
    return peakMemory();
}

qint64 peakMemoryOf(qint64 id)
{
    return peakMemoryIn(QStringLiteral("/proc/%1/status").arg(id));
}

bool resetPeakMemory()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write("5") == 1;
}
