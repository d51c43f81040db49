// SPDX-License-Identifier: MIT

#pragma once

#include "datafolder.h"

#include <QByteArray>
#include <QCache>
#include <QImage>

#include <mutex>
#include <optional>

/**
 * Small pictures of the media on auction, safe from any thread.
 *
 * A photo is scaled into a square, upright and never enlarged; a clip, and a photo that cannot be
 * read, get a drawn picture instead. The last ones made are kept in memory.
 */
class Pictures
{
public:
    struct Picture
    {
        QByteArray bytes;
        QByteArray type; ///< "image/jpeg" or "image/png"
    };

    /** The edge of the square that members' devices show. */
    static constexpr int thumbnailEdge = 220;

    explicit Pictures(const DataFolder &folder);

    Picture thumbnail(const QString &media, int edge);

private:
    std::optional<Picture> cached(const QString &key);
    QImage scaled(const QString &media, int edge) const;

    const DataFolder &m_folder;
    std::mutex m_making;
    std::mutex m_mutex; // of the cache
    QCache<QString, Picture> m_cache;
};
