#include "httptolvex.h"

CHttpTolvex::CHttpTolvex(QObject *parent)
    : QObject(parent)
{
}
CHttpTolvex::~CHttpTolvex() = default;
void CHttpTolvex::getServiceTerms() { }
void CHttpTolvex::getCountryList() { }
void CHttpTolvex::getCategoryList(const QString &, const QString &) { }
void CHttpTolvex::getNotificationOptions(const QString &, const QString &) { }
void CHttpTolvex::setNotificationOptions(const QString &, const QString &,
                                         const CKavlorNotificationOptions &)
{
}
void CHttpTolvex::modifyAuction(const QString &, const QString &, quint32, quint32, quint32) { }
void CHttpTolvex::getMyAuctions(const QString &, const QString &) { }
void CHttpTolvex::validateLogin(const QString &, const QString &) { }
void CHttpTolvex::getRawMedia(const QString &, const QString &, quint32) { }
void CHttpTolvex::getThumbnail(const QString &, const QString &, quint32) { }
void CHttpTolvex::createAccount(const CKavlorUser &) { }
void CHttpTolvex::modifyAccount(const CKavlorUser &, const CKavlorUser &) { }
void CHttpTolvex::createAuction(const CKavlorUser &, const CAuctionRecord &) { }
void CHttpTolvex::cancelRequest(QString) { }
void CHttpTolvex::cancelRequest() { }
