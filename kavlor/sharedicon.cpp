// SPDX-License-Identifier: MIT

#include "sharedicon.h"

#include <QCoreApplication>
#include <QHash>
#include <QPointer>

namespace {

// A child of the application object: pixmaps may not outlive that.
class IconShelf : public QObject
{
public:
    using QObject::QObject;

    static IconShelf *instance()
    {
        static QPointer<IconShelf> shelf;
        if (!shelf)
            shelf = new IconShelf(QCoreApplication::instance());
        return shelf.data();
    }
    QIcon icon(const QString &path)
    {
        QIcon &icon = m_icons[path];
        if (icon.isNull())
            icon = QIcon(path);
        return icon;
    }

private:
    QHash<QString, QIcon> m_icons;
};

} // namespace

QIcon sharedIcon(const QString &path)
{
    return IconShelf::instance()->icon(path);
}
