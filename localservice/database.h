#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <mutex>

/**
 * The service's records in one SQLite file, safe from any thread.
 *
 * What is committed survives a kill: write-ahead log, every commit synced. One Session is open at
 * a time, so that what a session has read still holds when it writes.
 */
class Database
{
public:
    explicit Database(const QString &path);

    /** Opens the file and brings its tables up to date; an empty text, or why that failed. */
    QString open();

    /** One transaction. Without a commit() nothing of it remains. */
    class Session
    {
    public:
        explicit Session(Database &database);
        ~Session();
        Session(const Session &) = delete;
        Session &operator=(const Session &) = delete;

        /** Runs one statement with its values; a failure is remembered for commit(). */
        QSqlQuery run(const QString &statement, const QVariantList &values = {});
        /** False when the disk refused or any statement failed; then nothing was changed. */
        bool commit();

    private:
        std::unique_lock<std::mutex> m_lock;
        QSqlDatabase m_connection;
        bool m_isGood = false;
        bool m_isOver = false;
    };

private:
    QSqlDatabase connectionOfThisThread() const;

    QString m_path;
    std::mutex m_mutex;
};
