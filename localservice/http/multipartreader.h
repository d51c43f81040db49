// SPDX-License-Identifier: MIT

#pragma once

#include "fields.h"

#include <QByteArray>
#include <QString>

#include <functional>

/**
 * Reads a multipart/form-data body while it arrives, its parts in any order.
 *
 * The HTTP library has a reader of its own, and takes what members' devices send. But it keeps the
 * length to itself that a part announces, so that media which a device cut short would be put on
 * auction, and it finds nothing wrong with a body that never holds its boundary. Both are refused
 * here, with the reason.
 *
 * Text parts are kept as Latin-1 fields. The bytes of the one media part go to the sink as they
 * come and are never held here. The first thing found wrong ends the reading; what follows is
 * passed over, and error() says what it was.
 */
class MultipartReader
{
public:
    /** Takes bytes of the media; false when they cannot be kept. */
    using MediaSink = std::function<bool(const QByteArray &bytes)>;

    MultipartReader(const QByteArray &boundary, qint64 maxMediaBytes, MediaSink sink);

    /** The boundary that a content type names, after a comma or a semicolon; empty = none. */
    static QByteArray boundaryOf(const QByteArray &contentType);

    void feed(const QByteArray &bytes);
    /** Says that the body is over: a body without its closing boundary was cut short. */
    void finish();

    /** How much is kept in memory. */
    qint64 heldBytes() const;
    QString error() const;
    const Fields &fields() const;
    bool hasMedia() const;
    qint64 mediaBytes() const;
    /** The media's file name as announced, such as "1.jpg". */
    QString mediaName() const;

private:
    enum State { Preamble, AfterBoundary, PartHeader, PartBody, Epilogue, Failed };

    bool step();
    bool skipPreamble();
    bool readBoundaryEnd();
    bool readPartHeader();
    bool readPartBody();
    void beginPart(const QByteArray &header);
    void take(const QByteArray &bytes);
    void endPart();
    bool fail(const QString &reason);

    QByteArray m_delimiter;
    qint64 m_maxMediaBytes;
    MediaSink m_sink;

    State m_state = Preamble;
    QString m_error;
    QByteArray m_buffer;
    Fields m_fields;
    qint64 m_textBytes = 0; // with what the parts are called

    int m_parts = 0;
    QByteArray m_partName;
    QByteArray m_partText;
    qint64 m_announcedBytes = -1;
    bool m_isMediaPart = false;
    bool m_hasMedia = false;
    qint64 m_mediaBytes = 0;
    QString m_mediaName;
};
