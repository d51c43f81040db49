// SPDX-License-Identifier: MIT

// How fast the local service takes a photo of 5 MB, in milliseconds for each, against nginx that
// only writes the same bytes into a file. The service also reads the form and syncs photo and
// record before it answers. Without an nginx on this machine there is nothing to compare with, and
// the service is measured against itself.

#include "fileserver.h"
#include "localserviceprocess.h"
#include "rates.h"
#include "table.h"
#include "uploadrequest.h"

#include <QCoreApplication>
#include <QDir>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds untilAllAreSent{0};

double uploadTime(const LocalServiceProcess &service, int clients, const QByteArray &request,
                  int uploads)
{
    const double rate = answersASecond(service.port(), request, clients, untilAllAreSent, uploads);
    QDir media(service.dataDir() + QStringLiteral("/media"));
    const QStringList stored = media.entryList(QDir::Files);
    for (const QString &name : stored)
        media.remove(name);
    return stored.size() == uploads ? 1000 / rate : 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    Table table(app, QStringLiteral("Uploads to the local service, in milliseconds for each"));
    LocalServiceProcess service;
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

    const int uploads = table.scaled(64, 2);
    const auto own = [&](int clients) { return uploadTime(service, clients, request, uploads); };
    FileServer server;
    const bool hasPeer = server.start();
    const Table::Side nginx{
        QStringLiteral("nginx"), [&](int clients) {
            return 1000 / answersASecond(server.port(), put, clients, untilAllAreSent, uploads);
        }};
    table.compareSizes(QStringLiteral("CreateAuction with 5 MB, %1 at a time"), hasPeer ? 4 : 0,
                       {1, 8, 64}, {QString(), own},
                       hasPeer ? nginx : Table::Side{QStringLiteral("itself"), own});
    return table.exitCode();
}
