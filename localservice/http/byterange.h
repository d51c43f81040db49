// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <optional>

/** The part of a file that a request asks for with its Range line. */
struct ByteRange
{
    qint64 first = 0;
    qint64 length = 0;

    /**
     * What @p line asks for of a file of @p size bytes. One range such as "bytes=3-5", "bytes=3-"
     * or "bytes=-5" is understood. Nothing = the whole file; a length of 0 = a part that the file
     * does not have.
     */
    static std::optional<ByteRange> parse(const QByteArray &line, qint64 size);
};
