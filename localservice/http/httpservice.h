// SPDX-License-Identifier: MIT

#pragma once

#include "accounts.h"
#include "auctions.h"
#include "datafolder.h"
#include "operations.h"
#include "ownaddress.h"
#include "result.h"
#include "website.h"
#include "workers.h"

#include <atomic>
#include <memory>

struct MHD_Daemon;

/**
 * The service's HTTP side, on this machine's loopback address alone.
 *
 * Connections are looked after by libmicrohttpd from an event loop, so that idle and slow ones cost
 * no thread and a bounded bit of memory each. What takes time is done by workers: what only reads
 * the records, what changes them or hashes a password, and what makes pictures have their own and
 * do not wait for one another.
 *
 * An operation is always answered with status 200, since members' devices take a refused status for
 * an empty success; so a body that is too long is read to its end and then refused in words.
 */
class HttpService
{
public:
    HttpService(Accounts &accounts, Auctions &auctions, Operations &operations, WebSite &site,
                const DataFolder &folder, qint64 maxMediaBytes);
    ~HttpService();
    HttpService(const HttpService &) = delete;
    HttpService &operator=(const HttpService &) = delete;

    /** Begins to answer at a port, 0 = any free one; the port. */
    Result<int> start(int port);
    /**
     * Takes no more requests and lets those in progress end, for a second at most. False when one
     * did not come to its end; the service must then not be destroyed but the program end.
     */
    bool stop();

private:
    class Exchange;

    Accounts &m_accounts;
    Auctions &m_auctions;
    Operations &m_operations;
    WebSite &m_site;
    const DataFolder &m_folder;
    qint64 m_maxMediaBytes;
    OwnAddress m_address;
    MHD_Daemon *m_daemon = nullptr;
    std::atomic<bool> m_isEnding{false};
    std::atomic<int> m_exchanges{0};
    std::atomic<qint64> m_heldBytes{0}; // of bodies that are kept in memory
    std::unique_ptr<Workers> m_reading;
    std::unique_ptr<Workers> m_changing;
    std::unique_ptr<Workers> m_picturing;
};
