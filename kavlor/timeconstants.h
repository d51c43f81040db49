// SPDX-License-Identifier: MIT

#pragma once

/**
 * Every time the program waits for, in milliseconds.
 *
 * They stand in a file of their own so that a test can be linked against shorter ones; the
 * program itself never changes them.
 */
struct TimeConstants
{
    int startUpMinimum = 5000;   ///< the start-up window stays at least this long
    int paintWait = 500;         ///< for the start-up window to be painted
    int exitDelay = 20;          ///< from the decision to end the program to the end
    int progressStep = 350;      ///< one step of a progress strip
    int connectionWait = 35000;  ///< for the network connection to come up
    int reachWait = 30000;       ///< for the service to take a connection
    int formTimeout = 10000;     ///< for the reply to a form request
    int uploadTimeout = 1800000; ///< for the reply to an upload
    int proxyAnswer = 1000;      ///< an answer of the system about its proxy is good for this long
    int nameAnswer = 60000;      ///< an answer of the system about a host name, as well
    int rotationDelay = 50;      ///< before a preview is turned
    int categoryDelay = 50;      ///< before a chosen category is handed on
    int stateAnswerWait = 2000;  ///< of the connectionWait, for the daemon to tell its state
    int gconfWait = 2000;        ///< for the GConf server to answer
    int handOverWait = 2000;     ///< for the program that runs already to take what is handed over
};

const TimeConstants &timeConstants();
