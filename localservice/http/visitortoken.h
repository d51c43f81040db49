// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

/**
 * Ties the forms of the web pages to the visitor who was shown them.
 *
 * A visitor is a random name in a cookie. Every form carries that name's seal, which another site
 * can neither read nor make, so that a post it forges in a visitor's browser is told apart.
 */
class VisitorToken
{
public:
    /** The visitor whom a request's Cookie header names, or a new one. */
    static VisitorToken fromCookies(const QByteArray &cookies);

    /** What a form carries. */
    QByteArray formToken() const;
    bool isOwnForm(const QByteArray &token) const;

    /** The Set-Cookie header for a new visitor; empty for a known one. */
    QByteArray newCookie() const;

private:
    QByteArray m_name;
    bool m_isNew = false;
};
