// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "kavlormyauctionsmodel.h"

#include <QPixmapCache>

// A member's list of auctions: every row is read, the first ones are painted.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    application();
    QPixmapCache::clear(); // what was painted for other inputs
    CKavlorMyAuctionsModel model;
    const QString reply = textOf(data, size);
    model.load(reply);
    mustHold(model.rowCount() <= reply.count(QLatin1Char('\n')) + 1);
    for (int row = 0; row < model.rowCount(); ++row) {
        const uint id = model.auctionId(row);
        model.cellText(model.index(row, CKavlorMyAuctionsModel::Info));
        model.setPrices(id, row, row);
        mustHold(model.auction(id).reservePrice == row);
    }
    constexpr int paintedRows = 2;
    for (int row = 0; row < qMin(paintedRows, model.rowCount()); ++row)
        model.data(model.index(row, CKavlorMyAuctionsModel::Info), Qt::DecorationRole);
    return 0;
}
