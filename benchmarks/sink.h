// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <atomic>
#include <thread>

/**
 * A service on a thread of its own that takes whatever is posted to it and throws it away. It
 * answers each request with as many bytes as its path says, "/tolvex/1000/" for 1000, and one
 * where that is no number, and closes the connection.
 */
class Sink
{
public:
    Sink();
    ~Sink();
    Sink(const Sink &) = delete;
    Sink &operator=(const Sink &) = delete;

    int port() const;

private:
    void serve();
    static void answer(int connection);

    int m_listener = -1;
    int m_port = 0;
    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};
