#include "processmemory.h"

#include <QFile>

qint64 peakMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    const qsizetype start = status.indexOf("VmHWM:") + 6;
    return status.mid(start, status.indexOf("kB", start) - start).trimmed().toLongLong();
}

bool resetPeakMemory()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write("5") == 1;
}
