// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>

class QTcpSocket;

/**
 * A service on loopback that answers every operation well, until a test spoils one.
 *
 * While it lives, serviceHost() names it. What may go wrong is listed by faults(): each is made of
 * the good reply to the operation, so that every operation can meet every fault.
 */
class MoodyService : public QObject
{
    Q_OBJECT

public:
    /** What becomes of the connection behind the bytes. */
    enum Ending { KeepOpen, Close, Reset };

    struct Fault
    {
        QByteArray name;
        QByteArray (*bytes)(const QByteArray &body, const QByteArray &type) = nullptr;
        Ending ending = Close;
        bool endsByItself = true; ///< otherwise only the client's own time-out ends it
        bool drips = false;       ///< a byte now and then
        bool isEarly = false;     ///< before the request has come whole
    };

    explicit MoodyService(QObject *parent = nullptr);
    ~MoodyService() override;

    static const QList<Fault> &faults();
    /** The operations that it knows, in the order of their names. */
    static QList<QByteArray> operations();
    /** The numbers of the auctions in its list. */
    static QList<QByteArray> auctions();

    /** serviceHost() is @p name from now on, which leads to this machine. */
    void setName(const QString &name) const;
    /** The next request for @p operation meets @p fault. */
    void spoil(const QByteArray &operation, const Fault &fault);
    /** True until the request came that was to be spoilt. */
    bool isSpoilt() const;
    /** From now on nobody listens, until listenAgain(). */
    void stopListening();
    void listenAgain();
    /** Tears down every open connection. */
    void dropConnections();

    /** Lets requests that have come whole wait for answerHeld(), until it is called with false. */
    void holdReplies(bool hold);
    /** How many requests wait for answerHeld(). */
    int heldCount() const;
    /** Answers the held request of that number, from 0 in the order in which they came. */
    void answerHeld(int number, const Fault *fault = nullptr);
    int connectionCount() const;
    /** True when nothing is on its way: whatever is open is held, or hangs by its fault. */
    bool isQuiet() const;

    /** How many requests for @p operation have begun to arrive. */
    int count(const QByteArray &operation) const;

signals:
    /** The header of a request for @p operation has come. */
    void asked(const QByteArray &operation);

private:
    struct Request
    {
        QByteArray raw;
        QByteArray operation;
        bool answered = false;
        bool hangs = false;
    };

    void accept();
    void read(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const QByteArray &operation, const Fault *fault);
    void drip(QTcpSocket *socket, const QByteArray &bytes);
    static void end(QTcpSocket *socket, Ending ending);

    QTcpServer m_server;
    quint16 m_port = 0;
    QHash<QTcpSocket *, Request> m_requests;
    QHash<QByteArray, int> m_counts;
    bool m_holding = false;
    QList<QTcpSocket *> m_held;
    QByteArray m_spoiltOperation;
    Fault m_fault;
};
