// SPDX-License-Identifier: MIT

#pragma once

#include "accounts.h"
#include "auctions.h"
#include "datafolder.h"
#include "multipartreader.h"
#include "operations.h"

#include <QByteArray>

#include <memory>

/**
 * One upload that creates an auction. Lives as long as its request.
 *
 * The media goes to the disk while it arrives. Only when the whole body has been read and found
 * good is the media put in its place, synced, and then the auction recorded; an upload that ends
 * otherwise leaves nothing.
 */
class AuctionUpload
{
public:
    AuctionUpload(Accounts &accounts, Auctions &auctions, const DataFolder &folder,
                  const QByteArray &contentType, const QByteArray &address, qint64 maxMediaBytes);

    void feed(const QByteArray &bytes);
    /** How much of it is in memory; the media never is. */
    qint64 heldBytes() const;
    /** What to answer now that the body is over. */
    Operations::Reply finish();

private:
    Result<qint64> store();
    Result<void> check() const;
    Auctions::NewAuction auction() const;

    Accounts &m_accounts;
    Auctions &m_auctions;
    const DataFolder &m_folder;
    QByteArray m_address; // who sends it
    std::unique_ptr<QTemporaryFile> m_media;
    MultipartReader m_reader;
};
