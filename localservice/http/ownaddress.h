// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

/**
 * Under what names the service is asked: this machine's own, with its own port. A name that another
 * site points at this machine would let that site's pages read what is here, and a page of another
 * site could ask for something in the name of whoever looks at it.
 */
class OwnAddress
{
public:
    enum Asker { Own, ForeignHost, ForeignOrigin };

    explicit OwnAddress(int port);

    /**
     * Who asks, by the Host and Origin lines of a request, each empty when there is none; several
     * lines of one name are given joined and belong to nobody.
     */
    Asker asker(const QByteArray &host, const QByteArray &origin) const;

private:
    bool isOwnHost(const QByteArray &host) const;

    QByteArray m_port; // as it follows a name
};
