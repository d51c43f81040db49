// SPDX-License-Identifier: MIT

#include "oneinstance.h"

#include "timeconstants.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QThread>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int retryInterval = 20; // ms
// By what a desktop proves to its windows that the member wants this one in front.
constexpr const char *activationToken = "XDG_ACTIVATION_TOKEN";

bool isOursAlone(const QString &folder)
{
    struct stat is = {};
    return ::lstat(QFile::encodeName(folder).constData(), &is) == 0 && S_ISDIR(is.st_mode)
        && is.st_uid == ::geteuid() && (is.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

// The session's folder or, where there is none, one in the temporary folder. Empty when neither is
// safe from other users.
QString meetingFolder()
{
    const QString session = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (isOursAlone(session))
        return session;
    const QString made = QDir::tempPath() + QStringLiteral("/kavlor-%1").arg(::geteuid());
    ::mkdir(QFile::encodeName(made).constData(), S_IRWXU);
    return isOursAlone(made) ? made : QString();
}

QString socketName(const QString &settingsFile)
{
    constexpr int enough = 8; // letters; the name of a socket must be short
    const QString folder = meetingFolder();
    if (folder.isEmpty())
        return {};
    const QByteArray hash =
        QCryptographicHash::hash(settingsFile.toUtf8(), QCryptographicHash::Sha256).toHex();
    return folder + QStringLiteral("/kavlor-") + QString::fromLatin1(hash.left(enough));
}

// The first of two programs that start together may not be listening yet.
bool connectTo(QLocalSocket &socket, const QString &name)
{
    const QDeadlineTimer limit(timeConstants().handOverWait);
    for (;;) {
        socket.connectToServer(name, QLocalSocket::WriteOnly);
        if (socket.waitForConnected(timeConstants().handOverWait))
            return true;
        if (limit.hasExpired())
            return false;
        QThread::msleep(retryInterval);
    }
}

} // namespace

OneInstance::OneInstance(const QString &settingsFile, QObject *parent)
    : QObject(parent)
    , m_name(socketName(settingsFile))
{
}

OneInstance::~OneInstance() = default;

bool OneInstance::handOver(const QString &mediaPath)
{
    if (m_name.isEmpty())
        return false;
    m_lock = std::make_unique<QLockFile>(m_name + QStringLiteral(".lock"));
    m_lock->setStaleLockTime(0); // held for as long as its program lives, and no longer
    if (m_lock->tryLock(0)) {
        m_server = new QLocalServer(this);
        m_server->setSocketOptions(QLocalServer::UserAccessOption);
        QLocalServer::removeServer(m_name); // of a program that was killed
        m_server->listen(m_name);
        return false;
    }
    QLocalSocket socket;
    if (!connectTo(socket, m_name))
        return false;
    socket.write(qgetenv(activationToken) + '\n' + mediaPath.toUtf8() + '\0');
    return socket.waitForBytesWritten(timeConstants().handOverWait);
}

void OneInstance::hear()
{
    if (!m_server)
        return;
    connect(m_server, &QLocalServer::newConnection, this, &OneInstance::answer);
    answer();
}

void OneInstance::answer()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        read(socket);
    }
}

void OneInstance::read(QLocalSocket *socket)
{
    const QByteArray message = socket->peek(socket->bytesAvailable());
    if (!message.endsWith('\0'))
        return; // the rest is to come
    socket->readAll();
    const qsizetype tokenEnd = message.indexOf('\n');
    qputenv(activationToken, message.left(tokenEnd));
    // Outside of the socket's own signal: a box may open on it, and the socket goes meanwhile.
    const QString mediaPath = QString::fromUtf8(message.mid(tokenEnd + 1).chopped(1));
    QMetaObject::invokeMethod(
        this, [this, mediaPath] { emit startedAgain(mediaPath); }, Qt::QueuedConnection);
}
