// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTcpServer>

class QTcpSocket;

/**
 * A service on loopback that answers from a script and records the exact bytes it was sent.
 *
 * While it lives, serviceHost() names it. Each expect() adds one step; requests take the steps in
 * order. A request that finds no step, or another path than its step expects, is a problem, and so
 * is a step that was not used: a test ends with QVERIFY2(service.isDone(), service.report()).
 */
class ScriptedService : public QObject
{
    Q_OBJECT

public:
    /** When the step's bytes are written. */
    enum When {
        AfterRequest, ///< once the whole request has arrived
        AfterHeader,  ///< once its header has arrived, its body perhaps not
        AfterBytes    ///< once Step::byteCount bytes of the request have arrived
    };
    /** What follows the bytes. */
    enum Then {
        KeepOpen,   ///< the connection stays, ready for the next request
        Close,      ///< the connection is closed in good order
        Reset,      ///< the connection is torn down
        StopReading ///< nothing more is read, the connection stays
    };

    struct Step
    {
        QByteArray operation; ///< such as "ValidateLogin"; empty = any
        QByteArray bytes;     ///< the raw reply; empty = none
        When when = AfterRequest;
        qint64 byteCount = 0;
        Then then = KeepOpen;
        bool held = false; ///< waits for release() before it answers
    };

    struct Request
    {
        QByteArray raw; ///< every byte, as sent
        QByteArray requestLine;
        QList<QByteArray> headerLines;
        QByteArray body;
        int connection = 0; ///< which connection it came on, from 0

        QByteArray header(const QByteArray &name) const;
        QByteArray operation() const;
    };

    /** Listens on @p port, or on any free one when it is 0. */
    explicit ScriptedService(QObject *parent = nullptr, quint16 port = 0);
    ~ScriptedService() override;

    QString host() const;
    quint16 port() const;

    /** The bytes of a well-formed reply with a Content-Length. */
    static QByteArray reply(const QByteArray &body, const QByteArray &contentType = "text/plain",
                            const QByteArray &status = "200 OK");

    /** The next request is for @p operation and gets @p body as text/plain with status 200. */
    void expect(const QByteArray &operation, const QByteArray &body);
    void expect(const Step &step);
    /** As expect(), but the reply waits for release(). */
    void expectHeld(const QByteArray &operation, const QByteArray &body);
    /** Lets the oldest held reply go; false when none is waiting. */
    bool release();
    /** True when a request has arrived whose reply waits for release(). */
    bool isHolding() const;
    /** Writes more bytes on the newest connection that is open; false when none is. */
    bool write(const QByteArray &bytes);
    /** Tears down every open connection. */
    void dropConnections();

    /** The requests so far, also unfinished ones, in order of their first byte. */
    QList<Request> requests() const;
    QList<QByteArray> operations() const;
    int connectionCount() const;
    int openConnectionCount() const;
    /** How many bytes of all replies have left for the client. */
    qint64 sentBytes() const;

    bool isDone() const;
    /** What went against the script, for a failure message. */
    const char *report() const;

signals:
    /** A whole request has arrived. */
    void requestArrived();

private:
    struct Connection;

    void accept();
    void read(Connection *connection);
    void consume(Connection *connection);
    void begin(Connection *connection);
    void act(Connection *connection);
    void answer(Connection *connection);

    QTcpServer m_server;
    QList<Step> m_steps;
    QList<Request> m_requests;
    QList<Connection *> m_connections;
    QList<Connection *> m_holding;
    QList<QByteArray> m_problems;
    int m_connectionCount = 0;
    qint64 m_sentBytes = 0;
    mutable QByteArray m_report;
};
