#include "platform/LogSink.h"

#include <android/log.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>

#include <unistd.h>

namespace
{

// Recursive: a sink may log or replace itself.
std::recursive_mutex oSinkMutex;
FLogSink pSinkInUse = nullptr;
void* pSinkUser = nullptr;

// Texts up to this length need no memory beyond the stack: running out of memory can still be reported.
constexpr std::size_t SHORT_TEXT = 1024;
constexpr std::size_t LONGEST_TAG = 100;
constexpr std::size_t LONGEST_PREFIX = LONGEST_TAG + 5; // "I/", tag, ": ", end

/// Room for the prefix and for a text of that length in which every character is written as two.
constexpr std::size_t LineCapacity(std::size_t nTextLength)
{
    return LONGEST_PREFIX + 2 * nTextLength + 1;
}

char PriorityLetter(int nPriority)
{
    static const char szLetters[] = "??VDIWEFS";
    return nPriority >= 0 && nPriority <= ANDROID_LOG_SILENT ? szLetters[nPriority] : '?';
}

/// Writes the text as one line; returns where the line ends. Line ends at the text's end are dropped.
char* CopyAsOneLine(const char* pText, char* pTarget)
{
    char* pEnd = pTarget;
    for (; *pText != '\0'; ++pText) {
        if (*pText == '\n') {
            *pTarget++ = '\\';
            *pTarget++ = 'n';
        } else if (*pText != '\r') {
            *pTarget++ = *pText;
            pEnd = pTarget;
        }
    }
    return pEnd;
}

/// In one write where the system takes it whole, so that lines of several threads do not mix.
void WriteToStderr(const char* pNext, std::size_t nLeft)
{
    while (nLeft > 0) {
        const ssize_t nWritten = write(STDERR_FILENO, pNext, nLeft);
        if (nWritten < 0 && errno == EINTR)
            continue;
        if (nWritten <= 0)
            return; // nowhere left to complain
        pNext += nWritten;
        nLeft -= static_cast<std::size_t>(nWritten);
    }
}

/// pLine has room for LineCapacity of the text's length.
void Deliver(int nPriority, const char* pTag, const char* pText, char* pLine)
{
    const int nPrefix = std::snprintf(pLine, LONGEST_PREFIX, "%c/%.*s: ", PriorityLetter(nPriority),
                                      static_cast<int>(LONGEST_TAG), pTag);
    char* const pContents = pLine + nPrefix;
    char* const pEnd = CopyAsOneLine(pText, pContents);
    {
        // Held while the sink runs: once SetLogSink has returned, the former sink is no longer in use.
        const std::lock_guard<std::recursive_mutex> oLock(oSinkMutex);
        if (pSinkInUse != nullptr) {
            *pEnd = '\0';
            pSinkInUse(nPriority, pTag, pContents, pSinkUser);
            return;
        }
    }
    *pEnd = '\n';
    WriteToStderr(pLine, static_cast<std::size_t>(pEnd + 1 - pLine));
}

} // namespace

void SetLogSink(FLogSink pSink, void* pUser)
{
    const std::lock_guard<std::recursive_mutex> oLock(oSinkMutex);
    pSinkInUse = pSink;
    pSinkUser = pUser;
}

// Weak: a program's own function of this name goes first.
extern "C" __attribute__((weak, visibility("default"))) int
__android_log_print(int nPriority, const char* pTag, const char* pFormat, ...)
{
    const int nErrorNumber = errno; // logging a failure must not change its reason
    char szText[SHORT_TEXT];
    char szLine[LineCapacity(SHORT_TEXT)];
    std::va_list vArguments;
    va_start(vArguments, pFormat);
    std::va_list vAgain;
    va_copy(vAgain, vArguments);
    // The analyser does not see that va_start filled it in. NOLINTNEXTLINE
    const int nLength = std::vsnprintf(szText, sizeof szText, pFormat, vArguments);
    va_end(vArguments);

    // A longer text is made again in memory of its size; when there is none, its beginning must do.
    std::unique_ptr<char[]> pLong;
    const std::size_t nSize = nLength < 0 ? 0 : static_cast<std::size_t>(nLength) + 1;
    if (nSize > sizeof szText) {
        pLong.reset(new (std::nothrow) char[nSize + LineCapacity(nSize)]);
        if (pLong)
            std::vsnprintf(pLong.get(), nSize, pFormat, vAgain);
    }
    va_end(vAgain);
    if (nLength >= 0)
        Deliver(nPriority, pTag != nullptr ? pTag : "", pLong ? pLong.get() : szText,
                pLong ? pLong.get() + nSize : szLine);
    errno = nErrorNumber;
    return nLength < 0 ? -1 : nLength;
}
