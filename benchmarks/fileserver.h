// SPDX-License-Identifier: MIT

#pragma once

#include "plainconnection.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>

/** An nginx of our own that stores what is put into its folder, and serves what is there. */
class FileServer
{
public:
    ~FileServer()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    /** False where there is none. */
    bool start()
    {
        const QString program =
            QStandardPaths::findExecutable(QStringLiteral("nginx"),
                                           {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/bin"),
                                            QStringLiteral("/usr/local/sbin")});
        QTcpServer free;
        if (program.isEmpty() || !free.listen(QHostAddress::LocalHost))
            return false;
        m_port = free.serverPort();
        free.close();
        QFile configuration(m_folder.filePath(QStringLiteral("nginx.conf")));
        if (!configuration.open(QIODevice::WriteOnly))
            return false;
        const QString text =
            QStringLiteral("daemon off;\nmaster_process off;\npid %1/pid;\nerror_log %1/log;\n"
                           "events {}\nhttp {\naccess_log off;\nclient_max_body_size 64m;\n"
                           "client_body_temp_path %1/body;\nproxy_temp_path %1/proxy;\n"
                           "fastcgi_temp_path %1/fastcgi;\nuwsgi_temp_path %1/uwsgi;\n"
                           "scgi_temp_path %1/scgi;\n"
                           "server {\nlisten 127.0.0.1:%2;\nroot %1;\ndav_methods PUT;\n}\n}\n")
                .arg(m_folder.path())
                .arg(m_port);
        configuration.write(text.toUtf8());
        configuration.close();
        m_process.start(program,
                        {QStringLiteral("-p"), m_folder.path(), QStringLiteral("-e"),
                         m_folder.filePath(QStringLiteral("log")), QStringLiteral("-c"),
                         configuration.fileName()});
        if (!m_process.waitForStarted())
            return false;
        // It is there once it answers.
        for (int i = 0; i < 100 && m_process.state() == QProcess::Running; ++i) {
            const PlainConnection connection(m_port);
            if (connection.send("GET /pid HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n")
                && connection.reply().status == 200)
                return true;
            m_process.waitForFinished(50);
        }
        return false;
    }

    int port() const
    {
        return m_port;
    }
    /** Serves @p bytes at "/<name>". */
    bool offer(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    int m_port = 0;
};
