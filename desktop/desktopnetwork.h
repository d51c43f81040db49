// SPDX-License-Identifier: MIT

#pragma once

#include <QNetworkInformation>
#include <QObject>

/**
 * The desktop's own view of its network, as a state number of the connectivity daemon.
 *
 * Where the desktop cannot tell, the state is 2: a request that is tried and fails says more than
 * one that is never sent. Behind a captive portal it is 4, limited.
 */
class DesktopNetwork : public QObject
{
    Q_OBJECT

public:
    explicit DesktopNetwork(QObject *parent = nullptr);

    quint32 state() const;

    static quint32 stateOf(QNetworkInformation::Reachability reachability);

signals:
    /** The network has changed, and its state is @p state now, perhaps the same as before. */
    void stateChanged(quint32 state);
};
