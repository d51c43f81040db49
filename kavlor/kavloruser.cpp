// SPDX-License-Identifier: MIT

#include "kavloruser.h"

#include <QRegularExpression>
#include <QSettings>

namespace {

// The pattern of both addresses. It is searched for, not matched against the whole text.
constexpr char addressPattern[] = "([\\w.]+@[\\w\\.]+)";

struct FieldRule
{
    const char *displayName; // translated in messages, and as it is the key in the settings
    int limit;               // characters
    bool mandatory;
    const char *pattern; // null = any text
};

// In the order of CKavlorUser::Field.
constexpr FieldRule fieldRules[CKavlorUser::fieldCount] = {
    {QT_TRANSLATE_NOOP("CKavlorUser", "Username"), 100, true, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Password"), 100, true, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "First Name"), 50, false, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Last Name"), 50, false, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Email Address"), 80, true, addressPattern},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Paypal Address"), 80, false, addressPattern},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Country ID"), 2, false, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Gender"), 1, false, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Language"), 2, false, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Twitter Username"), 50, false, nullptr},
    {QT_TRANSLATE_NOOP("CKavlorUser", "Twitter Password"), 50, false, nullptr},
};

QString settingsKey(CKavlorUser::Field field)
{
    return QLatin1String(fieldRules[field].displayName);
}

QString displayName(CKavlorUser::Field field)
{
    return CKavlorUser::tr(fieldRules[field].displayName);
}

QString groupOf(const QString &userName)
{
    return QStringLiteral("UserData.") + userName;
}

bool fail(QString *error, const QString &message)
{
    if (error)
        *error = message;
    return false;
}

} // namespace

CKavlorUser::Fields CKavlorUser::defaultFields()
{
    Fields fields;
    fields[CountryID] = QStringLiteral("US");
    fields[Gender] = QStringLiteral("M");
    fields[Language] = QStringLiteral("EN");
    return fields;
}

CKavlorUser::CKavlorUser(QSettings *settings, QObject *parent, bool noSave, const Fields &fields)
    : QObject(parent)
    , m_fields(fields)
    , m_settings(settings)
    , m_noSave(noSave)
{
}

CKavlorUser::CKavlorUser(const CKavlorUser &other)
    : QObject(other.parent())
    , m_fields(other.m_fields)
    , m_userId(other.m_userId)
    , m_noSave(true)
{
}

// A record keeps the settings it writes to.
// cppcheck-suppress operatorEqVarError
CKavlorUser &CKavlorUser::operator=(const CKavlorUser &other)
{
    if (this != &other) {
        m_fields = other.m_fields;
        m_userId = other.m_userId;
    }
    return *this;
}

void CKavlorUser::setSettings(QSettings *settings)
{
    m_settings = settings;
}

const QString &CKavlorUser::field(Field field) const
{
    return m_fields[field];
}

void CKavlorUser::setField(Field field, const QString &text)
{
    m_fields[field] = text;
}

int CKavlorUser::userId() const
{
    return m_userId;
}

void CKavlorUser::setUserId(int userId)
{
    m_userId = userId;
}

void CKavlorUser::load(const QString &userName)
{
    if (!m_settings || userName.isEmpty())
        return;

    m_settings->beginGroup(groupOf(userName));
    for (int row = 0; row < fieldCount; ++row) {
        const auto field = static_cast<Field>(row);
        m_fields[field] = m_settings->value(settingsKey(field), QString()).toString();
    }
    m_userId = m_settings->value(QStringLiteral("UserID"), 0).toInt();
    m_settings->endGroup();
}

void CKavlorUser::save()
{
    if (!m_settings || m_noSave)
        return;

    const QString &userName = m_fields[Username];
    if (!userName.isEmpty()) {
        m_settings->beginGroup(groupOf(userName));
        for (int row = 0; row < fieldCount; ++row) {
            const auto field = static_cast<Field>(row);
            m_settings->setValue(settingsKey(field), m_fields[field]);
        }
        m_settings->setValue(QStringLiteral("UserID"), m_userId);
        m_settings->endGroup();
    }
    m_settings->beginGroup(QStringLiteral("last"));
    m_settings->setValue(QStringLiteral("USERID"), userName);
    m_settings->endGroup();
}

bool CKavlorUser::validateField(Field field, int level, QString *error) const
{
    const FieldRule &rule = fieldRules[field];
    const QString &text = m_fields[field];
    if (text.size() > rule.limit) {
        return fail(
            error, tr("%1 exceeds field length limit(%2)").arg(displayName(field)).arg(rule.limit));
    }
    if (level < 0)
        return true;
    if (text.isEmpty())
        return !rule.mandatory || fail(error, tr("%1 must be defined").arg(displayName(field)));
    if (!rule.pattern)
        return true;

    const QRegularExpression pattern(QLatin1String(rule.pattern),
                                     QRegularExpression::UseUnicodePropertiesOption);
    return pattern.match(text).hasMatch()
        || fail(error, tr("%1 is invalid").arg(displayName(field)));
}

bool CKavlorUser::validate(const QString &confirmation, int level,
                           const QString &twitterConfirmation, QString *error,
                           bool confirmationIsPassword) const
{
    for (int row = 0; row < fieldCount; ++row) {
        if (!validateField(static_cast<Field>(row), level, error))
            return false;
    }

    const Field confirmed = confirmationIsPassword ? Password : EmailAddress;
    if (level >= 0 && confirmation != m_fields[confirmed])
        return fail(error, tr("%1 does not match.").arg(displayName(confirmed)));

    if (!twitterConfirmation.isEmpty() && level >= 1
        && twitterConfirmation != m_fields[TwitterPassword]) {
        return fail(error, tr("%1 does not match.").arg(displayName(TwitterPassword)));
    }

    const QString &gender = m_fields[Gender];
    if (!gender.isEmpty() && level >= 1 && gender != QLatin1String("M")
        && gender != QLatin1String("F")) {
        return fail(error, tr("%1 is invalid").arg(displayName(Gender)));
    }
    return true;
}
