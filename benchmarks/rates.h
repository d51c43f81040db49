// SPDX-License-Identifier: MIT

#pragma once

#include "plainconnection.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QTextStream>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

// How often something is answered, and how that compares with something else in the same run.

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

/** What several runs found, to be told as their middle one with the least and the most. */
class Runs
{
public:
    void add(double value)
    {
        m_last = value;
        m_values.append(value);
        std::sort(m_values.begin(), m_values.end());
    }
    double last() const
    {
        return m_last;
    }
    double median() const
    {
        return m_values.at(m_values.size() / 2);
    }
    QString text() const
    {
        return QStringLiteral("%1 (%2 to %3)")
            .arg(median(), 0, 'g', 3)
            .arg(m_values.first(), 0, 'g', 3)
            .arg(m_values.last(), 0, 'g', 3);
    }

private:
    double m_last = 0;
    QList<double> m_values;
};
