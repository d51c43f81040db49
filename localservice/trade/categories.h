// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// The tree that auctions are filed under. It never changes while the service runs; the seven
// identifiers of the top level are the ones that members' devices have icons for.

bool isCategory(qint64 id);
/** The names from the top level down, such as "Sports > Football"; empty for an unknown one. */
QString categoryPath(qint64 id);
/** A category and those under it, at any depth. */
QList<qint64> categoryWithAllBelow(qint64 id);
/** The categories of the top level. */
QList<qint64> topCategories();
/** A header line, then "id,name,parent" a line; parent 0 = top level. */
QByteArray categoryList();
