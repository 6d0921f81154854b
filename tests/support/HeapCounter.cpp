#include "tests/support/HeapCounter.h"

#include <cstddef>
#include <cstdlib>
#include <new>

// Plain integers, initialised with constants: they are touched from within operator new.
static thread_local int g_nDriverDepth = 0;
static thread_local bool g_bCounting = false;
static thread_local int g_nAllocations = 0;
static thread_local int g_nAllocationsUntilFailure = -1;
static thread_local bool g_bAllocationFailed = false;
static thread_local long g_nBlocks = 0;

CDriverScope::CDriverScope()
{
    ++g_nDriverDepth;
}

CDriverScope::~CDriverScope()
{
    --g_nDriverDepth;
}

static void CountAllocation()
{
    if (g_bCounting && g_nDriverDepth == 0)
        ++g_nAllocations;
}

void FailAllocation(int nSkip)
{
    g_nAllocationsUntilFailure = nSkip;
    g_bAllocationFailed = false;
}

bool AllocationHasFailed()
{
    return g_bAllocationFailed;
}

long HeapBlocks()
{
    return g_nBlocks;
}

int CHeapCounter::Count() const
{
    return g_nAllocations;
}

CHeapCounter::~CHeapCounter()
{
    g_bCounting = false;
}

#ifdef DEWARP_SANITIZED

// The sanitizer owns operator new and tells of every allocation itself.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*fMalloc)(const volatile void*, std::size_t),
                                                         void (*fFree)(const volatile void*));

static void OnMalloc(const volatile void* /*pBlock*/, std::size_t /*nSize*/)
{
    CountAllocation();
}

static void OnFree(const volatile void* /*pBlock*/) {}

bool CanFailAllocations()
{
    return false;
}

CHeapCounter::CHeapCounter()
{
    static const int INSTALLED = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
    (void)INSTALLED;
    g_nAllocations = 0;
    g_bCounting = true;
}

#else

bool CanFailAllocations()
{
    return true;
}

static bool MustFail()
{
    if (g_nAllocationsUntilFailure < 0 || g_nDriverDepth != 0)
        return false;
    g_bAllocationFailed = g_nAllocationsUntilFailure-- == 0;
    return g_bAllocationFailed;
}

CHeapCounter::CHeapCounter()
{
    g_nAllocations = 0;
    g_bCounting = true;
}

/// Null where the allocation fails.
static void* Take(std::size_t nSize) noexcept
{
    CountAllocation();
    if (MustFail())
        return nullptr;
    void* pBlock = std::malloc(nSize == 0 ? 1 : nSize);
    if (pBlock != nullptr && g_nDriverDepth == 0)
        ++g_nBlocks;
    return pBlock;
}

static void GiveBack(void* pBlock) noexcept
{
    if (pBlock != nullptr && g_nDriverDepth == 0)
        --g_nBlocks;
    std::free(pBlock);
}

void* operator new(std::size_t nSize)
{
    void* pBlock = Take(nSize);
    if (pBlock == nullptr)
        throw std::bad_alloc();
    return pBlock;
}

void* operator new[](std::size_t nSize)
{
    return operator new(nSize);
}

void* operator new(std::size_t nSize, const std::nothrow_t&) noexcept
{
    return Take(nSize);
}

void* operator new[](std::size_t nSize, const std::nothrow_t& oTag) noexcept
{
    return operator new(nSize, oTag);
}

void operator delete(void* pBlock) noexcept
{
    GiveBack(pBlock);
}

void operator delete[](void* pBlock) noexcept
{
    GiveBack(pBlock);
}

void operator delete(void* pBlock, std::size_t /*nSize*/) noexcept
{
    GiveBack(pBlock);
}

void operator delete[](void* pBlock, std::size_t /*nSize*/) noexcept
{
    GiveBack(pBlock);
}

#endif
