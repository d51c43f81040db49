// SPDX-License-Identifier: MIT

#include "workers.h"

Workers::Workers(int threads)
    : m_running(threads)
{
    for (int i = 0; i < threads; ++i)
        m_threads.emplace_back([this] { work(); });
}

Workers::~Workers()
{
    end(Clock::now());
    for (std::thread &thread : m_threads)
        thread.join();
}

void Workers::run(Task task, std::chrono::milliseconds delay)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_running == 0) {
        lock.unlock();
        task();
        return;
    }
    m_tasks.emplace(Clock::now() + delay, std::move(task));
    m_changed.notify_one();
}

bool Workers::end(Clock::time_point deadline)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isEnding = true;
    m_changed.notify_all();
    return m_changed.wait_until(lock, deadline, [this] { return m_running == 0; });
}

void Workers::work()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_isEnding || !m_tasks.empty()) {
        if (m_tasks.empty()) {
            m_changed.wait(lock);
        } else if (!m_isEnding && m_tasks.begin()->first > Clock::now()) {
            // A copy: another thread may take the task meanwhile, and the time with it.
            const Clock::time_point next = m_tasks.begin()->first;
            m_changed.wait_until(lock, next);
        } else {
            const Task task = std::move(m_tasks.begin()->second);
            m_tasks.erase(m_tasks.begin());
            lock.unlock();
            task();
            lock.lock();
        }
    }
    --m_running;
    m_changed.notify_all();
}
