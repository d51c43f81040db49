#include "database.h"

#include <QDebug>
#include <QSqlError>
#include <QThread>

namespace {

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

// A text that was never set would travel as NULL, which no column of ours takes.
QVariant bindable(const QVariant &value)
{
    const bool isText = value.metaType() == QMetaType::fromType<QString>();
    return isText && value.toString().isNull() ? QVariant(QStringLiteral("")) : value;
}

} // namespace

Database::Database(const QString &path)
    : m_path(path)
{
}

QString Database::open()
{
    const QSqlDatabase connection = connectionOfThisThread();
    if (!connection.isOpen())
        return connection.lastError().text();
    Session session(*this);
    for (const char *table : tables)
        session.run(QLatin1String(table));
    return session.commit() ? QString()
                            : QStringLiteral("%1 is no database of this service.").arg(m_path);
}

QSqlDatabase Database::connectionOfThisThread() const
{
    const QString name = QStringLiteral("service-%1-%2")
                             .arg(quintptr(this), 0, 16)
                             .arg(quintptr(QThread::currentThreadId()), 0, 16);
    if (QSqlDatabase::contains(name))
        return QSqlDatabase::database(name);

    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    connection.setDatabaseName(m_path);
    if (!connection.open())
        return connection;
    const char *const settings[] = {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=FULL",
                                    "PRAGMA foreign_keys=ON"};
    for (const char *setting : settings) {
        QSqlQuery query(connection);
        if (!query.exec(QLatin1String(setting)))
            qWarning("%s: %s", setting, qPrintable(query.lastError().text()));
    }
    return connection;
}

Database::Session::Session(Database &database)
    : m_lock(database.m_mutex)
    , m_connection(database.connectionOfThisThread())
    , m_isGood(m_connection.transaction())
{
}

Database::Session::~Session()
{
    if (!m_isOver)
        m_connection.rollback();
}

QSqlQuery Database::Session::run(const QString &statement, const QVariantList &values)
{
    QSqlQuery query(m_connection);
    query.setForwardOnly(true);
    bool ran = query.prepare(statement);
    for (const QVariant &value : values)
        query.addBindValue(bindable(value));
    ran = ran && query.exec();
    if (!ran) {
        qWarning("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
        m_isGood = false;
    }
    return query;
}

bool Database::Session::commit()
{
    m_isOver = m_isGood && m_connection.commit();
    return m_isOver;
}
