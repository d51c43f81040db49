// SPDX-License-Identifier: MIT

#pragma once

#include "localserviceprocess.h"

#include <QByteArray>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

/** A plain connection to this machine, since there are many of them on many threads. */
class PlainConnection
{
public:
    explicit PlainConnection(int port)
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(quint16(port));
        const timeval patience = {30, 0};
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof(patience));
        m_isConnected =
            ::connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0;
    }
    ~PlainConnection()
    {
        ::close(m_socket);
    }
    PlainConnection(const PlainConnection &) = delete;
    PlainConnection &operator=(const PlainConnection &) = delete;

    /** False once the other side has gone. */
    bool send(const QByteArray &bytes) const
    {
        qsizetype sent = 0;
        while (m_isConnected && sent < bytes.size()) {
            const ssize_t some = ::send(m_socket, bytes.constData() + sent,
                                        size_t(bytes.size() - sent), MSG_NOSIGNAL);
            if (some <= 0)
                return false;
            sent += some;
        }
        return m_isConnected;
    }

    /** One whole reply; its status is 0 when there is none. */
    LocalServiceProcess::Reply reply() const
    {
        QByteArray raw;
        char piece[65536];
        while (!LocalServiceProcess::isWhole(raw, !raw.startsWith("HTTP/1.1 204 "))) {
            const ssize_t some = ::recv(m_socket, piece, sizeof(piece), 0);
            if (some <= 0)
                return {};
            raw.append(piece, some);
        }
        return LocalServiceProcess::parsed(raw);
    }

private:
    int m_socket;
    bool m_isConnected = false;
};
