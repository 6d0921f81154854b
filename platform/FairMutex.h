/// \file
/// A lock that is handed on in turn.
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

/// May be taken again by the thread that holds it. Who waits comes next: a thread that draws frame after
/// frame and frees the lock only for a moment keeps nobody out, as a plain mutex does for seconds on end.
class CFairMutex
{
public:
    void lock()
    {
        if (m_oOwner.load(std::memory_order_relaxed) == std::this_thread::get_id()) {
            ++m_nDepth;
            return;
        }
        const std::lock_guard<std::mutex> oTurn(m_oTurn);
        m_oHeld.lock();
        m_oOwner.store(std::this_thread::get_id(), std::memory_order_relaxed);
        m_nDepth = 1;
    }

    void unlock()
    {
        if (--m_nDepth > 0)
            return;
        m_oOwner.store(std::thread::id(), std::memory_order_relaxed);
        m_oHeld.unlock();
    }

private:
    std::mutex m_oTurn; ///< held by the one who is next
    std::mutex m_oHeld;
    std::atomic<std::thread::id> m_oOwner{};
    int m_nDepth = 0;
};
