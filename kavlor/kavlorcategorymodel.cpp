// SPDX-License-Identifier: MIT

#include "kavlorcategorymodel.h"

#include "drawings.h"
#include "kavlorcategorystore.h"
#include "liststyle.h"

#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

namespace {

constexpr int cellHeight = 87;
constexpr int categoryWidth = 400;
constexpr int markerWidth = 40;
constexpr int separatorTop = cellHeight - 1;
constexpr int nameHeightAboveChildren = 27;
constexpr int childrenTop = 21;
constexpr int childrenHeight = 65;

// The service's top-level categories have fixed identifiers; only they have a picture.
QString iconPath(int identifier)
{
    switch (identifier) {
    case 1:
        return QStringLiteral(":/Public Figures.png");
    case 2:
        return QStringLiteral(":/Breaking News.png");
    case 3:
        return QStringLiteral(":/Event.png");
    case 4:
        return QStringLiteral(":/Sports.png");
    case 5:
        return QStringLiteral(":/Funny.png");
    case 6:
        return QStringLiteral(":/Places.png");
    case 7:
        return QStringLiteral(":/Party.png");
    default:
        return {};
    }
}

QString childrenLine(int identifier)
{
    const CKavlorCategoryStore &store = CKavlorCategoryStore::instanceOrEmpty();
    const QList<int> children = store.children(identifier);
    QStringList names;
    for (int child : children)
        names.append(store.name(child));
    return names.join(QLatin1String(", ")).toLower();
}

QPixmap chosenBackground(int column, qreal pixelRatio)
{
    const QString key = QStringLiteral("::BGchosen%1").arg(column);
    QPixmap background;
    if (QPixmapCache::find(key, &background) && background.devicePixelRatio() == pixelRatio)
        return background;

    background = QPixmap(QStringLiteral(":/mainCellBG.png"))
                     .scaled(CKavlorCategoryModel::cellSize(column) * pixelRatio,
                             Qt::IgnoreAspectRatio, Qt::FastTransformation);
    background.setDevicePixelRatio(pixelRatio);
    QPixmapCache::insert(key, background);
    return background;
}

QPixmap plainBackground(int column, qreal pixelRatio)
{
    const QString key = QStringLiteral("::BG%1").arg(column);
    QPixmap background;
    if (QPixmapCache::find(key, &background) && background.devicePixelRatio() == pixelRatio)
        return background;

    background = QPixmap(CKavlorCategoryModel::cellSize(column) * pixelRatio);
    background.setDevicePixelRatio(pixelRatio);
    background.fill(Qt::transparent);
    QPixmapCache::insert(key, background);
    return background;
}

void paintMarker(QPainter *painter, const QString &marker)
{
    painter->setFont(listStyle().markerFont);
    painter->setPen(listStyle().markerColor);
    painter->drawText(QRect(0, 0, markerWidth, separatorTop),
                      Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, marker);
}

void paintName(QPainter *painter, const QRect &area, int flags, bool topLevel, const QString &name)
{
    painter->setFont(topLevel ? listStyle().titleFont : listStyle().lowerNameFont);
    painter->setPen(topLevel ? listStyle().titleColor : listStyle().lowerNameColor);
    painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter | flags, name);
}

void paintChildren(QPainter *painter, const QRect &area, bool chosen, const QString &children)
{
    painter->setFont(listStyle().childrenFont);
    painter->setPen(chosen ? listStyle().chosenChildrenColor : listStyle().childrenColor);
    painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, children);
}

void paintCategory(QPainter *painter, int identifier, bool topLevel, bool chosen,
                   const QString &children)
{
    int left = 0;
    const QString icon = iconPath(identifier);
    if (!icon.isEmpty()) {
        const bool isEnlarged = painter->device()->devicePixelRatioF() > 1;
        painter->drawImage(QRect(0, 0, separatorTop, separatorTop),
                           QImage(isEnlarged ? largeDrawing(icon) : icon));
        left = separatorTop;
    }

    const QString name = CKavlorCategoryStore::instanceOrEmpty().name(identifier);
    const int width = categoryWidth - left;
    if (children.isEmpty()) {
        paintName(painter, QRect(left, 0, width, separatorTop), Qt::TextWordWrap, topLevel, name);
        return;
    }
    // Not clipped to its area, which is too low for letters like g and p.
    paintName(painter, QRect(left, 0, width, nameHeightAboveChildren),
              Qt::TextSingleLine | Qt::TextDontClip, topLevel, name);
    paintChildren(painter, QRect(left, childrenTop, width, childrenHeight), chosen, children);
}

} // namespace

CKavlorCategoryModel::CKavlorCategoryModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void CKavlorCategoryModel::setPixelRatio(qreal pixelRatio)
{
    m_pixelRatio = pixelRatio;
}

QSize CKavlorCategoryModel::cellSize(int column)
{
    return {column == CategoryColumn ? categoryWidth : markerWidth, cellHeight};
}

void CKavlorCategoryModel::showLevel(int parent)
{
    const int oldCount = rowCount();
    if (oldCount > 0) {
        beginRemoveRows({}, 0, oldCount - 1);
        m_shown.clear();
        endRemoveRows();
    }

    m_levelParent = parent;
    m_hasParent = parent != 0;
    const QList<int> level = CKavlorCategoryStore::instanceOrEmpty().children(parent);
    if (!level.isEmpty()) {
        beginInsertRows({}, 0, static_cast<int>(level.size()) - 1);
        m_shown = level;
        endInsertRows();
    }

    if (rowCount() != oldCount)
        emit rowCountChanged(oldCount, rowCount());
}

int CKavlorCategoryModel::levelParent() const
{
    return m_levelParent;
}

void CKavlorCategoryModel::setChosen(int category)
{
    if (category == m_chosen)
        return;
    const int before = m_chosen;
    m_chosen = category;
    markRowOf(before);
    markRowOf(category);
}

int CKavlorCategoryModel::identifierAt(int row) const
{
    return m_shown.value(row, -1);
}

QString CKavlorCategoryModel::cellText(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    const int category = identifierAt(index.row());
    const QString name = CKavlorCategoryStore::instanceOrEmpty().name(category);
    const QString children = childrenLine(category);
    switch (index.column()) {
    case BackColumn:
        return m_hasParent ? tr("One level up") : QString();
    case CategoryColumn: {
        const QString text = children.isEmpty() ? name : tr("%1: %2").arg(name, children);
        return category == m_chosen ? tr("%1, chosen").arg(text) : text;
    }
    default:
        return children.isEmpty() ? QString() : tr("What is in %1").arg(name);
    }
}

int CKavlorCategoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

int CKavlorCategoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : columns;
}

QVariant CKavlorCategoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role == Qt::DecorationRole)
        return cell(identifierAt(index.row()), index.column());
    return {};
}

void CKavlorCategoryModel::markRowOf(int category)
{
    const int row = static_cast<int>(m_shown.indexOf(category));
    if (row >= 0)
        emit dataChanged(index(row, 0), index(row, columns - 1), {Qt::DecorationRole});
}

QPixmap CKavlorCategoryModel::cell(int identifier, int column) const
{
    const QString key = QStringLiteral("::category%1,%2,%3")
                            .arg(identifier)
                            .arg(column)
                            .arg(identifier == m_chosen ? 1 : 0);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap) && pixmap.devicePixelRatio() == m_pixelRatio)
        return pixmap;

    pixmap = paintCell(identifier, column);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

QPixmap CKavlorCategoryModel::paintCell(int identifier, int column) const
{
    const bool chosen = identifier == m_chosen;
    QPixmap pixmap =
        chosen ? chosenBackground(column, m_pixelRatio) : plainBackground(column, m_pixelRatio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_pixelRatio != 1);
    if (column == BackColumn) {
        if (m_hasParent)
            paintMarker(&painter, QStringLiteral("<"));
    } else if (column == CategoryColumn) {
        paintCategory(&painter, identifier, !m_hasParent, chosen, childrenLine(identifier));
    } else if (!childrenLine(identifier).isEmpty()) {
        paintMarker(&painter, QStringLiteral(">"));
    }
    painter.setPen(listStyle().separatorColor);
    painter.drawLine(0, separatorTop, cellSize(column).width(), separatorTop);
    return pixmap;
}
