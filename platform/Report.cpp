#include "platform/Report.h"

#include <android/log.h>

#include <cstdarg>
#include <cstdio>

// The formats are literals of the callers, checked there by the compiler.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

void CReport::Error(const char* pFormat, ...)
{
    va_list vArguments;
    va_start(vArguments, pFormat);
    std::vsnprintf(m_aLast, sizeof m_aLast, pFormat, vArguments);
    va_end(vArguments);
    __android_log_print(ANDROID_LOG_ERROR, m_pTag, "%s", m_aLast);
}

void CReport::Refuse(const char* pFormat, ...)
{
    va_list vArguments;
    va_start(vArguments, pFormat);
    std::vsnprintf(m_aLast, sizeof m_aLast, pFormat, vArguments);
    va_end(vArguments);
    __android_log_print(ANDROID_LOG_INFO, m_pTag, "%s", m_aLast);
}

void CReport::Keep(const char* pFormat, ...)
{
    va_list vArguments;
    va_start(vArguments, pFormat);
    std::vsnprintf(m_aLast, sizeof m_aLast, pFormat, vArguments);
    va_end(vArguments);
}

void CReport::Standing(int nCause, const char* pFormat, ...)
{
    const unsigned int nBit = 1U << static_cast<unsigned int>(nCause);
    if ((m_nStanding & nBit) != 0)
        return;
    m_nStanding |= nBit;
    va_list vArguments;
    va_start(vArguments, pFormat);
    std::vsnprintf(m_aLast, sizeof m_aLast, pFormat, vArguments);
    va_end(vArguments);
    __android_log_print(ANDROID_LOG_ERROR, m_pTag, "%s", m_aLast);
}

#pragma GCC diagnostic pop
