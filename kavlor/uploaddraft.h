// SPDX-License-Identifier: MIT

#pragma once

#include "auctionrecord.h"

#include <QString>
#include <optional>

/**
 * The upload that a member has begun and not finished, kept in a file so that it survives a failure
 * and the end of the program.
 *
 * There is one at most, of one member. The file lies beside the settings and, like them, can be
 * read by its owner alone; it is replaced as a whole or not at all. The upload wizard writes it,
 * and the root window sees to it that another member who signs in does not find it.
 */
class UploadDraft
{
public:
    /** The draft beside the settings in @p settingsFile. */
    explicit UploadDraft(const QString &settingsFile);

    /** What @p member has left; nothing when that is nothing, another's, or cannot be read. */
    std::optional<CAuctionRecord> load(const QString &member) const;
    /** Takes the place of what was kept before. The capture date is not kept. */
    void save(const QString &member, const CAuctionRecord &record) const;
    void remove() const;
    /** Removes the draft unless it is that of @p member. */
    void keepOnlyOf(const QString &member) const;

private:
    const QString m_path;
};
