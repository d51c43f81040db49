// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <chrono>
#include <mutex>

/**
 * Lets whoever guesses a password wait: from the fifth wrong one for a user name from one address
 * on, the answer is held back, longer each time. A right password is never held back, so nobody is
 * locked out. Names that nobody has are treated alike. Safe from any thread.
 */
class LoginBrake
{
public:
    using Clock = std::chrono::steady_clock;

    /** Notes a wrong password; how long its answer is to wait. */
    std::chrono::milliseconds wrong(const QString &username, const QByteArray &address,
                                    Clock::time_point now = Clock::now());
    /** Notes a right one, after which the count begins anew. */
    void right(const QString &username, const QByteArray &address);

private:
    struct Guesses
    {
        int count = 0;
        Clock::time_point last;
    };
    using Key = std::pair<QString, QByteArray>;

    void forgetOld(Clock::time_point now);

    std::mutex m_mutex;
    QHash<Key, Guesses> m_guesses;
};
