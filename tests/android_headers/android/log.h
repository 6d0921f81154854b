// The part of Android's log interface that the library uses.
#pragma once

enum
{
    ANDROID_LOG_INFO = 4,
    ANDROID_LOG_ERROR = 6,
    ANDROID_LOG_FATAL = 7,
};

extern "C" int __android_log_print(int nPriority, const char* pTag, const char* pFormat, ...)
    __attribute__((__format__(printf, 3, 4)));
