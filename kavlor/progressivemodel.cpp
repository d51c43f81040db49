// SPDX-License-Identifier: MIT

#include "progressivemodel.h"

#include <QTimerEvent>

namespace {

// A little less than twice the file's size: three quarters are added, counted in whole quarters.
int enlarged(int length)
{
    return length + (3 * length) / 4;
}

} // namespace

CProgressiveModel::CProgressiveModel(QObject *parent, uint count, int position)
    : QAbstractTableModel(parent)
    , m_count(qMax(count, 1U))
    , m_normalImage(QStringLiteral(":/Progress.png"))
    , m_highlightImage(QStringLiteral(":/Progress  HL.png"))
    , m_position(position)
    , m_startPosition(position)
{
    const QSize size(enlarged(m_highlightImage.width()), enlarged(m_highlightImage.height()));
    m_normalImage = m_normalImage.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    m_highlightImage = m_highlightImage.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

void CProgressiveModel::animate(bool aStart, uint aHowOften, uint aHowLong)
{
    stopTimer();
    m_running = aStart;
    if (!m_running)
        return;

    m_elapsed = 0;
    m_period = aHowOften;
    m_howLong = aHowLong;
    m_startPosition = m_position;
    m_timerId = startTimer(static_cast<int>(m_period));
}

void CProgressiveModel::setPercentage(int value)
{
    m_position = qMin(value, 100);
}

int CProgressiveModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 1;
}

int CProgressiveModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_count);
}

Qt::ItemFlags CProgressiveModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant CProgressiveModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    if (role == Qt::DecorationRole)
        return isLit(index.column()) ? m_highlightImage : m_normalImage;
    return {};
}

void CProgressiveModel::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timerId) {
        QAbstractTableModel::timerEvent(event);
        return;
    }
    if (m_howLong != 0 && m_elapsed >= m_howLong) {
        stopTimer();
        return;
    }

    m_position += static_cast<int>((m_forward ? 100.0 : -100.0) / m_count);
    if (m_position > 100) {
        m_position = 99;
        m_forward = false;
    } else if (m_position < 0) {
        m_position = 0;
        m_forward = true;
    }
    m_elapsed += m_period;
    emit occuredTimerEvent();
}

bool CProgressiveModel::isLit(int column) const
{
    const double cellWidth = 100.0 / m_count;
    return m_position != 0 && column * cellWidth <= m_position
        && m_position < (column + 1) * cellWidth;
}

void CProgressiveModel::stopTimer()
{
    if (m_timerId == 0)
        return;
    killTimer(m_timerId);
    m_timerId = 0;
}
