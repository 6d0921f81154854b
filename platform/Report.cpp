#include "platform/Report.h"

#include <android/log.h>

#include <cstdio>
#include <cstring>

// No priority of the log: the text is kept only.
static const int KEPT_ONLY = -1;

// The formats are literals of the callers, checked there by the compiler.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void CReport::Write(int nPriority, const char* pFormat, std::va_list vArguments)
{
    std::vsnprintf(m_aLast, sizeof m_aLast, pFormat, vArguments);
    if (nPriority != KEPT_ONLY)
        __android_log_print(nPriority, m_pTag, "%s", m_aLast);
}

#pragma GCC diagnostic pop

void CReport::Error(const char* pFormat, ...)
{
    std::va_list vArguments;
    va_start(vArguments, pFormat);
    Write(ANDROID_LOG_ERROR, pFormat, vArguments);
    va_end(vArguments);
}

void CReport::Refuse(const char* pFormat, ...)
{
    std::va_list vArguments;
    va_start(vArguments, pFormat);
    Write(ANDROID_LOG_INFO, pFormat, vArguments);
    va_end(vArguments);
}

void CReport::Keep(const char* pFormat, ...)
{
    std::va_list vArguments;
    va_start(vArguments, pFormat);
    Write(KEPT_ONLY, pFormat, vArguments);
    va_end(vArguments);
    // The log drops line ends too.
    for (std::size_t i = std::strlen(m_aLast); i > 0 && m_aLast[i - 1] == '\n'; --i)
        m_aLast[i - 1] = '\0';
}

void CReport::Standing(int nCause, const char* pFormat, ...)
{
    const unsigned int nBit = 1U << static_cast<unsigned int>(nCause);
    if ((m_nStanding & nBit) != 0)
        return;
    m_nStanding |= nBit;
    std::va_list vArguments;
    va_start(vArguments, pFormat);
    Write(ANDROID_LOG_ERROR, pFormat, vArguments);
    va_end(vArguments);
}
