#include "platform/Assert.h"

#include <android/log.h>

#include <cstdio>
#include <cstdlib>

// Weak: a program's own function of this name goes first.
extern "C" __attribute__((weak, visibility("default"))) void
__assert2(const char* pFile, int nLine, const char* pFunction, const char* pExpression)
{
    char szText[1024];
    std::snprintf(szText, sizeof szText, "%s:%d: %s: assertion \"%s\" failed", pFile, nLine, pFunction,
                  pExpression);
    // Both ways, for the log may be led elsewhere.
    __android_log_print(ANDROID_LOG_FATAL, "libc", "%s", szText);
    std::fprintf(stderr, "%s\n", szText);
    std::abort();
}
