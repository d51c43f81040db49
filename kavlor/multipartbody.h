// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class CKavlorUser;
struct CAuctionRecord;

/**
 * The body of the one operation that is no form: the upload that creates an auction, with the photo
 * or clip in it.
 */

/** What parts such a body; another one at each call, the same sequence at every start. */
QByteArray makeBoundary();

/** The content type that announces it. */
QString multipartType(const QByteArray &boundary);

/**
 * The body, byte by byte, in memory once. Nothing when the media file cannot be read as far as it
 * is said to reach and no further, or is too large for the memory.
 */
std::optional<QByteArray> multipartBody(const QByteArray &boundary, const CKavlorUser &user,
                                        const CAuctionRecord &auction);
