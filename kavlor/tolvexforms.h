// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

class CKavlorNotificationOptions;
class CKavlorUser;

/**
 * The bodies of the form operations, byte by byte as the service is sent them.
 *
 * Values are sent as given: nothing is checked here, and an empty value stays empty.
 */
namespace TolvexForms {

/** Of an operation that needs nobody to be signed in. */
QByteArray empty();
QByteArray login(const QString &userName, const QString &password);
/** Of an operation on one auction. */
QByteArray auction(const QString &userName, const QString &password, quint32 auctionId);
/** The two prices of an auction that can still be changed; 0 = not set. */
QByteArray prices(const QString &userName, const QString &password, quint32 auctionId,
                  quint32 reservePrice, quint32 buyItNowPrice);
/** The four alerts without the address they go to. */
QByteArray alerts(const QString &userName, const QString &password,
                  const CKavlorNotificationOptions &options);
QByteArray newAccount(const CKavlorUser &user);
/** Signed with the password of @p current, however it is changed. */
QByteArray changedAccount(const CKavlorUser &current, const CKavlorUser &edited);

} // namespace TolvexForms
