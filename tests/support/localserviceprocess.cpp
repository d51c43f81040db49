// SPDX-License-Identifier: MIT

#include "localserviceprocess.h"

#include "patience.h"
#include "testpaths.h"

#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTcpSocket>

#include <csignal>

LocalServiceProcess::LocalServiceProcess(QObject *parent)
    : QObject(parent)
    , m_program(QStringLiteral(KAVLOR_LOCALSERVICE))
{
}

LocalServiceProcess::~LocalServiceProcess()
{
    kill();
}

void LocalServiceProcess::startWithoutWaiting(const QStringList &options)
{
    const QStringList arguments{QStringLiteral("--port"), QString::number(m_wantedPort),
                                QStringLiteral("--data"), dataDir()};
    m_process.start(m_program, arguments + options);
}

bool LocalServiceProcess::start(const QStringList &options)
{
    startWithoutWaiting(options);
    QElapsedTimer waited;
    waited.start();
    while (!m_process.canReadLine()) {
        if (waited.hasExpired(patience) || m_process.state() == QProcess::NotRunning
            || !m_process.waitForReadyRead(patience))
            return false;
    }
    static const QRegularExpression listening(
        QStringLiteral("^kavlor-localservice: listening on 127\\.0\\.0\\.1:(\\d+)\n$"));
    m_port = listening.match(QString::fromLatin1(m_process.readLine())).captured(1).toInt();
    return m_port > 0;
}

LocalServiceProcess::End LocalServiceProcess::runToEnd(const QStringList &options)
{
    QProcess process;
    process.start(QStringLiteral(KAVLOR_LOCALSERVICE), options);
    if (!process.waitForFinished(patience))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

void LocalServiceProcess::setPort(quint16 port)
{
    m_wantedPort = port;
}

void LocalServiceProcess::setProgram(const QString &path)
{
    m_program = path;
}

void LocalServiceProcess::setEnvironment(const QString &variable, const QString &value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    if (environment.isEmpty())
        environment = QProcessEnvironment::systemEnvironment();
    environment.insert(variable, value);
    m_process.setProcessEnvironment(environment);
}

void LocalServiceProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(patience);
}

int LocalServiceProcess::terminate()
{
    m_process.terminate();
    const bool ended = m_process.waitForFinished(patience);
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void LocalServiceProcess::pause() const
{
    if (processId() > 0) // 0 would be everybody
        ::kill(static_cast<pid_t>(processId()), SIGSTOP);
}

void LocalServiceProcess::resume() const
{
    if (processId() > 0)
        ::kill(static_cast<pid_t>(processId()), SIGCONT);
}

qint64 LocalServiceProcess::processId() const
{
    return m_process.processId();
}

QByteArray LocalServiceProcess::complaints()
{
    return m_process.readAllStandardError();
}

int LocalServiceProcess::port() const
{
    return m_port;
}

QString LocalServiceProcess::host() const
{
    return QStringLiteral("localhost:%1").arg(m_port);
}

QString LocalServiceProcess::dataDir() const
{
    return m_folder.path() + QStringLiteral("/service");
}

QList<QVariantList> LocalServiceProcess::run(const QString &options, const QString &statement,
                                             const QVariantList &values) const
{
    const QString name = QStringLiteral("localserviceprocess");
    QList<QVariantList> rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(dataDir() + QStringLiteral("/service.sqlite"));
        database.setConnectOptions(options);
        database.open();
        QSqlQuery query(database);
        query.prepare(statement);
        for (const QVariant &value : values)
            query.addBindValue(value);
        if (!query.exec())
            qWarning("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
        while (query.next()) {
            QVariantList row;
            for (int column = 0; column < query.record().count(); ++column)
                row.append(query.value(column));
            rows.append(row);
        }
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

QList<QVariantList> LocalServiceProcess::query(const QString &statement,
                                               const QVariantList &values) const
{
    return run(QStringLiteral("QSQLITE_OPEN_READONLY"), statement, values);
}

void LocalServiceProcess::execute(const QString &statement, const QVariantList &values) const
{
    run({}, statement, values);
}

QVariant LocalServiceProcess::value(const QString &statement, const QVariantList &values) const
{
    return query(statement, values).value(0).value(0);
}

LocalServiceProcess::Reply LocalServiceProcess::send(const QByteArray &request) const
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), quint16(m_port));
    if (!socket.waitForConnected(patience))
        return {};
    socket.write(request);
    const bool hasBody = !request.startsWith("HEAD ");
    QByteArray raw;
    while (!isWhole(raw, hasBody)
           && (socket.bytesAvailable() > 0 || socket.waitForReadyRead(patience)))
        raw += socket.readAll();
    return parsed(raw);
}

LocalServiceProcess::Reply LocalServiceProcess::post(const QByteArray &operation,
                                                     const QByteArray &form) const
{
    return send("POST /tolvex/" + operation + "/ HTTP/1.1\r\nHost: " + host().toLatin1()
                + "\r\n"
                  "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: "
                + QByteArray::number(form.size()) + "\r\n\r\n" + form);
}

LocalServiceProcess::Reply LocalServiceProcess::get(const QByteArray &path,
                                                    const QByteArray &headerLines) const
{
    return send("GET " + path + " HTTP/1.1\r\nHost: localhost:" + QByteArray::number(m_port)
                + "\r\n" + headerLines + "\r\n");
}

bool LocalServiceProcess::isWhole(const QByteArray &raw, bool hasBody)
{
    const Reply reply = parsed(raw);
    const QByteArray length = headerValue(reply, "Content-Length");
    return reply.status != 0
        && (!hasBody || (!length.isEmpty() && reply.body.size() >= length.toLongLong()));
}

LocalServiceProcess::Reply LocalServiceProcess::parsed(const QByteArray &raw)
{
    const qsizetype end = raw.indexOf("\r\n\r\n");
    if (end < 0 || !raw.startsWith("HTTP/1.1 "))
        return {};
    Reply reply;
    reply.status = raw.mid(9, 3).toInt();
    reply.header = raw.left(end + 2);
    reply.body = raw.mid(end + 4);
    reply.type = headerValue(reply, "Content-Type");
    return reply;
}

QByteArray LocalServiceProcess::headerValue(const Reply &reply, const QByteArray &name)
{
    const QList<QByteArray> lines = reply.header.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}
