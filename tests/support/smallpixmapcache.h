// SPDX-License-Identifier: MIT

#pragma once

#include <QPixmap>
#include <QPixmapCache>

/**
 * While it lives, the toolkit's pixmap cache has room for little, and holds one picture that was
 * there first: what is cached anew whenever it is painted pushes that out.
 */
class SmallPixmapCache
{
public:
    explicit SmallPixmapCache(int room = 100) // KiB
    {
        QPixmapCache::clear();
        QPixmapCache::setCacheLimit(room);
        QPixmapCache::insert(m_name, QPixmap(8, 8));
    }
    ~SmallPixmapCache()
    {
        QPixmapCache::setCacheLimit(m_limit);
    }
    Q_DISABLE_COPY_MOVE(SmallPixmapCache)

    /** The first picture is still there. */
    bool isLeftToOthers() const
    {
        QPixmap found;
        return QPixmapCache::find(m_name, &found);
    }

private:
    const QString m_name = QStringLiteral("a thumbnail");
    const int m_limit = QPixmapCache::cacheLimit();
};
