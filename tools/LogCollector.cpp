#include "LogCollector.h"

#include "platform/LogSink.h"

#include <cstdio>

CLogCollector::CLogCollector(bool bVerbose) : m_bVerbose(bVerbose)
{
    SetLogSink(Receive, this);
}

CLogCollector::~CLogCollector()
{
    SetLogSink(nullptr, nullptr);
}

void CLogCollector::Receive(int nPriority, const char* pTag, const char* pLine, void* pUser)
{
    auto* pThis = static_cast<CLogCollector*>(pUser);
    if (pThis->m_bVerbose)
        std::fprintf(stderr, "%s: %s\n", pTag, pLine);
    if (nPriority >= pThis->m_nKeptPriority) {
        pThis->m_nKeptPriority = nPriority;
        pThis->m_strKept = pLine;
    }
}

std::string CLogCollector::GetReason() const
{
    return m_strKept.empty() ? "" : " (" + m_strKept + ")";
}
