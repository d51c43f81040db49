// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QString>
#include <array>

class QSettings;

/**
 * A member's record: the texts that the service knows about them, the number it gave them, the
 * rules that the texts must keep, and their place in the settings.
 *
 * The root window owns the record of the signed-in member; frames read it through a pointer and
 * make copies to edit. The settings store is never owned and may be missing.
 */
class CKavlorUser : public QObject
{
    Q_OBJECT

public:
    enum Field {
        Username,
        Password,
        FirstName,
        LastName,
        EmailAddress,
        PaypalAddress,
        CountryID,
        Gender,
        Language,
        TwitterUsername,
        TwitterPassword
    };
    static constexpr int fieldCount = TwitterPassword + 1;
    using Fields = std::array<QString, fieldCount>;

    /** The texts of somebody nothing is known about: country "US", gender "M", language "EN". */
    static Fields defaultFields();

    /** With @p noSave set, save() does nothing. */
    CKavlorUser(QSettings *settings, QObject *parent, bool noSave, const Fields &fields);
    /** A working copy for editing, with the source's parent; it is never loaded nor saved. */
    CKavlorUser(const CKavlorUser &other);
    /** Takes over the fields and the number, nothing else. */
    CKavlorUser &operator=(const CKavlorUser &other);

    void setSettings(QSettings *settings);

    const QString &field(Field field) const;
    void setField(Field field, const QString &text);
    /** The number given by the service; 0 = none known. */
    int userId() const;
    void setUserId(int userId);

    /**
     * Reads the record of @p userName from the settings. A name that has no record there empties
     * every field; an empty name or a missing store changes nothing.
     */
    void load(const QString &userName);
    /** Writes the record and remembers its user name as the last one. */
    void save();

    /**
     * Checks the fields and stops at the first fault.
     *
     * @param confirmation the repeated e-mail address, or the repeated password
     * @param level below 0 only lengths are checked, from 0 on also presence, form and
     *        confirmation, from 1 on everything
     * @param twitterConfirmation the repeated Twitter password; empty = none was asked for
     * @param error receives the message for the member; may be null
     * @param confirmationIsPassword tells what @p confirmation repeats
     * @return true when nothing is wrong
     */
    virtual bool validate(const QString &confirmation, int level,
                          const QString &twitterConfirmation, QString *error,
                          bool confirmationIsPassword) const;

private:
    bool validateField(Field field, int level, QString *error) const;

    Fields m_fields;
    int m_userId = 0;
    QSettings *m_settings = nullptr;
    bool m_noSave = false;
};
