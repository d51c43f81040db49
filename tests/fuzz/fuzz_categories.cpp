// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "kavlorcategorymodel.h"
#include "kavlorcategorystore.h"

#include <QPixmapCache>

// A list of categories, whatever tree, ring or heap of loose ends it makes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    application();
    QPixmapCache::clear(); // what was painted for other inputs
    CKavlorCategoryStore::load(textOf(data, size));
    CKavlorCategoryModel model;
    int level = 0;
    constexpr int levels = 8;
    for (int depth = 0; depth < levels; ++depth) {
        model.showLevel(level);
        const int rows = model.rowCount();
        for (int row = 0; row < qMin(rows, levels); ++row) {
            for (int column = 0; column < CKavlorCategoryModel::columns; ++column)
                model.cellText(model.index(row, column));
            CKavlorCategoryStore::pathText(model.identifierAt(row));
        }
        if (rows == 0)
            break;
        model.setChosen(model.identifierAt(0));
        model.data(model.index(0, CKavlorCategoryModel::CategoryColumn), Qt::DecorationRole);
        level = model.identifierAt(rows - 1);
    }
    return 0;
}
