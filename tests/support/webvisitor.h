// SPDX-License-Identifier: MIT

#pragma once

#include "localserviceprocess.h"

#include <QByteArray>
#include <QList>
#include <QPair>

/** A visitor of the service's web pages who keeps the cookie and fills in the forms shown. */
class WebVisitor
{
public:
    using Form = QList<QPair<QByteArray, QByteArray>>;

    explicit WebVisitor(const LocalServiceProcess &service);

    LocalServiceProcess::Reply open(const QByteArray &path);
    /** Posts a form of the last page opened, its token added. */
    LocalServiceProcess::Reply submit(const QByteArray &path, const Form &form,
                                      const QByteArray &headerLines = {});
    /** Posts exactly this, the cookie at most added. */
    LocalServiceProcess::Reply post(const QByteArray &path, const QByteArray &body,
                                    const QByteArray &headerLines = {});

    LocalServiceProcess::Reply bid(qint64 auction, qint64 amount);
    LocalServiceProcess::Reply buy(qint64 auction);

    QByteArray token() const;
    QByteArray cookie() const;

private:
    void remember(const LocalServiceProcess::Reply &reply);
    Form buyerForm(qint64 auction) const;

    const LocalServiceProcess &m_service;
    QByteArray m_cookie;
    QByteArray m_token;
};
