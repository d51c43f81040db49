// SPDX-License-Identifier: MIT

#include "database.h"

#include <QDebug>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QThread>

#include <chrono>
#include <map>

namespace {

// How long a session waits for one that writes, ours or another program's. Members' devices wait
// for an answer for ten seconds.
constexpr std::chrono::milliseconds patience{3000};

constexpr int tablesVersion = 2;

const char *const tables[] = {
    "CREATE TABLE IF NOT EXISTS members ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, username TEXT NOT NULL UNIQUE,"
    " password_hash TEXT NOT NULL, first_name TEXT NOT NULL, last_name TEXT NOT NULL,"
    " email TEXT NOT NULL, paypal TEXT NOT NULL, country TEXT NOT NULL, gender TEXT NOT NULL,"
    " language TEXT NOT NULL, twitter_name TEXT NOT NULL,"
    " notify_bid INTEGER NOT NULL DEFAULT 1, notify_end INTEGER NOT NULL DEFAULT 1,"
    " notify_view INTEGER NOT NULL DEFAULT 0, notify_question INTEGER NOT NULL DEFAULT 1)",

    "CREATE TABLE IF NOT EXISTS auctions ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, member INTEGER NOT NULL REFERENCES members(id),"
    " category INTEGER NOT NULL, title TEXT NOT NULL, description TEXT NOT NULL,"
    " captured TEXT NOT NULL, media TEXT NOT NULL UNIQUE, start_price INTEGER NOT NULL,"
    " reserve_price INTEGER NOT NULL, buy_price INTEGER NOT NULL, created INTEGER NOT NULL,"
    " ends INTEGER NOT NULL, state TEXT NOT NULL DEFAULT 'running', views INTEGER NOT NULL DEFAULT "
    "0,"
    " sold_price INTEGER NOT NULL DEFAULT 0, buyer TEXT NOT NULL DEFAULT '')",
    "CREATE INDEX IF NOT EXISTS auctions_by_member ON auctions(member)",
    "CREATE INDEX IF NOT EXISTS auctions_by_end ON auctions(state, ends)",

    "CREATE INDEX IF NOT EXISTS auctions_by_category ON auctions(state, category, ends)",

    // The words of the auctions; a title or description never changes.
    "CREATE VIRTUAL TABLE IF NOT EXISTS auction_words USING fts5("
    " title, description, content = 'auctions', content_rowid = 'id',"
    " tokenize = 'unicode61 remove_diacritics 2')",
    "CREATE TRIGGER IF NOT EXISTS auction_is_new AFTER INSERT ON auctions BEGIN"
    " INSERT INTO auction_words (rowid, title, description)"
    " VALUES (new.id, new.title, new.description); END",
    "INSERT INTO auction_words (auction_words) VALUES ('rebuild')",

    "CREATE TABLE IF NOT EXISTS bids ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, auction INTEGER NOT NULL REFERENCES auctions(id),"
    " bidder TEXT NOT NULL, email TEXT NOT NULL, amount INTEGER NOT NULL, placed INTEGER NOT NULL)",
    "CREATE INDEX IF NOT EXISTS bids_by_auction ON bids(auction, amount)",

    "CREATE TABLE IF NOT EXISTS mails ("
    " id INTEGER PRIMARY KEY AUTOINCREMENT, recipient TEXT NOT NULL, subject TEXT NOT NULL,"
    " body TEXT NOT NULL, written INTEGER NOT NULL)",

    "CREATE TABLE IF NOT EXISTS password_links ("
    " secret TEXT PRIMARY KEY, member INTEGER NOT NULL REFERENCES members(id),"
    " expires INTEGER NOT NULL)",
};

// Reads nothing, but fails where a table or a column is missing.
const char *const probes[] = {
    "SELECT id, username, password_hash, email, paypal, notify_question FROM members LIMIT 0",
    ("SELECT id, member, category, title, description, captured, media, start_price, reserve_price,"
     " buy_price, created, ends, state, views, sold_price, buyer FROM auctions LIMIT 0"),
    "SELECT id, auction, bidder, email, amount, placed FROM bids LIMIT 0",
    "SELECT id, recipient, subject, body, written FROM mails LIMIT 0",
    "SELECT secret, member, expires FROM password_links LIMIT 0",
};

// A text that was never set would travel as NULL, which no column of ours takes.
QVariant bindable(const QVariant &value)
{
    const bool isText = value.metaType() == QMetaType::fromType<QString>();
    return isText && value.toString().isNull() ? QVariant(QStringLiteral("")) : value;
}

Failure inWords(const QSqlError &error)
{
    enum Code { Busy = 5, Locked = 6, ReadOnly = 8, Full = 13 };
    switch (error.nativeErrorCode().toInt() & 0xff) {
    case Busy:
    case Locked:
        return broken(QStringLiteral("the service's records are in use, please try again"));
    case ReadOnly:
    case Full:
        return broken(QStringLiteral("the service has no room to store this"));
    default:
        return broken(QStringLiteral("the service's records have failed"));
    }
}

QString uniqueName(const void *owner)
{
    return QStringLiteral("service-%1-%2")
        .arg(quintptr(owner), 0, 16)
        .arg(quintptr(QThread::currentThreadId()), 0, 16);
}

bool hasTables(const QSqlDatabase &connection)
{
    for (const char *probe : probes) {
        QSqlQuery query(connection);
        if (!query.exec(QLatin1String(probe)))
            return false;
    }
    return true;
}

} // namespace

/** What one thread reaches the records by, its statements prepared once. */
class Connection
{
public:
    Connection(const QString &name, const QString &path, bool isAlone)
        : m_connection(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name))
    {
        m_connection.setDatabaseName(path);
        m_connection.setConnectOptions(
            QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(patience.count()));
        m_connection.open();
        // One that cannot be set shows in the first statement, which is told of.
        for (const char *setting :
             {isAlone ? "PRAGMA locking_mode=EXCLUSIVE" : "PRAGMA locking_mode=NORMAL",
              "PRAGMA journal_mode=WAL", "PRAGMA synchronous=FULL", "PRAGMA foreign_keys=ON",
              "PRAGMA cell_size_check=ON"}) {
            QSqlQuery(m_connection).exec(QLatin1String(setting));
        }
    }
    ~Connection()
    {
        const QString name = m_connection.connectionName();
        m_prepared.clear();
        m_connection = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    const QSqlDatabase &database() const
    {
        return m_connection;
    }

    /** Ready to be bound and run; its lastError() says if it is not. */
    QSqlQuery &prepared(const QString &statement)
    {
        const auto known = m_prepared.find(statement);
        if (known != m_prepared.end())
            return known->second;
        QSqlQuery &query = m_prepared.emplace(statement, QSqlQuery(m_connection)).first->second;
        query.setForwardOnly(true);
        query.prepare(statement);
        return query;
    }

    /** A statement that did not work is prepared anew the next time. */
    void forget(const QString &statement)
    {
        m_prepared.erase(statement);
    }

private:
    QSqlDatabase m_connection;
    std::map<QString, QSqlQuery> m_prepared;
};

Database::Database(const QString &path)
    : m_path(path)
{
}

Database::~Database() = default;

bool Database::isService(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return false;
    const QString name = uniqueName(&path);
    bool isOurs = false;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        connection.setDatabaseName(path);
        connection.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        isOurs = connection.open() && hasTables(connection);
    }
    QSqlDatabase::removeDatabase(name);
    return isOurs;
}

Result<void> Database::open(Contents contents)
{
    const bool isThere = QFileInfo(m_path).size() > 0;
    if (contents == MustBeThere && !isThere)
        return broken(QStringLiteral("The database %1 is missing or empty.").arg(m_path));
    Result<void> opened = openConnection();
    if (!opened.isOk() && isThere) {
        m_connections.clear();
        m_isAlone = true;
        const Failure first = opened.failure();
        opened = openConnection();
        if (opened.isOk())
            qWarning("%s It is served all the same.", qPrintable(first.reason));
    }
    if (!opened.isOk())
        return opened;
    const Result<void> checked = check();
    return checked.isOk() ? makeTables(contents) : checked;
}

Result<void> Database::openConnection()
{
    const QSqlDatabase &connection = connectionOfThisThread().database();
    if (!connection.isOpen()) {
        return broken(QStringLiteral("The database %1 cannot be opened: %2.")
                          .arg(m_path, connection.lastError().databaseText()));
    }
    QSqlQuery query(connection);
    if (!query.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
        return broken(QStringLiteral("The database %1 cannot be read: %2.")
                          .arg(m_path, query.lastError().databaseText()));
    }
    return {};
}

// Damaged records are worse than none: they would pass for what members have stored.
Result<void> Database::check()
{
    QSqlQuery query(connectionOfThisThread().database());
    query.exec(QStringLiteral("PRAGMA integrity_check(1)"));
    const QString found = query.next() ? query.value(0).toString() : query.lastError().text();
    if (found != QLatin1String("ok")) {
        return broken(
            QStringLiteral("The database %1 is damaged: %2.").arg(m_path, found.simplified()));
    }
    const bool checked = query.exec(QStringLiteral("PRAGMA foreign_key_check"));
    if (!checked || query.next()) {
        return broken(QStringLiteral("The database %1 is damaged: a row of %2 belongs to nothing.")
                          .arg(m_path, query.value(0).toString()));
    }
    return {};
}

Result<void> Database::makeTables(Contents contents)
{
    Connection &connection = connectionOfThisThread();
    if (contents == MustBeThere && !hasTables(connection.database()))
        return broken(QStringLiteral("%1 is no database of this service.").arg(m_path));
    QSqlQuery query(connection.database());
    const bool isRead = query.exec(QStringLiteral("PRAGMA user_version")) && query.next();
    const int version = isRead ? query.value(0).toInt() : -1;
    query.finish();
    if (version < 0 || version > tablesVersion)
        return broken(QStringLiteral("%1 was written by a newer service.").arg(m_path));
    if (version == tablesVersion)
        return {};
    Session session(*this, Writing);
    for (const char *table : tables)
        session.change(QLatin1String(table));
    session.change(QStringLiteral("PRAGMA user_version = %1").arg(tablesVersion));
    return session.commit();
}

Connection &Database::connectionOfThisThread()
{
    const std::lock_guard<std::mutex> lock(m_guard);
    std::shared_ptr<Connection> &connection =
        m_connections[m_isAlone ? nullptr : QThread::currentThreadId()];
    if (!connection)
        connection = std::make_shared<Connection>(uniqueName(this), m_path, m_isAlone);
    return *connection;
}

Database::Session::Session(Database &database, Access access)
    : m_access(access)
    , m_lock(database.m_writing, std::defer_lock)
    , m_connection(&database.connectionOfThisThread())
{
    const Result<void> begun = begin(m_access == Writing || database.m_isAlone);
    if (!begun.isOk())
        m_failure = begun.failure();
}

Database::Session::~Session()
{
    // After some failures there is nothing left to be rolled back, which is no news.
    if (m_isOpen)
        m_connection->prepared(QStringLiteral("ROLLBACK")).exec();
}

Result<void> Database::Session::begin(bool isAlone)
{
    if (isAlone && !m_lock.try_lock_for(patience))
        return broken(QStringLiteral("the service is busy, please try again"));
    const Result<Rows> begun =
        run(m_access == Writing ? QStringLiteral("BEGIN IMMEDIATE") : QStringLiteral("BEGIN"), {});
    if (!begun.isOk())
        return begun.failure();
    m_isOpen = true;
    return {};
}

Result<Database::Rows> Database::Session::select(const QString &statement,
                                                 const QVariantList &values)
{
    if (m_failure)
        return *m_failure;
    Result<Rows> found = run(statement, values);
    if (!found.isOk())
        m_failure = found.failure();
    return found;
}

void Database::Session::change(const QString &statement, const QVariantList &values)
{
    (void)select(statement, values);
}

qint64 Database::Session::addedRow() const
{
    return m_addedRow;
}

Result<void> Database::Session::commit()
{
    const Result<Rows> committed = select(QStringLiteral("COMMIT"));
    if (!committed.isOk())
        return committed.failure();
    m_isOpen = false;
    return {};
}

Result<Database::Rows> Database::Session::run(const QString &statement, const QVariantList &values)
{
    QSqlQuery &query = m_connection->prepared(statement);
    bool ran = !query.lastError().isValid();
    for (int i = 0; ran && i < values.size(); ++i)
        query.bindValue(i, bindable(values.at(i)));
    ran = ran && query.exec();
    Rows rows;
    const int columns = ran && query.isSelect() ? query.record().count() : 0;
    while (columns > 0 && query.next()) {
        Row row;
        row.reserve(columns);
        for (int column = 0; column < columns; ++column)
            row.append(query.value(column));
        rows.append(row);
    }
    if (query.lastError().isValid()) {
        const QSqlError error = query.lastError();
        m_connection->forget(statement);
        qWarning("the database failed: %s (%s)", qPrintable(error.databaseText().simplified()),
                 qPrintable(statement.simplified()));
        return inWords(error);
    }
    m_addedRow = ran && columns == 0 ? query.lastInsertId().toLongLong() : m_addedRow;
    query.finish();
    return rows;
}
