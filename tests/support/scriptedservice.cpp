// SPDX-License-Identifier: MIT

#include "scriptedservice.h"

#include "testconstants.h"

#include <QTcpSocket>

#include <utility>

struct ScriptedService::Connection
{
    QTcpSocket *socket = nullptr;
    int number = 0;
    QByteArray buffer; // of the request under way
    int request = -1;  // its index
    bool haveStep = false;
    Step step;
    bool answered = false;
    bool deaf = false;
};

namespace {

QByteArray headerEnd()
{
    return QByteArrayLiteral("\r\n\r\n");
}

void parseHeader(ScriptedService::Request *request)
{
    const qsizetype end = request->raw.indexOf(headerEnd());
    if (end < 0)
        return;
    request->headerLines.clear();
    qsizetype start = 0;
    while (start < end) {
        qsizetype lineEnd = request->raw.indexOf("\r\n", start);
        const QByteArray line = request->raw.mid(start, lineEnd - start);
        if (start == 0)
            request->requestLine = line;
        else
            request->headerLines.append(line);
        start = lineEnd + 2;
    }
    request->body = request->raw.mid(end + headerEnd().size());
}

} // namespace

QByteArray ScriptedService::Request::header(const QByteArray &name) const
{
    for (const QByteArray &line : headerLines) {
        const qsizetype colon = line.indexOf(':');
        if (line.left(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

QByteArray ScriptedService::Request::operation() const
{
    const QByteArray path = requestLine.split(' ').value(1);
    return path.split('/').value(2);
}

ScriptedService::ScriptedService(QObject *parent, quint16 port)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &ScriptedService::accept);
    m_server.listen(QHostAddress::LocalHost, port);
    setServiceHost(host());
}

ScriptedService::~ScriptedService()
{
    for (Connection *connection : std::as_const(m_connections)) {
        connection->socket->disconnect(this);
        delete connection;
    }
}

QString ScriptedService::host() const
{
    return QStringLiteral("127.0.0.1:%1").arg(m_server.serverPort());
}

quint16 ScriptedService::port() const
{
    return m_server.serverPort();
}

QByteArray ScriptedService::reply(const QByteArray &body, const QByteArray &contentType,
                                  const QByteArray &status)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + contentType
        + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

void ScriptedService::expect(const QByteArray &operation, const QByteArray &body)
{
    Step step;
    step.operation = operation;
    step.bytes = reply(body);
    expect(step);
}

void ScriptedService::expect(const Step &step)
{
    m_steps.append(step);
}

void ScriptedService::expectHeld(const QByteArray &operation, const QByteArray &body)
{
    Step step;
    step.operation = operation;
    step.bytes = reply(body);
    step.held = true;
    expect(step);
}

bool ScriptedService::release()
{
    if (m_holding.isEmpty())
        return false;
    answer(m_holding.takeFirst());
    return true;
}

bool ScriptedService::isHolding() const
{
    return !m_holding.isEmpty();
}

bool ScriptedService::write(const QByteArray &bytes)
{
    if (m_connections.isEmpty())
        return false;
    QTcpSocket *socket = m_connections.constLast()->socket;
    socket->write(bytes);
    return socket->flush();
}

void ScriptedService::dropConnections()
{
    const QList<Connection *> connections = m_connections;
    for (Connection *connection : connections)
        connection->socket->abort();
}

QList<ScriptedService::Request> ScriptedService::requests() const
{
    return m_requests;
}

QList<QByteArray> ScriptedService::operations() const
{
    QList<QByteArray> names;
    for (const Request &request : m_requests)
        names.append(request.operation());
    return names;
}

int ScriptedService::connectionCount() const
{
    return m_connectionCount;
}

int ScriptedService::openConnectionCount() const
{
    return static_cast<int>(m_connections.size());
}

qint64 ScriptedService::sentBytes() const
{
    return m_sentBytes;
}

bool ScriptedService::isDone() const
{
    return m_problems.isEmpty() && m_steps.isEmpty();
}

const char *ScriptedService::report() const
{
    m_report = m_problems.join("; ");
    for (const Step &step : m_steps)
        m_report += "; never asked for: " + step.operation;
    m_report += " (requests: " + operations().join(", ") + ')';
    return m_report.constData();
}

void ScriptedService::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        auto *connection = new Connection;
        connection->socket = socket;
        connection->number = m_connectionCount++;
        m_connections.append(connection);
        connect(socket, &QTcpSocket::readyRead, this, [this, connection] { read(connection); });
        connect(socket, &QTcpSocket::bytesWritten, this,
                [this](qint64 bytes) { m_sentBytes += bytes; });
        connect(socket, &QTcpSocket::disconnected, this, [this, connection] {
            m_connections.removeOne(connection);
            m_holding.removeAll(connection);
            connection->socket->deleteLater();
            delete connection;
        });
    }
}

void ScriptedService::read(Connection *connection)
{
    if (connection->deaf)
        return;
    connection->buffer += connection->socket->readAll();
    consume(connection);
}

// Takes whole requests off the connection's buffer, and notes an unfinished one as it grows.
void ScriptedService::consume(Connection *connection)
{
    while (!connection->buffer.isEmpty()) {
        if (connection->request < 0)
            begin(connection);
        Request &request = m_requests[connection->request];

        const qsizetype end = connection->buffer.indexOf(headerEnd());
        qsizetype whole = -1;
        if (end >= 0) {
            Request probe;
            probe.raw = connection->buffer;
            parseHeader(&probe);
            whole = end + headerEnd().size() + probe.header("Content-Length").toLongLong();
        }
        const bool complete = whole >= 0 && connection->buffer.size() >= whole;
        request.raw = complete ? connection->buffer.left(whole) : connection->buffer;
        parseHeader(&request);

        const Step &step = connection->step;
        const bool due = (step.when == AfterRequest && complete)
            || (step.when == AfterHeader && end >= 0)
            || (step.when == AfterBytes && connection->buffer.size() >= step.byteCount);
        if (complete)
            connection->buffer.remove(0, whole);
        if (due && !connection->answered)
            act(connection);
        if (!m_connections.contains(connection))
            return; // the step ended the connection, and with it the record of it
        if (complete) {
            connection->request = -1;
            connection->haveStep = false;
            emit requestArrived();
        } else {
            return;
        }
    }
}

void ScriptedService::begin(Connection *connection)
{
    connection->request = static_cast<int>(m_requests.size());
    Request request;
    request.connection = connection->number;
    m_requests.append(request);
    connection->answered = false;
    connection->haveStep = !m_steps.isEmpty();
    connection->step = connection->haveStep ? m_steps.takeFirst() : Step();
    if (!connection->haveStep) {
        connection->step.then = Close;
        m_problems.append("a request that nothing expected: " + connection->buffer.left(60));
    }
}

void ScriptedService::act(Connection *connection)
{
    connection->answered = true;
    const QByteArray asked = m_requests.at(connection->request).operation();
    if (connection->haveStep && !connection->step.operation.isEmpty()
        && asked != connection->step.operation && connection->step.when != AfterBytes) {
        m_problems.append("expected " + connection->step.operation + ", was asked " + asked);
    }
    if (connection->step.held)
        m_holding.append(connection);
    else
        answer(connection);
}

void ScriptedService::answer(Connection *connection)
{
    QTcpSocket *socket = connection->socket;
    if (!connection->step.bytes.isEmpty()) {
        socket->write(connection->step.bytes);
        socket->flush();
    }
    switch (connection->step.then) {
    case KeepOpen:
        break;
    case Close:
        socket->disconnectFromHost();
        break;
    case Reset:
        socket->abort();
        break;
    case StopReading:
        connection->deaf = true;
        socket->setReadBufferSize(1);
        break;
    }
}
