// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "qhttp.h"
#include "qhttprequestheader.h"

#include <QBuffer>
#include <QDeadlineTimer>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

// Answers each request with the same bytes and closes.
class Server : public QTcpServer
{
public:
    Server()
    {
        mustHold(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this] {
            ++connections;
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                if (!socket->readAll().contains("body"))
                    return;
                socket->write(reply);
                socket->disconnectFromHost();
            });
        });
    }

    QByteArray reply;
    int connections = 0;
};

} // namespace

// The bytes of a whole reply, over a real socket. Whatever they are, the request is sent once and
// ends once.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    application();
    static Server &server = *new Server; // as the application, never deleted
    server.reply = bytesOf(data, size);
    server.connections = 0;

    QHttp http;
    http.setHost(QStringLiteral("127.0.0.1"), QHttp::ConnectionModeHttp, server.serverPort());
    int ends = 0;
    QObject::connect(&http, &QHttp::done, &http, [&ends] { ++ends; });
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    http.request(QHttpRequestHeader(QStringLiteral("POST"), QStringLiteral("/")), "body", &sink);
    constexpr int longTime = 20000; // ms
    const QDeadlineTimer deadline(longTime);
    while (ends == 0 && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    mustHold(ends == 1);
    mustHold(server.connections == 1);
    mustHold(sink.size() <= server.reply.size());
    return 0;
}
