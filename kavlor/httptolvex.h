// SPDX-License-Identifier: MIT

#pragma once

#include "qhttpresponseheader.h"

#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QString>

class CConnector;
class CKavlorNotificationOptions;
class CKavlorUser;
class QAuthenticator;
class QHttp;
class QHttpRequestHeader;
class QTemporaryFile;
struct CAuctionRecord;

/**
 * One request to the auction service.
 *
 * A frame makes one as its child, connects to the two result signals and calls one operation; it
 * may use the object again for the next request. User names and passwords are sent as given:
 * nothing is checked here.
 *
 * When there is no network connection, an operation first asks for one and waits for it in an
 * event loop that keeps the member's clicks and keys out. When the window is closed meanwhile, or
 * the program is about to end, nothing more is heard of the operation. Every other outcome comes
 * through one of the two result signals. The time-out of a request is never called off: when it
 * passes, it cancels whatever the object is doing by then, and reports that, even when that is
 * nothing. A cancelled request ends by itself later, which gives a second, empty result.
 */
class CHttpTolvex : public QObject
{
    Q_OBJECT

public:
    explicit CHttpTolvex(QObject *parent = nullptr);
    ~CHttpTolvex() override;

    void getServiceTerms();
    void getCountryList();
    void getCategoryList(const QString &userName, const QString &password);
    void getNotificationOptions(const QString &userName, const QString &password);
    void setNotificationOptions(const QString &userName, const QString &password,
                                const CKavlorNotificationOptions &options);
    void modifyAuction(const QString &userName, const QString &password, quint32 auctionId,
                       quint32 reservePrice, quint32 buyItNowPrice);
    void getMyAuctions(const QString &userName, const QString &password);
    void validateLogin(const QString &userName, const QString &password);
    void getRawMedia(const QString &userName, const QString &password, quint32 auctionId);
    void getThumbnail(const QString &userName, const QString &password, quint32 auctionId);
    void createAccount(const CKavlorUser &user);
    void modifyAccount(const CKavlorUser &current, const CKavlorUser &edited);
    void createAuction(const CKavlorUser &user, const CAuctionRecord &auction);

    /** Whether a text result is a success: no error, and "ERROR" nowhere in the response. */
    static bool succeeded(const QString &response, const QString &error);

signals:
    /**
     * A text result; succeeded() tells what it means.
     * A reply with another status code than 200 or a redirect comes as two empty texts.
     */
    void requestIsFinished(QString response, QString error);
    /** An image result, at most 220 x 220 pixels; a null pixmap when it could not be read. */
    void requestIsFinished(QPixmap aImage, QString error);

public slots:
    void cancelRequest(QString aErrorText);
    void cancelRequest();
    void done(bool error);
    void slotAuthenticationRequired(const QString &hostName, quint16 port,
                                    QAuthenticator *authenticator);
    void readResponseHeader(const QHttpResponseHeader &responseHeader);
    void onConnectionStateChanged();
    void onConnectionSetupTimeout();

protected:
    void postForm(const QString &operationPath, const QByteArray &body, bool textReply);
    /** Waits for a connection when there is none, then sends. The object may be gone after it. */
    virtual void send(const QHttpRequestHeader &header, const QByteArray &body,
                      int responseTimeout);

private:
    bool waitForConnection();
    void dropTempFile();

    const QString m_baseUrl;
    QPointer<QHttp> m_http;
    int m_requestId = 0;    // 0 = not sent
    bool m_aborted = false; // the body is thrown away
    bool m_pending = false;
    QString m_errorText;
    QTemporaryFile *m_tempFile = nullptr;
    QString m_contentType;
    bool m_textReply = false;         // text whatever the content type
    QPointer<CConnector> m_connector; // process-wide; may be missing
    bool m_setupTimedOut = false;
    bool m_connected = false;
    bool m_daemonIsSilent = false; // it had its time to tell the state
};
