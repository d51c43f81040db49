// SPDX-License-Identifier: MIT

#include "sink.h"

#include <QDebug>
#include <QList>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool sendAll(int connection, const QByteArray &bytes)
{
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const ssize_t some =
            ::send(connection, bytes.constData() + sent, size_t(bytes.size() - sent), MSG_NOSIGNAL);
        if (some <= 0)
            return false;
        sent += some;
    }
    return true;
}

qint64 announcedBytes(const QByteArray &header)
{
    const QByteArray name = "\r\ncontent-length:";
    const qsizetype start = header.toLower().indexOf(name);
    if (start < 0)
        return 0;
    const qsizetype value = start + name.size();
    return header.mid(value, header.indexOf("\r\n", value) - value).trimmed().toLongLong();
}

} // namespace

Sink::Sink()
    : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    if (::bind(m_listener, reinterpret_cast<sockaddr *>(&address), size) != 0
        || ::listen(m_listener, 64) != 0
        || ::getsockname(m_listener, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        qFatal("The sink has no port to listen on.");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { serve(); });
}

Sink::~Sink()
{
    m_isOver = true;
    ::shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    ::close(m_listener);
}

int Sink::port() const
{
    return m_port;
}

void Sink::serve()
{
    while (!m_isOver) {
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            continue;
        answer(connection);
        ::close(connection);
    }
}

void Sink::answer(int connection)
{
    QByteArray piece(1 << 20, '\0');
    QByteArray head;
    while (!head.contains("\r\n\r\n")) {
        const ssize_t some = ::recv(connection, piece.data(), size_t(piece.size()), 0);
        if (some <= 0)
            return;
        head.append(piece.constData(), some);
    }
    const qsizetype bodyStart = head.indexOf("\r\n\r\n") + 4;
    const QByteArray header = head.left(bodyStart);
    if (header.toLower().contains("\r\nexpect: 100"))
        sendAll(connection, "HTTP/1.1 100 Continue\r\n\r\n");
    qint64 missing = announcedBytes(header) - (head.size() - bodyStart);
    while (missing > 0) {
        const ssize_t some = ::recv(connection, piece.data(), size_t(piece.size()), 0);
        if (some <= 0)
            return;
        missing -= some;
    }
    const qint64 wanted = header.split('/').value(2).toLongLong();
    const qint64 size = wanted > 0 ? wanted : 1;
    sendAll(connection,
            "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\n"
            "Content-Length: "
                + QByteArray::number(size) + "\r\n\r\n");
    const QByteArray bytes(qMin<qint64>(size, piece.size()), '1');
    for (qint64 left = size; left > 0; left -= bytes.size()) {
        if (!sendAll(connection, bytes.left(left)))
            return;
    }
}
