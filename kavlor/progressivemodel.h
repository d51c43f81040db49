// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractTableModel>
#include <QImage>

/**
 * One row of cells, one of them lit, the light sweeping to and fro: a progress strip.
 *
 * The owner gives the model to a QTableView and connects occuredTimerEvent() to the view's
 * repaint(), since a step changes the pictures of cells without a dataChanged().
 */
class CProgressiveModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /** @p count cells (0 counts as 1), the light at @p position percent; nothing runs yet. */
    CProgressiveModel(QObject *parent, uint count, int position);

    /**
     * Starts or stops the sweep.
     *
     * @param aHowOften milliseconds between two steps
     * @param aHowLong milliseconds after which the sweep ends by itself; 0 = never
     */
    void animate(bool aStart, uint aHowOften, uint aHowLong);
    /** Puts the light at @p value percent; more than 100 counts as 100. 0 and 100 light no cell. */
    void setPercentage(int value);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

signals:
    /** The light has moved by one step. */
    void occuredTimerEvent();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    bool isLit(int column) const;
    void stopTimer();

    const uint m_count;
    QImage m_normalImage;
    QImage m_highlightImage;
    int m_position;
    int m_startPosition;
    bool m_running = false;
    uint m_period = 0;  // ms
    int m_timerId = 0;  // 0 = no timer
    uint m_howLong = 0; // ms
    uint m_elapsed = 0; // ms
    bool m_forward = true;
};
