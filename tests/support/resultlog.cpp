// SPDX-License-Identifier: MIT

#include "resultlog.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

ResultLog::ResultLog(CHttpTolvex *http)
{
    follow(http);
}

void ResultLog::follow(CHttpTolvex *http)
{
    connect(http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            [this](const QString &response, const QString &error) {
                m_results.append({false, response, QPixmap(), error});
            });
    connect(http, qOverload<QPixmap, QString>(&CHttpTolvex::requestIsFinished), this,
            [this](const QPixmap &image, const QString &error) {
                m_results.append({true, QString(), image, error});
            });
}

qsizetype ResultLog::size() const
{
    return m_results.size();
}

ResultLog::Result ResultLog::at(qsizetype index) const
{
    return m_results.value(index);
}

QString ResultLog::textAt(qsizetype index) const
{
    if (index >= m_results.size())
        return QStringLiteral("no result");
    const Result &result = m_results.at(index);
    if (!result.isImage)
        return text(result.response, result.error);
    const QSize size = result.image.size();
    return QStringLiteral("image %1x%2 | %3")
        .arg(size.width())
        .arg(size.height())
        .arg(result.error);
}

QString ResultLog::text(const QString &response, const QString &error)
{
    return QStringLiteral("text %1 | %2").arg(response, error);
}

int temporaryFileCount()
{
    // A temporary file may have no name while it is open, and is found among the descriptors then.
    int count = 0;
    const QString folder = QDir::tempPath() + QLatin1Char('/');
    QDirIterator descriptors(QStringLiteral("/proc/self/fd"), QDir::Files | QDir::System);
    while (descriptors.hasNext()) {
        if (QFile::symLinkTarget(descriptors.next()).startsWith(folder))
            ++count;
    }
    return count + static_cast<int>(QDir(folder).entryList(QDir::Files).size());
}
