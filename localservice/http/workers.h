// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

/**
 * A few threads that do what they are given, the earliest first. What takes long has workers of its
 * own, so that nothing else waits behind it.
 */
class Workers
{
public:
    using Task = std::function<void()>;
    using Clock = std::chrono::steady_clock;

    explicit Workers(int threads);
    /** Ends them as end() does, and waits as long as that takes. */
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    /**
     * Has @p task done as soon as there is a thread for it, but not before @p delay is over. Once
     * the threads have ended it is done here and now.
     */
    void run(Task task, std::chrono::milliseconds delay = {});

    /**
     * Has all that was given so far done at once, delayed or not, and then ends the threads. False
     * when that is not over at @p deadline.
     */
    bool end(Clock::time_point deadline);

private:
    void work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::multimap<Clock::time_point, Task> m_tasks;
    std::vector<std::thread> m_threads;
    int m_running;
    bool m_isEnding = false;
};
