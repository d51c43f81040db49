// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QPair>

/**
 * A CreateAuction request as a member's device writes it, with every piece open to change.
 *
 * It starts as a good one of member "m1", password "secret".
 */
struct UploadRequest
{
    UploadRequest();

    QByteArray boundary = "0123456789abcdef0123456789abcdef";
    QByteArray contentType; ///< empty = the device's own, with a comma before the boundary
    QList<QPair<QByteArray, QByteArray>> fields;
    QByteArray mediaName = "1.jpg";
    QByteArray media;
    qint64 announcedMediaBytes = -1; ///< -1 = as many as there are
    int mediaPosition = -1;          ///< before which field the media stands; -1 = after the last

    void set(const QByteArray &field, const QByteArray &value);
    void remove(const QByteArray &field);

    QByteArray body() const;
    /** Header and body for the service at @p host. */
    QByteArray bytes(const QString &host) const;
    /** A header that announces @p body. */
    QByteArray header(const QByteArray &body, const QString &host) const;

    static QByteArray encoded(const QImage &image, const char *format);
};
