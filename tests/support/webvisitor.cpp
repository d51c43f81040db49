// SPDX-License-Identifier: MIT

#include "webvisitor.h"

#include <QRegularExpression>

WebVisitor::WebVisitor(const LocalServiceProcess &service)
    : m_service(service)
{
}

LocalServiceProcess::Reply WebVisitor::open(const QByteArray &path)
{
    const QByteArray cookieLine =
        m_cookie.isEmpty() ? QByteArray() : "Cookie: " + m_cookie + "\r\n";
    const LocalServiceProcess::Reply reply = m_service.get(path, cookieLine);
    remember(reply);
    return reply;
}

void WebVisitor::remember(const LocalServiceProcess::Reply &reply)
{
    const QByteArray cookie = LocalServiceProcess::headerValue(reply, "Set-Cookie");
    if (!cookie.isEmpty())
        m_cookie = cookie.left(cookie.indexOf(';'));
    static const QRegularExpression hidden(QStringLiteral("name=\"token\" value=\"([0-9a-f]+)\""));
    const QRegularExpressionMatch match = hidden.match(QString::fromUtf8(reply.body));
    if (match.hasMatch())
        m_token = match.captured(1).toLatin1();
}

LocalServiceProcess::Reply WebVisitor::submit(const QByteArray &path, const Form &form,
                                              const QByteArray &headerLines)
{
    QByteArray body = "token=" + m_token;
    for (const auto &field : form)
        body += '&' + field.first + '=' + field.second.toPercentEncoding();
    return post(path, body, headerLines);
}

LocalServiceProcess::Reply WebVisitor::post(const QByteArray &path, const QByteArray &body,
                                            const QByteArray &headerLines)
{
    const QByteArray cookieLine =
        m_cookie.isEmpty() ? QByteArray() : "Cookie: " + m_cookie + "\r\n";
    return m_service.send("POST " + path + " HTTP/1.1\r\nHost: localhost:"
                          + QByteArray::number(m_service.port()) + "\r\n" + cookieLine + headerLines
                          + "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: "
                          + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

WebVisitor::Form WebVisitor::buyerForm(qint64 auction) const
{
    return {{"id", QByteArray::number(auction)}, {"name", "Ines"}, {"email", "ines@example.org"}};
}

LocalServiceProcess::Reply WebVisitor::bid(qint64 auction, qint64 amount)
{
    open("/auction?id=" + QByteArray::number(auction));
    return submit("/auction/bid",
                  buyerForm(auction)
                      << qMakePair(QByteArray("amount"), QByteArray::number(amount)));
}

LocalServiceProcess::Reply WebVisitor::buy(qint64 auction)
{
    open("/auction?id=" + QByteArray::number(auction));
    return submit("/auction/buy", buyerForm(auction));
}

QByteArray WebVisitor::token() const
{
    return m_token;
}

QByteArray WebVisitor::cookie() const
{
    return m_cookie;
}
