// SPDX-License-Identifier: MIT

#include "desktopnetwork.h"

#include "connectionstate.h"

DesktopNetwork::DesktopNetwork(QObject *parent)
    : QObject(parent)
{
    if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability))
        return;
    connect(QNetworkInformation::instance(), &QNetworkInformation::reachabilityChanged, this,
            [this](QNetworkInformation::Reachability reachability) {
                emit stateChanged(stateOf(reachability));
            });
}

quint32 DesktopNetwork::state() const
{
    const QNetworkInformation *network = QNetworkInformation::instance();
    return stateOf(network ? network->reachability() : QNetworkInformation::Reachability::Unknown);
}

quint32 DesktopNetwork::stateOf(QNetworkInformation::Reachability reachability)
{
    switch (reachability) {
    case QNetworkInformation::Reachability::Disconnected:
        return ConnectionState::Disconnected;
    case QNetworkInformation::Reachability::Local:
        return ConnectionState::Connecting;
    case QNetworkInformation::Reachability::Site:
        return ConnectionState::LimitedEnabled;
    case QNetworkInformation::Reachability::Online:
    case QNetworkInformation::Reachability::Unknown:
        break;
    }
    return ConnectionState::Connected;
}
