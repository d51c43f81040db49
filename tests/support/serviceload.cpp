// SPDX-License-Identifier: MIT

#include "serviceload.h"

#include "uploadrequest.h"
#include "webvisitor.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace {

const QByteArray password = "&Password=secret";
constexpr int uploaders = 2;
constexpr int accountsALife = 2; // each takes as long as many other changes, for its password
constexpr qint64 startPrice = 5;
constexpr qsizetype largestPhoto = 60'000;
constexpr qsizetype largePhoto = 1'000'000; // one in ten

QByteArray digestOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

QByteArray randomBytes(qsizetype size)
{
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(QRandomGenerator::global()->generate());
    return bytes;
}

// A photo like no other, as readers of pictures do not mind what follows one.
UploadRequest newUpload(const QByteArray &title)
{
    UploadRequest upload;
    upload.set("Username", "seller");
    upload.set("Description", title);
    upload.set("StartPrice", QByteArray::number(startPrice));
    const bool isLarge = QRandomGenerator::global()->bounded(10) == 0;
    upload.media += randomBytes(
        isLarge ? largePhoto : QRandomGenerator::global()->bounded(1, int(largestPhoto)));
    return upload;
}

QByteArray accountForm(const QByteArray &name, qint64 number)
{
    const QByteArray address = QByteArray::number(number) + "@example.org";
    return "Username=" + name + password + "&Password1=secret&Password2=secret&EmailAddress=e"
        + address + "&PaypalAddress=p" + address;
}

QByteArray bits(qint64 number)
{
    QByteArray text;
    for (int bit = 0; bit < 4; ++bit)
        text += (number >> bit & 1) != 0 ? '1' : '0';
    return text;
}

} // namespace

ServiceLoad::ServiceLoad(LocalServiceProcess &service)
    : m_service(service)
{
}

ServiceLoad::~ServiceLoad()
{
    join();
}

bool ServiceLoad::prepare()
{
    for (const char *name : {"seller", "mover", "hearer"}) {
        if (!createMember(name))
            return false;
    }
    m_priced = createAuction("priced");
    m_bidOn = createAuction("bid on");
    return m_priced > 0 && m_bidOn > 0 && setPrices(0) && changeAccount(0) && chooseAlerts(0);
}

void ServiceLoad::start()
{
    for (int who = 0; who < uploaders; ++who)
        m_people.emplace_back([this] { upload(); });
    m_people.emplace_back([this] { openAccounts(); });
    m_people.emplace_back(
        [this] { repeat(m_prices, [this](qint64 number) { return setPrices(number); }); });
    m_people.emplace_back(
        [this] { repeat(m_bids, [this](qint64 number) { return placeBid(number); }); });
    m_people.emplace_back([this] {
        repeat(
            m_address, [this](qint64 number) { return changeAccount(number); }, accountsALife);
    });
    m_people.emplace_back(
        [this] { repeat(m_alerts, [this](qint64 number) { return chooseAlerts(number); }); });
}

void ServiceLoad::join()
{
    for (std::thread &person : m_people)
        person.join();
    m_people.clear();
}

qint64 ServiceLoad::acknowledged() const
{
    return m_acknowledged;
}

qint64 ServiceLoad::auctions() const
{
    return m_auctions;
}

void ServiceLoad::fault(const QString &text)
{
    const std::lock_guard<std::mutex> lock(m_guard);
    m_faults.append(text);
}

// A service that is busy may say so.
bool ServiceLoad::isPromised(const LocalServiceProcess::Reply &reply, const QByteArray &what)
{
    const bool isDone = reply.status == 303 || (reply.status == 200 && reply.body.toLongLong() > 0);
    if (isDone)
        ++m_acknowledged;
    else if (reply.status != 0 && !reply.body.contains("try again"))
        fault(QString::fromUtf8(what + " was refused: " + reply.body));
    return isDone;
}

qint64 ServiceLoad::createAuction(const QByteArray &title)
{
    const UploadRequest upload = newUpload(title);
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_uploads.insert(title, {digestOf(upload.media), 0});
    }
    const LocalServiceProcess::Reply reply = m_service.send(upload.bytes(m_service.host()));
    if (!isPromised(reply, title))
        return 0;
    ++m_auctions;
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_uploads[title].id = reply.body.toLongLong();
}

bool ServiceLoad::createMember(const QByteArray &name)
{
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_accounts.insert(name, 0);
    }
    const LocalServiceProcess::Reply reply =
        m_service.post("CreateAccount", accountForm(name, m_next++));
    if (!isPromised(reply, name))
        return false;
    const std::lock_guard<std::mutex> lock(m_guard);
    m_accounts.insert(name, reply.body.toLongLong());
    return true;
}

void ServiceLoad::upload()
{
    while (createAuction("photo " + QByteArray::number(m_next++)) > 0) { }
}

void ServiceLoad::openAccounts()
{
    for (int i = 0; i < accountsALife && createMember("member" + QByteArray::number(m_next++)); ++i)
        ;
}

void ServiceLoad::repeat(Setting &setting, const std::function<bool(qint64)> &set, int most)
{
    for (int i = 0; i < most; ++i) {
        setting.tried = setting.promised + 1;
        if (!set(setting.tried))
            return;
        setting.promised = setting.tried;
    }
}

bool ServiceLoad::setPrices(qint64 number)
{
    return isPromised(m_service.post("ModifyAuction",
                                     "Username=seller" + password
                                         + "&AuctionID=" + QByteArray::number(m_priced)
                                         + "&ReservePrice=" + QByteArray::number(100 + number)
                                         + "&BuyItNowPrice=" + QByteArray::number(200 + number)),
                      "prices");
}

bool ServiceLoad::placeBid(qint64 number)
{
    return isPromised(WebVisitor(m_service).bid(m_bidOn, startPrice + number), "a bid");
}

bool ServiceLoad::changeAccount(qint64 number)
{
    return isPromised(m_service.post("ModifyAccount", accountForm("mover", number)), "an account");
}

bool ServiceLoad::chooseAlerts(qint64 number)
{
    const QByteArray chosen = bits(number);
    return isPromised(m_service.post("SetNotificationOptions",
                                     "Username=hearer" + password + "&NotifyOnBid=" + chosen[0]
                                         + "&NotifyOnAuctionEnd=" + chosen[1] + "&NotifyOnView="
                                         + chosen[2] + "&NotifyOnBuyerQuestion=" + chosen[3]),
                      "alerts");
}

QStringList ServiceLoad::faults()
{
    checkRecords();
    checkUploads();
    checkAccounts();
    check(m_prices,
          QStringLiteral("SELECT reserve_price || ' ' || buy_price FROM auctions WHERE id = %1")
              .arg(m_priced),
          [](qint64 number) {
              return QByteArray::number(100 + number) + ' ' + QByteArray::number(200 + number);
          });
    // Each bid with the mail that tells the seller of it; of many mails only the last are kept.
    check(m_bids,
          QStringLiteral("SELECT coalesce(max(amount), %2) || ' ' || count(*) || ' ' ||"
                         " (SELECT coalesce(max(id), 0) FROM mails) FROM bids WHERE auction = %1")
              .arg(m_bidOn)
              .arg(startPrice),
          [](qint64 number) {
              const QByteArray count = QByteArray::number(number);
              return QByteArray::number(startPrice + number) + ' ' + count + ' ' + count;
          });
    check(m_address,
          QStringLiteral("SELECT email || ' ' || paypal FROM members WHERE username = 'mover'"),
          [](qint64 number) {
              const QByteArray address = QByteArray::number(number) + "@example.org";
              return 'e' + address + " p" + address;
          });
    check(m_alerts,
          QStringLiteral("SELECT notify_bid || notify_end || notify_view || notify_question"
                         " FROM members WHERE username = 'hearer'"),
          bits);
    return m_faults;
}

// What was under way may have been done, or not.
void ServiceLoad::check(Setting &setting, const QString &statement,
                        const std::function<QByteArray(qint64)> &expected)
{
    const QByteArray found = m_service.value(statement).toByteArray();
    if (found == expected(setting.tried))
        setting.promised = setting.tried;
    else if (found != expected(setting.promised))
        fault(QStringLiteral("%1: %2 instead of %3")
                  .arg(statement, QString::fromUtf8(found),
                       QString::fromUtf8(expected(setting.promised))));
    setting.tried = setting.promised;
}

void ServiceLoad::checkRecords()
{
    const QString found = m_service.value(QStringLiteral("PRAGMA integrity_check")).toString();
    if (found != QLatin1String("ok"))
        fault(QStringLiteral("the database: ") + found);
    if (!m_service.query(QStringLiteral("PRAGMA foreign_key_check")).isEmpty())
        fault(QStringLiteral("a row belongs to nothing"));
    // Complains if the words are not those of the auctions.
    m_service.execute(QStringLiteral(
        "INSERT INTO auction_words (auction_words, rank) VALUES ('integrity-check', 1)"));
}

void ServiceLoad::checkUploads()
{
    QSet<QString> named;
    QSet<QByteArray> there;
    const QList<QVariantList> rows =
        m_service.query(QStringLiteral("SELECT id, title, media FROM auctions"));
    for (const QVariantList &row : rows) {
        const QByteArray title = row.at(1).toByteArray();
        const Upload upload = m_uploads.value(title);
        there.insert(title);
        named.insert(row.at(2).toString());
        if (upload.digest.isEmpty() || (upload.id != 0 && upload.id != row.at(0).toLongLong()))
            fault(QString::fromUtf8(title) + QStringLiteral(" is nobody's auction"));
        else if (!isMediaWhole(row.at(2).toString(), upload, !m_seen.contains(title)))
            fault(QString::fromUtf8(title) + QStringLiteral(" has another photo"));
        m_uploads[title].id = row.at(0).toLongLong(); // from now on it has to stay
    }
    for (auto upload = m_uploads.cbegin(); upload != m_uploads.cend(); ++upload) {
        if (upload->id != 0 && !there.contains(upload.key()))
            fault(QString::fromUtf8(upload.key()) + QStringLiteral(" is lost"));
    }
    m_seen = there;
    const QStringList files =
        QDir(m_service.dataDir() + QStringLiteral("/media")).entryList(QDir::Files | QDir::Hidden);
    if (QSet<QString>(files.cbegin(), files.cend()) != named)
        fault(QStringLiteral("the media are not those of the auctions"));
    if (!QDir(m_service.dataDir() + QStringLiteral("/incoming")).isEmpty())
        fault(QStringLiteral("an upload is still arriving"));
}

// By its bytes, and by what the service gives its member of one that is new.
bool ServiceLoad::isMediaWhole(const QString &name, const Upload &upload, bool isNew) const
{
    QFile file(m_service.dataDir() + QStringLiteral("/media/") + name);
    if (!isNew)
        return file.exists();
    if (!file.open(QIODevice::ReadOnly) || digestOf(file.readAll()) != upload.digest)
        return false;
    return upload.id == 0
        || digestOf(m_service
                        .post("GetRawMedia",
                              "Username=seller" + password
                                  + "&AuctionID=" + QByteArray::number(upload.id))
                        .body)
        == upload.digest;
}

void ServiceLoad::checkAccounts()
{
    QHash<QByteArray, qint64> found;
    const QList<QVariantList> rows = m_service.query(QStringLiteral(
        "SELECT username, id FROM members WHERE password_hash LIKE '$argon2id$%' AND email <> ''"));
    for (const QVariantList &row : rows)
        found.insert(row.at(0).toByteArray(), row.at(1).toLongLong());
    for (auto account = m_accounts.cbegin(); account != m_accounts.cend(); ++account) {
        if (account.value() != 0 && found.value(account.key()) != account.value())
            fault(QString::fromUtf8(account.key()) + QStringLiteral(" has lost the account"));
    }
}
