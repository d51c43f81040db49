// SPDX-License-Identifier: MIT

#pragma once

#include <QTcpServer>
#include <QTcpSocket>

/** A service on loopback that answers its one request with a body that has no end. */
class EndlessService : public QTcpServer
{
    Q_OBJECT

public:
    EndlessService()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            m_socket = nextPendingConnection();
            connect(m_socket, &QTcpSocket::readyRead, this, [this] {
                if (m_socket->readAll().endsWith("SUBMIT=Submit"))
                    m_socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\n");
            });
            connect(m_socket, &QTcpSocket::bytesWritten, this, [this](qint64 bytes) {
                m_written += bytes;
                if (m_socket->bytesToWrite() == 0)
                    m_socket->write(QByteArray(64LL * 1024, 'x'));
            });
        });
    }

    QString host() const
    {
        return QStringLiteral("127.0.0.1:%1").arg(serverPort());
    }

    /** So many bytes have gone to the visitor. */
    qint64 written() const
    {
        return m_written;
    }

    /** The visitor has gone. */
    bool isLeft() const
    {
        return m_socket && m_socket->state() == QAbstractSocket::UnconnectedState;
    }

private:
    QTcpSocket *m_socket = nullptr;
    qint64 m_written = 0;
};
