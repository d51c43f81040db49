#pragma once

#include "accounts.h"
#include "auctions.h"
#include "datafolder.h"
#include "operations.h"
#include "website.h"

#include <functional>
#include <memory>

namespace httplib {
class ContentReader;
class Server;
struct Request;
struct Response;
} // namespace httplib

/**
 * The service's HTTP side, on this machine's loopback address alone.
 *
 * Requests are answered on threads of its own, one connection a request. An operation is always
 * answered with status 200, since members' devices take a refused status for an empty success; so
 * a body that is too long or cut short is read as far as it comes and then refused in words.
 */
class HttpService
{
public:
    HttpService(Accounts &accounts, Auctions &auctions, Operations &operations, WebSite &site,
                const DataFolder &folder, qint64 maxMediaBytes);
    ~HttpService();

    /** Takes a port, 0 = any free one; the port taken, or 0. */
    int bind(int port);
    /** Answers requests until stop() is called from another thread. */
    void run();
    bool isRunning() const;
    /** Lets the requests in progress end, then makes run() return. */
    void stop();

private:
    void prepareServer();
    void addOperations();
    void addWebSite();
    void answerOperation(const httplib::Request &request, httplib::Response &response,
                         const httplib::ContentReader &reader);
    Operations::Reply readForm(const QString &operation, const httplib::ContentReader &reader);
    Operations::Reply readUpload(const httplib::Request &request,
                                 const httplib::ContentReader &reader);
    void answerPost(const httplib::Request &request, httplib::Response &response,
                    const httplib::ContentReader &reader);

    Accounts &m_accounts;
    Auctions &m_auctions;
    Operations &m_operations;
    WebSite &m_site;
    const DataFolder &m_folder;
    qint64 m_maxMediaBytes;
    std::unique_ptr<httplib::Server> m_server;
};
