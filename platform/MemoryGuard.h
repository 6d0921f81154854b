/// \file
/// Keeps a lack of memory inside the library.
#pragma once

#include "platform/Report.h"

#include <new>
#include <utility>

/// Runs a piece of work. Memory that cannot be had becomes one log line and the given result: the library's
/// operations throw nothing.
template <class R, class F>
R GuardMemory(const char* pFunction, CReport& rReport, R tFailed, F&& fWork)
{
    try {
        return std::forward<F>(fWork)();
    } catch (const std::bad_alloc&) {
        rReport.Error("%s: out of memory", pFunction);
        return tFailed;
    }
}
