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
