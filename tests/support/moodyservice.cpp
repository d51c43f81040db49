// SPDX-License-Identifier: MIT

#include "moodyservice.h"

#include "testconstants.h"

#include <QBuffer>
#include <QImage>
#include <QMap>
#include <QTcpSocket>
#include <QTimer>

namespace {

constexpr int dripInterval = 5; // ms

QByteArray pictureBytes()
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(QColor(90, 150, 210));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

const QMap<QByteArray, QByteArray> &goodBodies()
{
    static const QMap<QByteArray, QByteArray> bodies{
        {"CreateAccount", "7"},
        {"CreateAuction", "17"},
        {"GetCategoryList", "categories\n1,Public Figures,0\n4,Sports,0\n10,Football,4\n"},
        {"GetCountryList", "countries"},
        {"GetMyAuctions",
         "header\n17,Lake,1,40,95,0,11/30/2036 12:00,0,12,3,40\n"
         "18,Fog,1,40,95,0,11/30/2036 12:00,0,5,0,-1\n"},
        {"GetNotificationOptions", "options\n1,0,0,1\n"},
        {"GetServiceTerms", "<p>terms</p>"},
        {"GetThumbnail", pictureBytes()},
        {"ModifyAccount", "7"},
        {"ModifyAuction", "1"},
        {"SetNotificationOptions", "1"},
        {"ValidateLogin", "1"},
    };
    return bodies;
}

QByteArray header(const QByteArray &status, const QByteArray &type, const QByteArray &framing)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + type + "\r\n" + framing + "\r\n\r\n";
}

QByteArray lengthLine(qsizetype length)
{
    return "Content-Length: " + QByteArray::number(length);
}

QByteArray reply(const QByteArray &status, const QByteArray &body, const QByteArray &type)
{
    return header(status, type, lengthLine(body.size())) + body;
}

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes;
}

using Bytes = QByteArray;

Bytes nothing(const Bytes &, const Bytes &)
{
    return {};
}

Bytes whole(const Bytes &body, const Bytes &type)
{
    return reply("200 OK", body, type);
}

// A reply of that status whose body is as good as ever.
template <int code>
Bytes status(const Bytes &body, const Bytes &type)
{
    return reply(QByteArray::number(code) + " Status", body, type);
}

QList<MoodyService::Fault> makeFaults()
{
    using Service = MoodyService;
    const Service::Ending open = Service::KeepOpen;
    const Service::Ending close = Service::Close;
    QList<Service::Fault> faults{
        {"silent", nothing, open, false},
        {"closed without a word", nothing, close},
        {"reset without a word", nothing, Service::Reset},
        {"silent behind the header",
         [](const Bytes &body, const Bytes &type) {
             return header("200 OK", type, lengthLine(body.size()));
         },
         open, false},
        {"cut in the header",
         [](const Bytes &body, const Bytes &type) { return whole(body, type).left(25); }, close},
        {"reset in the header",
         [](const Bytes &body, const Bytes &type) { return whole(body, type).left(25); },
         Service::Reset},
        {"cut in the body",
         [](const Bytes &body, const Bytes &type) { return whole(body, type).chopped(1); }, close},
        {"cut in a chunk",
         [](const Bytes &body, const Bytes &type) {
             return header("200 OK", type, "Transfer-Encoding: chunked") + chunk(body).chopped(1);
         },
         close},
        {"a chunk that never ends",
         [](const Bytes &body, const Bytes &type) {
             return header("200 OK", type, "Transfer-Encoding: chunked") + chunk(body);
         },
         open, false},
        {"a length too long",
         [](const Bytes &body, const Bytes &type) {
             return header("200 OK", type, lengthLine(body.size() + 9)) + body;
         },
         open, false},
        {"a length too short",
         [](const Bytes &body, const Bytes &type) {
             return header("200 OK", type, lengthLine(body.size() - 1)) + body;
         },
         open},
        {"garbage",
         [](const Bytes &, const Bytes &) {
             return QByteArray("\x01\xff\xfe\x00 what\r\n\r\nis this\r\n", 22);
         },
         close},
        {"garbage and no end",
         [](const Bytes &, const Bytes &) { return QByteArray("\x7f\x00\x01garbage", 10); }, open,
         false},
        {"what TLS says to a stranger",
         [](const Bytes &, const Bytes &) { return QByteArray("\x15\x03\x01\x00\x02\x02\x28", 7); },
         close},
        {"100 before the reply",
         [](const Bytes &body, const Bytes &type) {
             return "HTTP/1.1 100 Continue\r\n\r\n" + whole(body, type);
         },
         open},
        {"100 and no more",
         [](const Bytes &, const Bytes &) { return Bytes("HTTP/1.1 100 Continue\r\n\r\n"); }, open,
         false},
        {"204", [](const Bytes &, const Bytes &) { return Bytes("HTTP/1.1 204 None\r\n\r\n"); },
         open},
        {"301", status<301>, open},
        {"307 to itself",
         [](const Bytes &, const Bytes &) {
             return Bytes("HTTP/1.1 307 Round\r\nLocation: /\r\nContent-Length: 0\r\n\r\n");
         },
         open},
        {"401",
         [](const Bytes &, const Bytes &) {
             return Bytes("HTTP/1.1 401 Who?\r\nWWW-Authenticate: Basic realm=\"x\"\r\n"
                          "Content-Length: 0\r\n\r\n");
         },
         open},
        {"404", status<404>, open},
        {"500", status<500>, open},
        {"503 before the request is through", status<503>, Service::Reset},
        {"empty", [](const Bytes &, const Bytes &type) { return whole({}, type); }, open},
        {"64 MiB",
         [](const Bytes &, const Bytes &type) { return whole(Bytes(64 << 20, 'x'), type); }, open},
        {"NUL",
         [](const Bytes &body, const Bytes &type) {
             return whole(QByteArray(3, '\0') + body + QByteArray(3, '\0'), type);
         },
         open},
        {"no UTF-8",
         [](const Bytes &body, const Bytes &type) {
             return whole("\xff\xc0\x80" + body + "\xed\xa0\x80\xf8", type);
         },
         open},
        {"ERROR", [](const Bytes &, const Bytes &) { return whole("ERROR: no", "text/plain"); },
         open},
        {"ERROR at the end",
         [](const Bytes &body, const Bytes &type) { return whole(body + "ERROR", type); }, open},
        {"ERROR as a page",
         [](const Bytes &, const Bytes &) { return whole("<h1>ERROR</h1>", "text/html"); }, open},
        {"a byte now and then", whole, open, false},
    };
    for (Service::Fault &fault : faults) {
        fault.drips = fault.name == "a byte now and then";
        fault.isEarly = fault.name.endsWith("is through");
    }
    return faults;
}

} // namespace

MoodyService::MoodyService(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &MoodyService::accept);
    m_server.listen(QHostAddress::LocalHost);
    m_port = m_server.serverPort();
    setName(QStringLiteral("127.0.0.1"));
}

MoodyService::~MoodyService()
{
    m_server.disconnect(this);
    const QList<QTcpSocket *> sockets = m_requests.keys();
    for (QTcpSocket *socket : sockets) {
        socket->disconnect(this);
        delete socket;
    }
}

const QList<MoodyService::Fault> &MoodyService::faults()
{
    static const QList<Fault> faults = makeFaults();
    return faults;
}

QList<QByteArray> MoodyService::operations()
{
    return goodBodies().keys();
}

QList<QByteArray> MoodyService::auctions()
{
    QList<QByteArray> numbers = goodBodies().value("GetMyAuctions").trimmed().split('\n').mid(1);
    for (QByteArray &row : numbers)
        row.truncate(row.indexOf(','));
    return numbers;
}

void MoodyService::setName(const QString &name) const
{
    setServiceHost(QStringLiteral("%1:%2").arg(name).arg(m_port));
}

void MoodyService::spoil(const QByteArray &operation, const Fault &fault)
{
    m_spoiltOperation = operation;
    m_fault = fault;
}

bool MoodyService::isSpoilt() const
{
    return !m_spoiltOperation.isEmpty();
}

void MoodyService::stopListening()
{
    m_server.close();
}

void MoodyService::listenAgain()
{
    if (!m_server.isListening())
        m_server.listen(QHostAddress::LocalHost, m_port);
}

void MoodyService::dropConnections()
{
    const QList<QTcpSocket *> sockets = m_requests.keys();
    for (QTcpSocket *socket : sockets)
        end(socket, Reset);
}

void MoodyService::holdReplies(bool hold)
{
    m_holding = hold;
    while (!hold && !m_held.isEmpty())
        answerHeld(0);
}

int MoodyService::heldCount() const
{
    return static_cast<int>(m_held.size());
}

void MoodyService::answerHeld(int number, const Fault *fault)
{
    QTcpSocket *socket = m_held.takeAt(number);
    answer(socket, m_requests.value(socket).operation, fault);
}

int MoodyService::connectionCount() const
{
    return static_cast<int>(m_requests.size());
}

bool MoodyService::isQuiet() const
{
    for (auto request = m_requests.cbegin(); request != m_requests.cend(); ++request) {
        if (!request->hangs && !m_held.contains(request.key()))
            return false;
    }
    return true;
}

int MoodyService::count(const QByteArray &operation) const
{
    return m_counts.value(operation);
}

void MoodyService::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        m_requests.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_requests.remove(socket);
            m_held.removeOne(socket);
            socket->deleteLater();
        });
    }
}

void MoodyService::read(QTcpSocket *socket)
{
    Request &request = m_requests[socket];
    request.raw += socket->readAll();
    const qsizetype end = request.raw.indexOf("\r\n\r\n");
    if (end < 0 || request.answered)
        return;
    if (request.operation.isEmpty()) {
        request.operation = request.raw.left(request.raw.indexOf(" HTTP/")).split('/').value(2);
        ++m_counts[request.operation];
        emit asked(request.operation);
    }
    const bool spoilt = request.operation == m_spoiltOperation;
    const qsizetype line = request.raw.indexOf("Content-Length: ") + 16;
    const qsizetype length =
        request.raw.mid(line, request.raw.indexOf('\r', line) - line).toLongLong();
    if (request.raw.size() < end + 4 + length && !(spoilt && m_fault.isEarly))
        return;
    request.answered = true;
    if (m_holding) {
        m_held.append(socket);
        return;
    }
    if (spoilt)
        m_spoiltOperation.clear();
    answer(socket, request.operation, spoilt ? &m_fault : nullptr);
}

void MoodyService::answer(QTcpSocket *socket, const QByteArray &operation, const Fault *fault)
{
    const QByteArray body = goodBodies().value(operation, "ERROR: unknown");
    const QByteArray type = operation == "GetThumbnail" ? "image/png" : "text/plain";
    if (!fault) {
        socket->write(whole(body, type));
        return;
    }
    m_requests[socket].hangs = !fault->endsByItself;
    const QByteArray bytes = fault->bytes(body, type);
    if (fault->drips) {
        drip(socket, bytes);
        return;
    }
    socket->write(bytes);
    socket->flush();
    end(socket, fault->ending);
}

void MoodyService::drip(QTcpSocket *socket, const QByteArray &bytes)
{
    auto *timer = new QTimer(socket);
    connect(timer, &QTimer::timeout, socket, [socket, bytes, sent = 0]() mutable {
        // More slowly than anybody waits: the last bytes never come.
        if (sent < bytes.size() - 1 && socket->state() == QAbstractSocket::ConnectedState)
            socket->write(bytes.constData() + sent++, 1);
    });
    timer->start(dripInterval);
}

void MoodyService::end(QTcpSocket *socket, Ending ending)
{
    if (ending == Close)
        socket->disconnectFromHost();
    else if (ending == Reset)
        socket->abort();
}
