// SPDX-License-Identifier: MIT

#include "kavlorcategorystore.h"

#include <QCoreApplication>
#include <QSet>
#include <QStringList>

#include <memory>

namespace {

std::unique_ptr<CKavlorCategoryStore> &theStore()
{
    static std::unique_ptr<CKavlorCategoryStore> store;
    return store;
}

} // namespace

const CKavlorCategoryStore *CKavlorCategoryStore::instance()
{
    return theStore().get();
}

const CKavlorCategoryStore &CKavlorCategoryStore::instanceOrEmpty()
{
    static const CKavlorCategoryStore empty;
    return instance() ? *instance() : empty;
}

bool CKavlorCategoryStore::isEmpty()
{
    return instanceOrEmpty().m_parents.isEmpty();
}

void CKavlorCategoryStore::load(const QString &reply)
{
    if (!theStore())
        theStore().reset(new CKavlorCategoryStore);
    theStore()->fill(reply);
}

QString CKavlorCategoryStore::pathText(int category)
{
    const QString path = instance() ? instance()->path(category) : QString();
    if (path.isEmpty())
        return QCoreApplication::translate("CKavlorCategoryStore", "None");
    return path.chopped(1);
}

bool CKavlorCategoryStore::contains(int category) const
{
    return m_parents.contains(category);
}

QString CKavlorCategoryStore::name(int category) const
{
    return m_names.value(category);
}

int CKavlorCategoryStore::parentOf(int category, int missing) const
{
    return m_parents.value(category, missing);
}

QList<int> CKavlorCategoryStore::children(int parent) const
{
    return m_children.value(parent);
}

void CKavlorCategoryStore::fill(const QString &reply)
{
    m_names.clear();
    m_parents.clear();
    m_children.clear();
    read(reply);
    // Only now, since a line may put a category of an earlier one elsewhere.
    for (auto category = m_parents.cbegin(); category != m_parents.cend(); ++category)
        m_children[category.value()].append(category.key());
}

void CKavlorCategoryStore::read(const QString &reply)
{
    const QStringList lines = reply.split(QLatin1Char('\n'));
    for (const QString &line : lines.mid(1)) {
        if (!take(line))
            return;
    }
}

bool CKavlorCategoryStore::take(const QString &line)
{
    const QStringList fields = line.split(QLatin1Char(','));
    if (fields.size() < 3)
        return false;
    bool isIdentifier = false;
    bool isParent = false;
    const int identifier = fields.at(0).toInt(&isIdentifier);
    const int parent = fields.at(2).toInt(&isParent);
    if (!isIdentifier || !isParent)
        return false;
    m_parents.insert(identifier, parent);
    m_names.insert(identifier, fields.at(1));
    return true;
}

// The names from the top level down, each followed by ">". Should the service send a category that
// is its own ancestor, the path ends before it would repeat.
QString CKavlorCategoryStore::path(int category) const
{
    QString text;
    QSet<int> seen;
    while (category != 0 && !seen.contains(category)) {
        seen.insert(category);
        text.prepend(name(category) + QLatin1Char('>'));
        category = parentOf(category, 0);
    }
    return text;
}
