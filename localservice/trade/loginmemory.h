// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <chrono>
#include <mutex>

/**
 * The passwords found right in the last minutes, so that not every request of a member costs the
 * hash of one. Safe from any thread.
 *
 * Neither passwords nor their hashes are kept, only fingerprints under a key of this run. A
 * fingerprint belongs to the hash that a password was checked against: once the member has another
 * password, and thereby another hash, the old one is not remembered any more.
 */
class LoginMemory
{
public:
    explicit LoginMemory(std::chrono::milliseconds lifetime);

    bool isKnown(const QByteArray &hash, const QString &password);
    void remember(const QByteArray &hash, const QString &password);

private:
    using Clock = std::chrono::steady_clock;

    void forgetOld();

    std::chrono::milliseconds m_lifetime;
    std::mutex m_mutex;
    QHash<QByteArray, Clock::time_point> m_expiry; // by fingerprint
};
