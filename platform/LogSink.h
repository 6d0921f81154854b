/// \file
/// Where the log lines go on a platform without a system log.
#pragma once

#include "platform/Export.h"

/// Receives one finished line (no line end) with its priority (4 information, 6 error) and tag. The texts are
/// the caller's and end with the call. May be called by any thread, by one at a time.
using FLogSink = void (*)(int nPriority, const char* pTag, const char* pLine, void* pUser);

/// Leads log lines to a function of the host; null: back to stderr. On Android it does nothing: the lines go
/// to the system's log. Owns: nothing; pUser is handed on and must live until another sink has been set.
/// Thread: any. On return the former sink has finished its last line.
/// Fails: never.
LUMOR_API void SetLogSink(FLogSink pSink, void* pUser);
