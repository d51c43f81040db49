// SPDX-License-Identifier: MIT

#include "paintedtableaccess.h"

#include "paintedcelldelegate.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPersistentModelIndex>
#include <QTableView>

namespace {

const PaintedCellDelegate *paintedCells(const QTableView *view)
{
    return qobject_cast<const PaintedCellDelegate *>(view->itemDelegate());
}

// One cell; owned by the table's interface below.
class CellAccess : public QAccessibleInterface
{
public:
    CellAccess(QTableView *view, const QModelIndex &index)
        : m_view(view)
        , m_index(index)
    {
    }

    QModelIndex index() const
    {
        return m_index;
    }

    bool isValid() const override
    {
        return m_index.isValid();
    }

    QObject *object() const override
    {
        return nullptr;
    }

    QWindow *window() const override
    {
        return m_view->window()->windowHandle();
    }

    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_view);
    }

    QAccessibleInterface *child(int) const override
    {
        return nullptr;
    }

    int childCount() const override
    {
        return 0;
    }

    int indexOfChild(const QAccessibleInterface *) const override
    {
        return -1;
    }

    QAccessibleInterface *childAt(int, int) const override
    {
        return nullptr;
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? paintedCells(m_view)->cellText(m_index) : QString();
    }

    void setText(QAccessible::Text, const QString &) override { }

    QRect rect() const override
    {
        const QRect place = m_view->visualRect(m_index);
        return {m_view->viewport()->mapToGlobal(place.topLeft()), place.size()};
    }

    QAccessible::Role role() const override
    {
        return QAccessible::Cell;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.focusable = true;
        state.selectable = true;
        state.focused = m_view->hasFocus() && m_view->currentIndex() == m_index;
        state.selected = m_view->selectionModel()->isSelected(m_index);
        state.offscreen = !m_view->viewport()->rect().intersects(m_view->visualRect(m_index));
        return state;
    }

private:
    QTableView *m_view;
    const QPersistentModelIndex m_index;
};

// The table. The toolkit numbers the children of any table as if a header stood before each row
// and above each column; the headers here are hidden, and those numbers lead to nothing.
class TableAccess : public QAccessibleWidget
{
public:
    explicit TableAccess(QTableView *view)
        : QAccessibleWidget(view, QAccessible::Table)
        , m_view(view)
    {
    }

    ~TableAccess() override
    {
        for (const QAccessible::Id cell : std::as_const(m_cells))
            QAccessible::deleteAccessibleInterface(cell);
    }
    Q_DISABLE_COPY_MOVE(TableAccess)

    int childCount() const override
    {
        return m_view->model() ? (m_view->model()->rowCount() + 1) * columns() : 0;
    }

    QAccessibleInterface *child(int number) const override
    {
        if (number < 0 || number >= childCount())
            return nullptr;
        return cell(m_view->model()->index(number / columns() - 1, number % columns() - 1));
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *found = dynamic_cast<const CellAccess *>(child);
        const QModelIndex index = found ? found->index() : QModelIndex();
        return index.isValid() ? (index.row() + 1) * columns() + index.column() + 1 : -1;
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        return cell(m_view->indexAt(m_view->viewport()->mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface *focusChild() const override
    {
        return cell(m_view->currentIndex());
    }

private:
    int columns() const
    {
        return m_view->model()->columnCount() + 1;
    }

    QAccessibleInterface *cell(const QModelIndex &index) const
    {
        if (!index.isValid())
            return nullptr;
        const int number = (index.row() + 1) * columns() + index.column() + 1;
        const QAccessible::Id known = m_cells.value(number, 0);
        QAccessibleInterface *access = known ? QAccessible::accessibleInterface(known) : nullptr;
        if (access && access->isValid())
            return access;
        if (access)
            QAccessible::deleteAccessibleInterface(known); // its row is gone
        access = new CellAccess(m_view, index);
        m_cells.insert(number, QAccessible::registerAccessibleInterface(access));
        return access;
    }

    QTableView *m_view;
    mutable QHash<int, QAccessible::Id> m_cells; // by number
};

QAccessibleInterface *makeAccess(const QString &className, QObject *object)
{
    if (className != QLatin1String("QTableView"))
        return nullptr;
    auto *view = qobject_cast<QTableView *>(object);
    return view && paintedCells(view) ? new TableAccess(view) : nullptr;
}

} // namespace

void showPaintedCells(QTableView *table, PaintedCellDelegate *delegate)
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccess);
        return true;
    }();
    Q_UNUSED(installed)
    table->setItemDelegate(delegate);
    // The toolkit may have made the accessible interface already, when the table had no delegate
    // yet by which makeAccess() knows it. It makes another one when it is next asked.
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(table);
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(access));
}
