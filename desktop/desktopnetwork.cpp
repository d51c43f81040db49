// SPDX-License-Identifier: MIT

#include "desktopnetwork.h"

#include "connectionstate.h"

DesktopNetwork::DesktopNetwork(QObject *parent)
    : QObject(parent)
{
    if (!QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability))
        return;
    const QNetworkInformation *network = QNetworkInformation::instance();
    const auto report = [this] { emit stateChanged(state()); };
    connect(network, &QNetworkInformation::reachabilityChanged, this, report);
    connect(network, &QNetworkInformation::isBehindCaptivePortalChanged, this, report);
}

quint32 DesktopNetwork::state() const
{
    const QNetworkInformation *network = QNetworkInformation::instance();
    if (!network)
        return stateOf(QNetworkInformation::Reachability::Unknown);
    const quint32 state = stateOf(network->reachability());
    // Behind a portal everything is answered, but by the portal.
    return state == ConnectionState::Connected && network->isBehindCaptivePortal()
        ? quint32(ConnectionState::LimitedEnabled)
        : state;
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
