/// \file
/// Where the log lines go on a platform without a system log.
#pragma once

/// Receives one finished line (no line end) with its priority (4 information, 6 error) and tag.
using FLogSink = void (*)(int nPriority, const char* pTag, const char* pLine, void* pUser);

/// Sends log lines to a function of the host; null: back to stderr. Thread: any. On Android it does nothing:
/// the lines go to the system's log.
void SetLogSink(FLogSink pSink, void* pUser);
