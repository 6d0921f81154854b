#include "dewarp/cpu/WorkerPool.h"

#include <algorithm>
#include <system_error>

namespace
{

// How often an idle thread looks for work before it sleeps: some tens of microseconds, the time between the
// steps of a frame. Waking costs as much.
const int SPINS = 4000;
const int MOST_THREADS = 256;

void Pause()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

} // namespace

CWorkerPool& CWorkerPool::Shared()
{
    static CWorkerPool oPool;
    return oPool;
}

int CWorkerPool::CountCores()
{
    return std::max(static_cast<int>(std::thread::hardware_concurrency()), 1);
}

CWorkerPool::~CWorkerPool()
{
    {
        const std::lock_guard oLock(m_oMutex);
        m_bEnd = true;
    }
    m_oWork.notify_all();
    for (std::thread& rThread : m_vThreads)
        rThread.join();
}

void CWorkerPool::StartThreads(int nThreads)
{
    try {
        while (static_cast<int>(m_vThreads.size()) < std::min(nThreads, MOST_THREADS))
            m_vThreads.emplace_back([this] { ThreadMain(); });
    } catch (const std::system_error&) {
        // As many as there are.
    } catch (const std::bad_alloc&) {
    }
}

/// A job that can use a hand; under the lock.
CWorkerPool::SJob* CWorkerPool::TakeJob()
{
    for (SJob* p = m_pJobs; p != nullptr; p = p->pNext) {
        if (p->nHelpers < p->nMostHelpers && p->nNext.load(std::memory_order_relaxed) < p->nPieces)
            return p;
    }
    return nullptr;
}

void CWorkerPool::Work(SJob& rJob)
{
    for (int n = rJob.nNext.fetch_add(1, std::memory_order_relaxed); n < rJob.nPieces;
         n = rJob.nNext.fetch_add(1, std::memory_order_relaxed))
        rJob.pCall(rJob.pWork, n);
}

void CWorkerPool::ThreadMain()
{
    std::unique_lock oLock(m_oMutex);
    while (!m_bEnd) {
        SJob* const pJob = TakeJob();
        if (pJob != nullptr) {
            ++pJob->nHelpers;
            oLock.unlock();
            Work(*pJob);
            oLock.lock();
            pJob->nHelpers.fetch_sub(1, std::memory_order_release); // the job may be gone from here on
            m_oDone.notify_all();
            continue;
        }
        oLock.unlock();
        for (int n = 0; n < SPINS && m_nWaiting.load(std::memory_order_relaxed) == 0; ++n)
            Pause();
        oLock.lock();
        if (TakeJob() == nullptr && !m_bEnd)
            m_oWork.wait(oLock, [this] { return m_bEnd || TakeJob() != nullptr; });
    }
}

void CWorkerPool::Remove(SJob& rJob)
{
    SJob** pp = &m_pJobs;
    while (*pp != &rJob)
        pp = &(*pp)->pNext;
    *pp = rJob.pNext;
}

void CWorkerPool::RunPieces(int nThreads, int nPieces, void (*pCall)(void*, int) noexcept, void* pWork)
{
    SJob sJob;
    sJob.pCall = pCall;
    sJob.pWork = pWork;
    sJob.nPieces = nPieces;
    sJob.nMostHelpers = std::min(nThreads, nPieces) - 1;
    if (sJob.nMostHelpers < 1) {
        Work(sJob);
        return;
    }
    {
        const std::lock_guard oLock(m_oMutex);
        if (static_cast<int>(m_vThreads.size()) < sJob.nMostHelpers)
            StartThreads(sJob.nMostHelpers);
        sJob.pNext = m_pJobs;
        m_pJobs = &sJob;
        m_nWaiting.fetch_add(1, std::memory_order_relaxed);
    }
    m_oWork.notify_all();
    Work(sJob);
    m_nWaiting.fetch_sub(1, std::memory_order_relaxed);
    {
        const std::lock_guard oLock(m_oMutex);
        Remove(sJob);
    }
    // Helpers are at their last pieces: to sleep and be woken would take longer.
    for (int n = 0; n < SPINS && sJob.nHelpers.load(std::memory_order_acquire) != 0; ++n)
        Pause();
    if (sJob.nHelpers.load(std::memory_order_acquire) == 0)
        return;
    std::unique_lock oLock(m_oMutex);
    m_oDone.wait(oLock, [&] { return sJob.nHelpers == 0; });
}
