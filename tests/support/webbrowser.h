// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QNetworkAccessManager>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/**
 * A real Chromium without a window, worked as a visitor works it: pages opened, elements found by
 * CSS selector, clicked and typed into.
 *
 * Starting takes seconds; share one among a test's functions. open() waits until the page is
 * loaded; a click may come back before the page it leads to is there, so what follows one is tried
 * with QTRY_COMPARE. A failed operation is false or empty, and error() says why. The browser ends
 * with this object.
 */
class WebBrowser : public QObject
{
    Q_OBJECT

public:
    explicit WebBrowser(QObject *parent = nullptr);
    ~WebBrowser() override;

    bool start(int width = 1200, int height = 1000);

    bool open(const QString &url);
    QString url();
    QString title();
    /** The page's elements as they stand, as HTML. */
    QString source();

    int count(const QString &selector);
    QString text(const QString &selector);
    QString attribute(const QString &selector, const QString &name);
    /** How wide an image really is, in pixels; 0 = it was not loaded. */
    int imageWidth(const QString &selector);
    bool click(const QString &selector);
    /** Types into an element what it held before being removed. */
    bool type(const QString &selector, const QString &text);
    void deleteCookies();

    /** A PNG of what is in view. */
    QByteArray screenshot();

    QString error() const;

private:
    QJsonValue command(const QByteArray &method, const QString &path, const QJsonObject &body = {});
    QJsonValue elementCommand(const QByteArray &method, const QString &selector,
                              const QString &path, const QJsonObject &body = {});
    QString element(const QString &selector);
    int startDriver();

    QTemporaryDir m_profile;
    QProcess m_driver;
    QNetworkAccessManager m_network;
    QString m_driverUrl;
    QString m_session;
    QString m_error;
};
