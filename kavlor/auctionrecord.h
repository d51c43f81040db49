// SPDX-License-Identifier: MIT

#pragma once

#include <QDateTime>
#include <QString>

/**
 * The auction that a member is about to create.
 *
 * A plain value: the upload wizard owns one and fills it page by page, the confirmation page and
 * the request object only read it. Prices are whole US dollars.
 */
struct CAuctionRecord
{
    QString mediaPath; ///< absolute path of the chosen photo or video; empty = none chosen
    QString caption;
    QString description;
    qint32 category = 0;   ///< 0 = none
    QDateTime captureDate; ///< when the file was made; null = no file chosen
    quint32 startPrice = 1;
    quint32 reservePrice = 0;  ///< 0 = not set
    quint32 buyItNowPrice = 0; ///< 0 = not set
};
