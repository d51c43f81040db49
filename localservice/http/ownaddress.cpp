// SPDX-License-Identifier: MIT

#include "ownaddress.h"

namespace {
constexpr int usualPort = 80;
}

OwnAddress::OwnAddress(int port)
    : m_port(port == usualPort ? QByteArray() : ':' + QByteArray::number(port))
{
}

OwnAddress::Asker OwnAddress::asker(const QByteArray &host, const QByteArray &origin) const
{
    if (!isOwnHost(host))
        return ForeignHost;
    const bool isFromHere = origin.isEmpty() || origin == "http://" + host;
    return isFromHere ? Own : ForeignOrigin;
}

bool OwnAddress::isOwnHost(const QByteArray &host) const
{
    return host == "localhost" + m_port || host == "127.0.0.1" + m_port;
}
