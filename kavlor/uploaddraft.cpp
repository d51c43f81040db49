// SPDX-License-Identifier: MIT

#include "uploaddraft.h"

#include "leftovers.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace {

constexpr qint64 maxFileBytes = 1024LL * 1024;
constexpr int maxPrice = 10'000'000; // as the page for them allows

constexpr QLatin1String memberKey("member");
constexpr QLatin1String mediaKey("media");
constexpr QLatin1String captionKey("caption");
constexpr QLatin1String descriptionKey("description");
constexpr QLatin1String categoryKey("category");
constexpr QLatin1String startPriceKey("startPrice");
constexpr QLatin1String reservePriceKey("reservePrice");
constexpr QLatin1String buyItNowPriceKey("buyItNowPrice");

quint32 price(const QJsonObject &draft, QLatin1String key, int least)
{
    return static_cast<quint32>(qBound(least, draft.value(key).toInt(least), maxPrice));
}

} // namespace

UploadDraft::UploadDraft(const QString &settingsFile)
    : m_path(QFileInfo(settingsFile).absolutePath() + QStringLiteral("/upload.draft"))
{
}

std::optional<CAuctionRecord> UploadDraft::load(const QString &member) const
{
    QFile file(m_path);
    if (member.isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > maxFileBytes)
        return {};
    const QJsonObject draft = QJsonDocument::fromJson(file.readAll()).object();
    if (draft.value(memberKey).toString() != member)
        return {};

    CAuctionRecord record;
    record.mediaPath = draft.value(mediaKey).toString();
    if (record.mediaPath.isEmpty())
        return {};
    record.caption = draft.value(captionKey).toString();
    record.description = draft.value(descriptionKey).toString();
    record.category = draft.value(categoryKey).toInt();
    record.startPrice = price(draft, startPriceKey, 1);
    record.reservePrice = price(draft, reservePriceKey, 0);
    record.buyItNowPrice = price(draft, buyItNowPriceKey, 0);
    return record;
}

void UploadDraft::save(const QString &member, const CAuctionRecord &record) const
{
    const QJsonObject draft{
        {memberKey, member},
        {mediaKey, record.mediaPath},
        {captionKey, record.caption},
        {descriptionKey, record.description},
        {categoryKey, record.category},
        {startPriceKey, static_cast<qint64>(record.startPrice)},
        {reservePriceKey, static_cast<qint64>(record.reservePrice)},
        {buyItNowPriceKey, static_cast<qint64>(record.buyItNowPrice)},
    };
    removeLeftovers(m_path);
    QSaveFile file(m_path);
    // Narrow rights before there is anything in it. A draft that cannot be kept is no reason to
    // stop the member.
    if (!file.open(QIODevice::WriteOnly)
        || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
        return;
    file.write(QJsonDocument(draft).toJson());
    file.commit();
}

void UploadDraft::remove() const
{
    removeLeftovers(m_path);
    QFile::remove(m_path);
}

void UploadDraft::keepOnlyOf(const QString &member) const
{
    if (QFile::exists(m_path) && !load(member))
        remove();
}
