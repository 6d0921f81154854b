/// \file
/// Android's log interface for platforms without it: the same names and numbers. Lines go to stderr, or to
/// the function given to SetLogSink.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority
{
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT = 1,
    ANDROID_LOG_VERBOSE = 2,
    ANDROID_LOG_DEBUG = 3,
    ANDROID_LOG_INFO = 4,
    ANDROID_LOG_WARN = 5,
    ANDROID_LOG_ERROR = 6,
    ANDROID_LOG_FATAL = 7,
    ANDROID_LOG_SILENT = 8
} android_LogPriority;

/// Writes one line, made from a printf format: "I/TAG: text". Line ends within the text are written as "\n",
/// those at its end are dropped. A program's own function of this name is called instead.
/// Thread: any.
/// Fails: a negative result; nothing was written.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is given
int __android_log_print(int nPriority, const char* pTag, const char* pFormat, ...)
    __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif
