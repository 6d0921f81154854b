/// \file
/// Log lines of one object: the last error is kept as text, and what goes wrong frame after frame is said
/// once.
#pragma once

#include "platform/Export.h"

#include <cstdarg>

/// Owns: the text of the last error, at most 255 characters. Allocates nothing.
/// Thread: any, serialised by whoever owns the object. Fails: never; what is too long is cut off.
class LUMOR_INTERNAL_API CReport
{
public:
    explicit CReport(const char* pTag) : m_pTag(pTag) {}

    /// Logs a line at error priority (a failure) or information priority (a refusal) and keeps its text.
    void Error(const char* pFormat, ...) __attribute__((format(printf, 2, 3)));
    void Refuse(const char* pFormat, ...) __attribute__((format(printf, 2, 3)));
    /// Keeps a text as the last error that somebody else has logged.
    void Keep(const char* pFormat, ...) __attribute__((format(printf, 2, 3)));
    /// As Error, once as long as the cause stands. Causes are numbered 0 to 31 by whoever reports.
    void Standing(int nCause, const char* pFormat, ...) __attribute__((format(printf, 3, 4)));
    /// That cause, or every one, stands no longer: the next time it is said again.
    void Over(int nCause) { m_nStanding &= ~(1U << static_cast<unsigned int>(nCause)); }
    void AllOver() { m_nStanding = 0; }

    /// What went wrong last, without the log's tag; empty when nothing has yet.
    const char* LastError() const { return m_aLast; }

private:
    void Write(int nPriority, const char* pFormat, std::va_list vArguments);

    const char* m_pTag;
    unsigned int m_nStanding = 0;
    char m_aLast[256] = "";
};
