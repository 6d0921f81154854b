/// \file
/// Threads that draw, shared by all dewarpers of a process.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

/// Runs pieces of work on its threads and the caller's. Threads start when the first work for more than one
/// asks for them and end with the process. A process that cannot start threads draws on the caller's alone.
/// Owns: its threads. Thread: any. Fails: never; whoever calls does what nobody else does. Allocates when
/// threads start only.
class CWorkerPool
{
public:
    static CWorkerPool& Shared();
    /// Cores that this process may run on.
    static int CountCores();

    CWorkerPool() = default;
    CWorkerPool(const CWorkerPool&) = delete;
    CWorkerPool& operator=(const CWorkerPool&) = delete;
    ~CWorkerPool();

    /// Calls rWork(0) .. rWork(nPieces - 1), each once, on nThreads threads at most, the caller's among them;
    /// returns when all are done. The work must not throw.
    template <class F>
    void Run(int nThreads, int nPieces, F&& rWork)
    {
        using TWork = std::remove_reference_t<F>;
        RunPieces(
            nThreads, nPieces,
            [](void* pWork, int nPiece) noexcept { (*static_cast<TWork*>(pWork))(nPiece); }, &rWork);
    }

private:
    /// One piece of work that waits for hands. It lies on its caller's stack.
    struct SJob
    {
        void (*pCall)(void*, int) noexcept = nullptr;
        void* pWork = nullptr;
        int nPieces = 0;
        int nMostHelpers = 0;
        std::atomic<int> nNext{0};
        std::atomic<int> nHelpers{0}; ///< threads of the pool inside; changed under the lock
        SJob* pNext = nullptr;
    };

    void RunPieces(int nThreads, int nPieces, void (*pCall)(void*, int) noexcept, void* pWork);
    void StartThreads(int nThreads);
    void ThreadMain();
    static void Work(SJob& rJob);
    SJob* TakeJob();
    void Remove(SJob& rJob);

    std::mutex m_oMutex;
    std::condition_variable m_oWork;
    std::condition_variable m_oDone;
    SJob* m_pJobs = nullptr;
    std::vector<std::thread> m_vThreads;
    std::atomic<int> m_nWaiting{
        0}; ///< jobs that could use a hand: what idle threads look at before they sleep
    bool m_bEnd = false;
};
