// SPDX-License-Identifier: MIT

#include "kavlornotificationoptions.h"

#include <QStringList>

namespace {

constexpr int flagCount = 4;

quint8 toBits(const CKavlorNotificationOptions::Flags &flags)
{
    return static_cast<quint8>((flags.onBid ? 1 : 0) | (flags.onAuctionEnd ? 2 : 0)
                               | (flags.onView ? 4 : 0) | (flags.onBuyerQuestion ? 8 : 0));
}

} // namespace

CKavlorNotificationOptions::CKavlorNotificationOptions(QObject *parent)
    : QObject(parent)
{
}

CKavlorNotificationOptions::CKavlorNotificationOptions(QObject *parent, const Flags &flags,
                                                       bool initialized)
    : QObject(parent)
    , m_initialized(initialized)
    , m_bits(toBits(flags))
{
}

CKavlorNotificationOptions::CKavlorNotificationOptions(const CKavlorNotificationOptions &other)
    : QObject()
    , m_initialized(other.m_initialized)
    , m_bits(other.m_bits)
{
}

CKavlorNotificationOptions &CKavlorNotificationOptions::operator=(
    const CKavlorNotificationOptions &other)
{
    m_initialized = other.m_initialized;
    m_bits = other.m_bits;
    return *this;
}

CKavlorNotificationOptions::Flags CKavlorNotificationOptions::flags() const
{
    Flags flags;
    flags.onBid = (m_bits & 1) != 0;
    flags.onAuctionEnd = (m_bits & 2) != 0;
    flags.onView = (m_bits & 4) != 0;
    flags.onBuyerQuestion = (m_bits & 8) != 0;
    return flags;
}

void CKavlorNotificationOptions::setFlags(const Flags &flags)
{
    m_bits = toBits(flags);
    m_initialized = true;
}

bool CKavlorNotificationOptions::isInitialized() const
{
    return m_initialized;
}

QString CKavlorNotificationOptions::toText() const
{
    QStringList items;
    for (int flag = 0; flag < flagCount; ++flag)
        items.append(QString::number((m_bits >> flag) & 1));
    return items.join(QLatin1Char(','));
}

void CKavlorNotificationOptions::parse(const QString &reply)
{
    const QStringList lines = reply.split(QLatin1Char('\n'));
    if (lines.size() < 2)
        return;

    m_initialized = false;
    const QStringList items = lines.at(1).split(QLatin1Char(','));
    const int present = static_cast<int>(qMin<qsizetype>(items.size(), flagCount));
    for (int flag = 0; flag < present; ++flag) {
        const int on = items.at(flag).toInt() & 1;
        m_bits = static_cast<quint8>((m_bits & ~(1 << flag)) | (on << flag));
    }
    if (present < flagCount)
        return;

    m_initialized = true;
    emit gotInitialized();
}
