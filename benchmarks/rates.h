// SPDX-License-Identifier: MIT

#pragma once

#include "plainconnection.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

/**
 * Answers a second to @p clients at a time, each request on a connection of its own. They go on for
 * @p time or, when that is 0, until @p most were sent. An empty or missing answer does not count.
 */
inline double answersASecond(int port, const QByteArray &request, int clients,
                             std::chrono::milliseconds time, int most = 0)
{
    std::atomic<int> begun{0};
    std::atomic<int> done{0};
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    QElapsedTimer timer;
    timer.start();
    threads.reserve(size_t(clients));
    for (int i = 0; i < clients; ++i) {
        threads.emplace_back([&] {
            while (!isOver && (most == 0 || begun++ < most)) {
                const PlainConnection connection(port);
                if (connection.send(request) && connection.reply().status / 100 == 2)
                    ++done;
            }
        });
    }
    if (most == 0) {
        std::this_thread::sleep_for(time);
        isOver = true;
    }
    for (std::thread &thread : threads)
        thread.join();
    return done * 1e9 / double(timer.nsecsElapsed());
}
