// SPDX-License-Identifier: MIT

#include "webbrowser.h"

#include "patience.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>

namespace {

// The key under which the driver names an element.
const QString elementKey = QStringLiteral("element-6066-11e4-a52e-4f735466cecf");

QJsonObject capabilities(const QString &profile, int width, int height)
{
    const QJsonArray arguments{
        QStringLiteral("--headless"),
        QStringLiteral("--no-sandbox"), // which a browser refuses to root otherwise
        QStringLiteral("--disable-gpu"),
        QStringLiteral("--disable-quic"),
        QStringLiteral("--disable-dev-shm-usage"),
        QStringLiteral("--no-first-run"),
        QStringLiteral("--disable-background-networking"),
        QStringLiteral("--disable-component-update"),
        QStringLiteral("--disable-sync"),
        QStringLiteral("--user-data-dir=") + profile,
        QStringLiteral("--window-size=%1,%2").arg(width).arg(height),
    };
    const QJsonObject options{{QStringLiteral("args"), arguments}};
    const QJsonObject match{{QStringLiteral("goog:chromeOptions"), options}};
    return {{QStringLiteral("capabilities"), QJsonObject{{QStringLiteral("alwaysMatch"), match}}}};
}

} // namespace

WebBrowser::WebBrowser(QObject *parent)
    : QObject(parent)
{
    m_driver.setProcessChannelMode(QProcess::MergedChannels);
}

WebBrowser::~WebBrowser()
{
    if (!m_session.isEmpty())
        command("DELETE", {});
    m_driver.terminate();
    if (!m_driver.waitForFinished(patience))
        m_driver.kill();
    m_driver.waitForFinished();
}

bool WebBrowser::start(int width, int height)
{
    const int port = startDriver();
    if (port == 0) {
        m_error = QStringLiteral("the browser's driver did not start");
        return false;
    }
    m_driverUrl = QStringLiteral("http://127.0.0.1:%1/session").arg(port);
    const QJsonValue session = command("POST", {}, capabilities(m_profile.path(), width, height));
    m_session = session[QStringLiteral("sessionId")].toString();
    return !m_session.isEmpty();
}

// Which port the driver chose; 0 = it did not start.
int WebBrowser::startDriver()
{
    m_driver.start(QStringLiteral("chromedriver"), {QStringLiteral("--port=0")});
    static const QRegularExpression started(QStringLiteral("started successfully on port (\\d+)"));
    QByteArray said;
    QElapsedTimer waited;
    waited.start();
    while (!waited.hasExpired(patience) && m_driver.state() != QProcess::NotRunning) {
        m_driver.waitForReadyRead(patience);
        said += m_driver.readAll();
        const QRegularExpressionMatch match = started.match(QString::fromLocal8Bit(said));
        if (match.hasMatch())
            return match.captured(1).toInt();
    }
    return 0;
}

QJsonValue WebBrowser::command(const QByteArray &method, const QString &path,
                               const QJsonObject &body)
{
    const QString session = m_session.isEmpty() ? QString() : QLatin1Char('/') + m_session;
    QNetworkRequest request{QUrl(m_driverUrl + session + path)};
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setTransferTimeout(patience);
    const QByteArray content = method == "POST" ? QJsonDocument(body).toJson() : QByteArray();
    QNetworkReply *reply = m_network.sendCustomRequest(request, method, content);
    QEventLoop loop;
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const QJsonValue value =
        QJsonDocument::fromJson(reply->readAll()).object().value(QStringLiteral("value"));
    const bool isGood = reply->error() == QNetworkReply::NoError;
    m_error =
        isGood ? QString() : reply->errorString() + value[QStringLiteral("message")].toString();
    reply->deleteLater();
    return isGood ? value : QJsonValue();
}

QString WebBrowser::element(const QString &selector)
{
    const QJsonValue found = command("POST", QStringLiteral("/element"),
                                     {{QStringLiteral("using"), QStringLiteral("css selector")},
                                      {QStringLiteral("value"), selector}});
    return found[elementKey].toString();
}

QJsonValue WebBrowser::elementCommand(const QByteArray &method, const QString &selector,
                                      const QString &path, const QJsonObject &body)
{
    const QString id = element(selector);
    if (id.isEmpty())
        return {};
    return command(method, QStringLiteral("/element/") + id + path, body);
}

bool WebBrowser::open(const QString &url)
{
    command("POST", QStringLiteral("/url"), {{QStringLiteral("url"), url}});
    return m_error.isEmpty();
}

QString WebBrowser::url()
{
    return command("GET", QStringLiteral("/url")).toString();
}

QString WebBrowser::title()
{
    return command("GET", QStringLiteral("/title")).toString();
}

QString WebBrowser::source()
{
    return command("GET", QStringLiteral("/source")).toString();
}

int WebBrowser::count(const QString &selector)
{
    const QJsonValue found = command("POST", QStringLiteral("/elements"),
                                     {{QStringLiteral("using"), QStringLiteral("css selector")},
                                      {QStringLiteral("value"), selector}});
    return static_cast<int>(found.toArray().size());
}

QString WebBrowser::text(const QString &selector)
{
    return elementCommand("GET", selector, QStringLiteral("/text")).toString();
}

QString WebBrowser::attribute(const QString &selector, const QString &name)
{
    return elementCommand("GET", selector, QStringLiteral("/attribute/") + name).toString();
}

int WebBrowser::imageWidth(const QString &selector)
{
    return elementCommand("GET", selector, QStringLiteral("/property/naturalWidth")).toInt();
}

bool WebBrowser::click(const QString &selector)
{
    elementCommand("POST", selector, QStringLiteral("/click"));
    return m_error.isEmpty();
}

bool WebBrowser::type(const QString &selector, const QString &text)
{
    elementCommand("POST", selector, QStringLiteral("/clear"));
    if (m_error.isEmpty())
        elementCommand("POST", selector, QStringLiteral("/value"),
                       {{QStringLiteral("text"), text}});
    return m_error.isEmpty();
}

void WebBrowser::deleteCookies()
{
    command("DELETE", QStringLiteral("/cookie"));
}

QByteArray WebBrowser::screenshot()
{
    return QByteArray::fromBase64(
        command("GET", QStringLiteral("/screenshot")).toString().toLatin1());
}

QString WebBrowser::error() const
{
    return m_error;
}
