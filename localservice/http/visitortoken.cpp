// SPDX-License-Identifier: MIT

#include "visitortoken.h"

#include "passwords.h"

#include <QList>

namespace {
const char *const cookieName = "visitor";
}

VisitorToken VisitorToken::fromCookies(const QByteArray &cookies)
{
    VisitorToken visitor;
    const QList<QByteArray> pairs = cookies.split(';');
    for (const QByteArray &pair : pairs) {
        const qsizetype equals = pair.indexOf('=');
        if (pair.left(equals).trimmed() == cookieName)
            visitor.m_name = pair.mid(equals + 1).trimmed();
    }
    visitor.m_isNew = visitor.m_name.isEmpty();
    if (visitor.m_isNew)
        visitor.m_name = randomName();
    return visitor;
}

QByteArray VisitorToken::formToken() const
{
    return seal(m_name);
}

bool VisitorToken::isOwnForm(const QByteArray &token) const
{
    return !m_isNew && isSeal(m_name, token);
}

QByteArray VisitorToken::newCookie() const
{
    if (!m_isNew)
        return {};
    return QByteArray(cookieName) + '=' + m_name + "; Path=/; HttpOnly; SameSite=Strict";
}
