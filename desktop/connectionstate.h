// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

/** The numbers by which the connectivity daemon names the states of a connection. */
namespace ConnectionState {

enum Number : quint32 {
    Disconnected = 0,
    Connecting = 1,
    Connected = 2,
    Disconnecting = 3,
    LimitedEnabled = 4,
    LimitedDisabled = 5,
    SearchStart = 8,
    SearchStop = 9
};

} // namespace ConnectionState
