// SPDX-License-Identifier: MIT

// How fast the local service takes a photo of 5 MB, against nginx that only writes the same bytes
// into a file. The service also reads the form and syncs photo and record before it answers.
// Without an nginx on this machine there is nothing to compare with, and only the service's own
// rate is told.
// --service PATH measures another build of it.

#include "localserviceprocess.h"
#include "rates.h"
#include "uploadrequest.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextStream>

#include <chrono>

namespace {

constexpr int runs = 9;
constexpr int uploads = 64; // in a run
constexpr std::chrono::milliseconds untilAllAreSent{0};

QTextStream out(stdout);

/** An nginx of our own that stores what is put into a folder. */
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

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    int m_port = 0;
};

double uploadRate(const LocalServiceProcess &service, int clients, const QByteArray &request)
{
    const double rate = answersASecond(service.port(), request, clients, untilAllAreSent, uploads);
    QDir media(service.dataDir() + QStringLiteral("/media"));
    const QStringList stored = media.entryList(QDir::Files);
    for (const QString &name : stored)
        media.remove(name);
    return stored.size() == uploads ? rate : 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption program(QStringLiteral("service"),
                                     QStringLiteral("Measure the service at PATH."),
                                     QStringLiteral("PATH"));
    parser.addOption(program);
    parser.process(app);

    LocalServiceProcess service;
    if (parser.isSet(program))
        service.setProgram(parser.value(program));
    if (!service.start())
        return 1;
    service.post("CreateAccount",
                 "Password2=secret&Username=m1&Password1=secret&EmailAddress=m1@example.org");
    UploadRequest upload;
    upload.media = QByteArray(5L * 1024 * 1024, 'm');
    const QByteArray body = upload.body();
    const QByteArray request = upload.header(body, service.host()) + body;
    const QByteArray put = "PUT /photo HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n"
                           "Content-Length: "
        + QByteArray::number(body.size()) + "\r\n\r\n" + body;

    FileServer peer;
    const bool hasPeer = peer.start();
    if (!hasPeer)
        out << "there is no nginx here to compare with\n";
    for (const int clients : {1, 8, 64}) {
        Runs own;
        Runs ratios;
        for (int run = 0; run < runs; ++run) {
            own.add(uploadRate(service, clients, request));
            const double stored =
                hasPeer ? answersASecond(peer.port(), put, clients, untilAllAreSent, uploads) : 0;
            if (stored > 0)
                ratios.add(own.last() / stored);
        }
        out << clients << " at a time: CreateAuction with 5 MB " << own.text() << " a second";
        if (hasPeer)
            out << ", " << ratios.text() << " of the peer's";
        out << '\n';
        out.flush();
    }
    return 0;
}
