// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

/**
 * The real auction service in a process of its own, on a port and a data folder of its own.
 *
 * It is killed with this object, and the folder is removed.
 */
class LocalServiceProcess : public QObject
{
    Q_OBJECT

public:
    struct Reply
    {
        int status = 0; ///< 0 = no reply
        QByteArray type;
        QByteArray header; ///< status line and header lines, as sent
        QByteArray body;
    };

    /** How a service ended that was not to go on running. */
    struct End
    {
        int exitCode = -1; ///< -1 = it crashed or did not end
        QByteArray output;
        QByteArray errors;
    };

    explicit LocalServiceProcess(QObject *parent = nullptr);
    ~LocalServiceProcess() override;

    /** Starts the service with further @p options such as "--seed" and waits until it listens. */
    bool start(const QStringList &options = {});
    /** As start(), but does not wait for anything. */
    void startWithoutWaiting(const QStringList &options = {});
    /** Runs the program with just these options to its end. */
    static End runToEnd(const QStringList &options);
    /** Listens on this port from now on; 0, as it is unless set, is any free one. */
    void setPort(quint16 port);
    /** Starts another build of the service from now on. */
    void setProgram(const QString &path);
    /** For the starts from now on. */
    void setEnvironment(const QString &variable, const QString &value);
    /** As kill -9, with no chance to tidy up. The data stays, for another start(). */
    void kill();
    /** As SIGTERM; the exit code, or -1 when the service did not end in good order. */
    int terminate();
    /** Stops the process without ending it, so that requests hang until resume(). */
    void pause() const;
    void resume() const;
    qint64 processId() const;
    /** What the service complained of on its standard error since its last start. */
    QByteArray complaints();

    int port() const;
    /** For setServiceHost(): "localhost:<port>". */
    QString host() const;
    QString dataDir() const;

    /** The rows of a query on the service's database, read only; a failed query is a warning. */
    QList<QVariantList> query(const QString &statement, const QVariantList &values = {}) const;
    /** Changes the service's records behind its back, such as an auction's end. */
    void execute(const QString &statement, const QVariantList &values = {}) const;
    /** The first value of query(), or an invalid one. */
    QVariant value(const QString &statement, const QVariantList &values = {}) const;

    /** Sends the exact bytes on a connection of their own and reads one whole reply. */
    Reply send(const QByteArray &request) const;
    /** Posts a form body such as "Username=demo&Password=demo" to an operation. */
    Reply post(const QByteArray &operation, const QByteArray &form) const;
    Reply get(const QByteArray &path, const QByteArray &headerLines = {}) const;

    static Reply parsed(const QByteArray &raw);
    /** Whether @p raw holds a reply to its end, which its Content-Length tells. */
    static bool isWhole(const QByteArray &raw, bool hasBody = true);
    /** The value of a header line of a reply; empty = it has none. */
    static QByteArray headerValue(const Reply &reply, const QByteArray &name);

private:
    QList<QVariantList> run(const QString &options, const QString &statement,
                            const QVariantList &values) const;

    QTemporaryDir m_folder;
    QString m_program;
    QProcess m_process;
    quint16 m_wantedPort = 0;
    int m_port = 0;
};
