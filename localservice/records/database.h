// SPDX-License-Identifier: MIT

#pragma once

#include "result.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <mutex>

class Connection;

/**
 * The service's records in one SQLite file, safe from any thread.
 *
 * What is committed survives a kill: write-ahead log, every commit synced. A session that writes is
 * alone with its kind, so that what it has read still holds when it writes; sessions that read
 * only see the records of one moment and wait for nobody.
 *
 * A statement that fails is told apart from one that finds nothing, and is complained of with one
 * line on the standard error.
 */
class Database
{
public:
    using Row = QVariantList;
    using Rows = QList<Row>;

    enum Contents {
        MayBeEmpty, ///< the tables are made if there are none
        MustBeThere ///< a file without the service's tables is refused, not filled
    };

    explicit Database(const QString &path);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /**
     * Opens the file, checks every page and every reference in it, and brings its tables up to
     * date.
     *
     * On a disk without any room it is opened for this service alone, without the file in which
     * SQLite tells other programs of it. Changes fail then until there is room again.
     */
    Result<void> open(Contents contents);

    /** Whether the file at @p path is a database with this service's tables. It is only read. */
    static bool isService(const QString &path);

    enum Access { Reading, Writing };

    /** One transaction. Without a commit() nothing of it remains. */
    class Session
    {
    public:
        explicit Session(Database &database, Access access = Reading);
        ~Session();
        Session(const Session &) = delete;
        Session &operator=(const Session &) = delete;

        /** All rows that a statement finds. */
        Result<Rows> select(const QString &statement, const QVariantList &values = {});
        /** Runs a statement that changes something; a failure is kept for commit(). */
        void change(const QString &statement, const QVariantList &values = {});
        /** The number of the row that the last change() added. It counts once commit() is ok. */
        qint64 addedRow() const;
        /** Fails when the disk refused or any statement failed; then nothing was changed. */
        Result<void> commit();

    private:
        Result<void> begin(bool isAlone);
        Result<Rows> run(const QString &statement, const QVariantList &values);

        Access m_access;
        std::unique_lock<std::timed_mutex> m_lock;
        Connection *m_connection;
        std::optional<Failure> m_failure;
        qint64 m_addedRow = 0;
        bool m_isOpen = false;
    };

private:
    Connection &connectionOfThisThread();
    Result<void> openConnection();
    Result<void> check();
    Result<void> makeTables(Contents contents);

    QString m_path;
    bool m_isAlone = false; // one connection for all threads, and for no other program
    std::timed_mutex m_writing;
    std::mutex m_guard; // of the connections
    QHash<Qt::HANDLE, std::shared_ptr<Connection>> m_connections;
};
