// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QSize>

class QPixmap;

/**
 * One level of the category store as a table whose cells are painted whole.
 *
 * Column 0 shows the way back up, column 1 the category with its icon and the names of its
 * children, column 2 the way down. A cell is painted once and then kept in QPixmapCache, so that
 * marking another category paints only two rows anew. Every cell has a constant size, see
 * cellSize(). The store is read when a level is shown and when a cell is painted.
 */
class CKavlorCategoryModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { BackColumn, CategoryColumn, ForwardColumn };
    static constexpr int columns = ForwardColumn + 1;

    explicit CKavlorCategoryModel(QObject *parent = nullptr);

    static QSize cellSize(int column);

    /**
     * How many pixels of a picture take the place of one of cellSize(); 1 unless cells are shown
     * enlarged or on a finer screen.
     */
    void setPixelRatio(qreal pixelRatio);

    /** Shows the children of @p parent; 0 = the top level. */
    void showLevel(int parent);
    /** Whose children are shown; 0 = the top level. */
    int levelParent() const;
    /** Marks @p category; 0 = none. */
    void setChosen(int category);
    /** The category in @p row, or -1 when there is no such row. */
    int identifierAt(int row) const;

    /** What the cell shows, in words; empty for an arrow that is not there. */
    QString cellText(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

signals:
    /** Another level is shown and it has another number of rows. */
    void rowCountChanged(int oldCount, int newCount);

private:
    void markRowOf(int category);
    QPixmap cell(int identifier, int column) const;
    QPixmap paintCell(int identifier, int column) const;

    QList<int> m_shown; // ascending identifiers
    int m_levelParent = 0;
    bool m_hasParent = false;
    int m_chosen = 0;
    qreal m_pixelRatio = 1;
};
