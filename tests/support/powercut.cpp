// SPDX-License-Identifier: MIT

#include "powercut.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qsizetype page = 4096;

// As the preloaded library makes them.
QByteArray keyOf(const QString &path)
{
    struct statx is = {};
    if (::statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW,
                STATX_INO | STATX_BTIME, &is)
        != 0)
        return {};
    return QByteArray::number(quint64(is.stx_ino)) + '-'
        + QByteArray::number(qint64(is.stx_btime.tv_sec)) + '-'
        + QByteArray::number(is.stx_btime.tv_nsec);
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QFileInfoList entries(const QString &folder)
{
    return QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System
                                      | QDir::NoDotAndDotDot);
}

bool chance()
{
    return QRandomGenerator::global()->bounded(2) == 0;
}

} // namespace

PowerCut::PowerCut(const QString &root)
    : m_root(root)
{
    QFile::copy(QStringLiteral(KAVLOR_SYNCED_ONLY), m_library.filePath(QStringLiteral("only.so")));
    takeStock(m_root);
}

QList<QPair<QString, QString>> PowerCut::preload() const
{
    return {{QStringLiteral("LD_PRELOAD"), m_library.filePath(QStringLiteral("only.so"))},
            {QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0")},
            {QStringLiteral("KAVLOR_SYNC_ROOT"), m_root},
            {QStringLiteral("KAVLOR_SYNC_STORE"), m_store.path()}};
}

bool PowerCut::cut(Rest rest)
{
    m_present.clear();
    findAll(m_root);
    const QTemporaryDir left(m_root + QStringLiteral(".XXXXXX"));
    if (!left.isValid() || !rebuildFolder(keyOf(m_root), left.path(), rest))
        return false;
    const QFileInfoList before = entries(m_root);
    for (const QFileInfo &entry : before) {
        if (entry.isDir() ? !QDir(entry.filePath()).removeRecursively()
                          : !QFile::remove(entry.filePath()))
            return false;
    }
    const QFileInfoList after = entries(left.path());
    for (const QFileInfo &entry : after) {
        if (!QDir().rename(entry.filePath(), m_root + QLatin1Char('/') + entry.fileName()))
            return false;
    }
    const QStringList noted = QDir(m_store.path()).entryList(QDir::Files);
    for (const QString &name : noted)
        QFile::remove(m_store.filePath(name));
    takeStock(m_root);
    return true;
}

void PowerCut::takeStock(const QString &folder)
{
    QByteArray lines;
    const QFileInfoList found = entries(folder);
    for (const QFileInfo &entry : found) {
        lines += keyOf(entry.filePath()) + ' ' + QFile::encodeName(entry.fileName()) + '\n';
        if (entry.isDir())
            takeStock(entry.filePath());
        else
            QFile::copy(entry.filePath(), noted(keyOf(entry.filePath())));
    }
    write(noted(keyOf(folder)), lines);
}

void PowerCut::findAll(const QString &folder)
{
    m_present.insert(keyOf(folder), folder);
    const QFileInfoList found = entries(folder);
    for (const QFileInfo &entry : found) {
        if (entry.isDir())
            findAll(entry.filePath());
        else
            m_present.insert(keyOf(entry.filePath()), entry.filePath());
    }
}

QString PowerCut::noted(const QByteArray &key) const
{
    return m_store.filePath(QString::fromLatin1(key));
}

PowerCut::Names PowerCut::syncedNames(const QByteArray &folderKey) const
{
    Names names;
    const QList<QByteArray> lines = contents(noted(folderKey)).split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype blank = line.indexOf(' ');
        if (blank > 0)
            names.insert(line.mid(blank + 1), line.left(blank));
    }
    return names;
}

PowerCut::Names PowerCut::presentNames(const QString &folder)
{
    Names names;
    const QFileInfoList found = folder.isEmpty() ? QFileInfoList() : entries(folder);
    for (const QFileInfo &entry : found)
        names.insert(QFile::encodeName(entry.fileName()), keyOf(entry.filePath()));
    return names;
}

bool PowerCut::rebuildFolder(const QByteArray &key, const QString &target, Rest rest)
{
    const Names synced = syncedNames(key);
    const Names present = presentNames(m_present.value(key));
    const QList<QByteArray> all = synced.keys() + present.keys();
    const QSet<QByteArray> names(all.cbegin(), all.cend());
    for (const QByteArray &name : names) {
        const bool isPresent = rest == ThisAndThat && chance();
        const QByteArray kept = (isPresent ? present : synced).value(name);
        const QString path = target + QLatin1Char('/') + QFile::decodeName(name);
        // One that is gone is known by what was noted of it: a folder has been one all along.
        const bool isFolder = QFileInfo(m_present.value(kept)).isDir();
        if (kept.isEmpty())
            continue;
        if (isFolder ? !QDir().mkdir(path) || !rebuildFolder(kept, path, rest)
                     : !rebuildFile(kept, path, rest))
            return false;
    }
    return true;
}

bool PowerCut::rebuildFile(const QByteArray &key, const QString &target, Rest rest)
{
    const QByteArray synced = contents(noted(key));
    if (rest == NothingElse || !m_present.contains(key))
        return write(target, synced);
    const QByteArray present = contents(m_present.value(key));
    QByteArray left = chance() ? synced : present; // of its length
    for (qsizetype at = 0; at < left.size(); at += page) {
        const QByteArray &source = chance() ? synced : present;
        const qsizetype length = std::min(page, left.size() - at);
        left.replace(at, length, source.mid(at, length).leftJustified(length, '\0'));
    }
    return write(target, left);
}
