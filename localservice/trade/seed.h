// SPDX-License-Identifier: MIT

#pragma once

#include "accounts.h"
#include "auctions.h"
#include "database.h"
#include "datafolder.h"

#include <QJsonObject>
#include <QString>

/** Puts the member "demo" (password "demo") with auctions of every state into a service, as
 * seed.json lists them. */
class Seed
{
public:
    Seed(Database &database, Accounts &accounts, Auctions &auctions, const DataFolder &folder);

    /** Does nothing when that member exists. */
    Result<void> plant();

private:
    Result<bool> isPlanted();
    Result<qint64> addMember(const QJsonObject &account);
    Result<void> addAuction(qint64 member, const QJsonObject &plot, const QJsonObject &plan);
    Result<QString> addMedia(const QJsonObject &plot);
    /** Turns an auction's clock: its remaining time in hours, negative = it has ended. */
    Result<void> setClock(qint64 auction, const QJsonObject &plot);

    Database &m_database;
    Accounts &m_accounts;
    Auctions &m_auctions;
    const DataFolder &m_folder;
};
