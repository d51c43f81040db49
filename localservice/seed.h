#pragma once

#include "accounts.h"
#include "auctions.h"
#include "database.h"
#include "datafolder.h"

#include <QString>

/** Puts the member "demo" (password "demo") with auctions of every state into a service. */
class Seed
{
public:
    Seed(Database &database, Accounts &accounts, Auctions &auctions, const DataFolder &folder);

    /** Does nothing when that member exists. */
    Result<void> plant();

private:
    struct Plot;

    Result<bool> isPlanted();
    Result<qint64> addMember();
    Result<void> addAuction(qint64 member, const Plot &plot);
    Result<QString> addMedia(const Plot &plot);
    /** Turns an auction's clock: its remaining time in minutes, negative = it has ended. */
    Result<void> setClock(qint64 auction, const Plot &plot);

    Database &m_database;
    Accounts &m_accounts;
    Auctions &m_auctions;
    const DataFolder &m_folder;
};
