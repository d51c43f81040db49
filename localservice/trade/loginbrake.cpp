// SPDX-License-Identifier: MIT

#include "loginbrake.h"

#include <algorithm>

namespace {

constexpr int answeredAtOnce = 4;
constexpr std::chrono::seconds longest{8}; // members' devices wait for ten
constexpr int longestAfter = 3;            // doublings of a second
constexpr std::chrono::minutes forgottenAfter{15};
constexpr qsizetype most = 10000;

} // namespace

std::chrono::milliseconds LoginBrake::wrong(const QString &username, const QByteArray &address,
                                            Clock::time_point now)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_guesses.size() >= most)
        forgetOld(now);
    Guesses &guesses = m_guesses[{username, address}];
    if (now - guesses.last > forgottenAfter)
        guesses.count = 0;
    guesses.last = now;
    const int doublings = std::min(++guesses.count - answeredAtOnce - 1, longestAfter);
    return doublings < 0 ? std::chrono::seconds(0)
                         : std::min(longest, std::chrono::seconds(1 << doublings));
}

void LoginBrake::right(const QString &username, const QByteArray &address)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_guesses.remove({username, address});
}

void LoginBrake::forgetOld(Clock::time_point now)
{
    m_guesses.removeIf([now](auto guesses) { return now - guesses.value().last > forgottenAfter; });
    // So many names take longer to try than anything is kept here for.
    if (m_guesses.size() >= most)
        m_guesses.clear();
}
