#pragma once

#include <QObject>
#include <QPixmap>
#include <QString>

class CKavlorNotificationOptions;
class CKavlorUser;
struct CAuctionRecord;

/**
 * One request to the auction service.
 *
 * A frame makes one as its child, connects to the two result signals and calls one operation; it
 * may use the object again for the next request. User names and passwords are sent as given:
 * nothing is checked here.
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

signals:
    /** A text result. It is a success when @p error is empty and @p response holds no "ERROR". */
    void requestIsFinished(QString response, QString error);
    /** An image result, at most 220 x 220 pixels; a null pixmap when it could not be read. */
    void requestIsFinished(QPixmap aImage, QString error);

public slots:
    void cancelRequest(QString aErrorText);
    void cancelRequest();
};
