// SPDX-License-Identifier: MIT

#include "loginmemory.h"

#include "passwords.h"

namespace {

constexpr qsizetype most = 10000;

QByteArray print(const QByteArray &hash, const QString &password)
{
    return seal("login " + hash + ' ' + password.toUtf8());
}

} // namespace

LoginMemory::LoginMemory(std::chrono::milliseconds lifetime)
    : m_lifetime(lifetime)
{
}

bool LoginMemory::isKnown(const QByteArray &hash, const QString &password)
{
    const QByteArray login = print(hash, password);
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_expiry.constFind(login);
    return found != m_expiry.cend() && *found > Clock::now();
}

void LoginMemory::remember(const QByteArray &hash, const QString &password)
{
    const QByteArray login = print(hash, password);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_expiry.size() >= most)
        forgetOld();
    m_expiry.insert(login, Clock::now() + m_lifetime);
}

void LoginMemory::forgetOld()
{
    const Clock::time_point now = Clock::now();
    m_expiry.removeIf([now](auto login) { return login.value() <= now; });
    // Whoever is left out logs in anew.
    if (m_expiry.size() >= most)
        m_expiry.clear();
}
