// SPDX-License-Identifier: MIT

#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>

/**
 * The tree of categories under which auctions are filed, as the service sent it.
 *
 * There is one per process. The first load() makes it and it lives until exit; until then
 * instance() is null. Identifier 0 stands for "no category" and for the parent of the top level.
 */
class CKavlorCategoryStore
{
public:
    /** The store, or null while no category list has been loaded. */
    static const CKavlorCategoryStore *instance();
    /** The store, or one without categories while no category list has been loaded. */
    static const CKavlorCategoryStore &instanceOrEmpty();
    /** True when no category is known: nothing loaded yet, or a list without a usable line. */
    static bool isEmpty();
    /**
     * Replaces the tree by the one in @p reply: a header line, then one "identifier,name,parent"
     * a line. The first line of another form ends the list.
     */
    static void load(const QString &reply);
    /** The names from the top level down to @p category with ">" between them, or "None". */
    static QString pathText(int category);

    bool contains(int category) const;
    /** Empty for an unknown category. */
    QString name(int category) const;
    /** The parent of @p category, or @p missing for an unknown one. */
    int parentOf(int category, int missing) const;
    /** In ascending order. */
    QList<int> children(int parent) const;

private:
    CKavlorCategoryStore() = default;

    void fill(const QString &reply);
    void read(const QString &reply);
    bool take(const QString &line);
    QString path(int category) const;

    QMap<int, QString> m_names;
    QMap<int, int> m_parents;          // 0 = top level
    QHash<int, QList<int>> m_children; // what m_parents says, the other way round
};
