// SPDX-License-Identifier: MIT

#pragma once

#include "localserviceprocess.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

/**
 * Members and visitors who work a local service all at once, and remember what it promised them.
 *
 * Each has a connection for each request and goes on until the service is gone. Then, and once the
 * service is there again, faults() tells what it broke its word in.
 */
class ServiceLoad
{
public:
    explicit ServiceLoad(LocalServiceProcess &service);
    ~ServiceLoad();
    Q_DISABLE_COPY_MOVE(ServiceLoad)

    /** The members and auctions that there must be; false when the service refused one. */
    bool prepare();
    void start();
    /** Waits until everybody has seen that the service is gone. */
    void join();
    /** How many changes the service has said to have made, over all starts. */
    qint64 acknowledged() const;
    /** How many of them were new auctions. */
    qint64 auctions() const;
    /** What is missing or half done in the records, or was refused; empty = all is well. */
    QStringList faults();

private:
    /** What one member sets again and again: each time to the next number. */
    struct Setting
    {
        qint64 tried = 0;
        qint64 promised = 0;
    };
    struct Upload
    {
        QByteArray digest;
        qint64 id = 0; ///< 0 = not promised
    };

    bool isPromised(const LocalServiceProcess::Reply &reply, const QByteArray &what);
    qint64 createAuction(const QByteArray &title);
    bool createMember(const QByteArray &name);
    void upload();
    void openAccounts();
    static void repeat(Setting &setting, const std::function<bool(qint64)> &set,
                       int most = std::numeric_limits<int>::max());
    bool setPrices(qint64 number);
    bool placeBid(qint64 number);
    bool changeAccount(qint64 number);
    bool chooseAlerts(qint64 number);

    void check(Setting &setting, const QString &statement,
               const std::function<QByteArray(qint64)> &expected);
    void checkRecords();
    void checkUploads();
    bool isMediaWhole(const QString &name, const Upload &upload, bool isNew) const;
    void checkAccounts();
    void fault(const QString &text);

    LocalServiceProcess &m_service;
    std::vector<std::thread> m_people;
    std::mutex m_guard; // of what follows, while there are people
    QHash<QByteArray, Upload> m_uploads;
    QHash<QByteArray, qint64> m_accounts; // 0 = not promised
    QStringList m_faults;
    QSet<QByteArray> m_seen; // titles whose media has been looked at
    std::atomic<qint64> m_acknowledged = 0;
    std::atomic<qint64> m_auctions = 0;
    std::atomic<qint64> m_next = 1; // so that no two names are the same
    qint64 m_priced = 0;            // auctions
    qint64 m_bidOn = 0;
    Setting m_prices;
    Setting m_bids;
    Setting m_address;
    Setting m_alerts;
};
