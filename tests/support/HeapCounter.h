/// \file
/// Counts what this thread takes from the heap, leaving out what GL, EGL and the recording layer take.
#pragma once

/// Marks the time spent below the library: in the driver and in the recording layer.
class CDriverScope
{
public:
    CDriverScope();
    ~CDriverScope();
    CDriverScope(const CDriverScope&) = delete;
    CDriverScope& operator=(const CDriverScope&) = delete;
};

/// Counts allocations of the thread that made it, from construction on. One at a time.
class CHeapCounter
{
public:
    CHeapCounter();
    ~CHeapCounter();
    CHeapCounter(const CHeapCounter&) = delete;
    CHeapCounter& operator=(const CHeapCounter&) = delete;

    /// Allocations so far.
    int Count() const;
};

/// True where FailAllocation works: a sanitizer keeps operator new to itself.
bool CanFailAllocations();

/// Blocks that this thread has taken and not given back, counted as CHeapCounter counts; only differences
/// mean something. Always 0 where a sanitizer keeps operator new to itself: it tells of leaks itself.
long HeapBlocks();

/// Makes one allocation of this thread, counted as CHeapCounter counts, fail (with std::bad_alloc, or null
/// where that was asked for): the next one after nSkip others. Below 0: none.
void FailAllocation(int nSkip);

/// True when the allocation that was to fail has failed.
bool AllocationHasFailed();
