#include "ToolLog.h"

#include "platform/LogSink.h"

#include <cstdio>

static const int ERROR_PRIORITY = 6;

CToolLog::CToolLog(bool bVerbose) : m_bVerbose(bVerbose)
{
    SetLogSink(Receive, this);
}

CToolLog::~CToolLog()
{
    SetLogSink(nullptr, nullptr);
}

std::string CToolLog::GetLastError() const
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    return m_strLastError;
}

void CToolLog::Receive(int nPriority, const char* pTag, const char* pLine, void* pUser)
{
    CToolLog& rLog = *static_cast<CToolLog*>(pUser);
    if (nPriority >= ERROR_PRIORITY) {
        const std::lock_guard<std::mutex> oLock(rLog.m_oMutex);
        rLog.m_strLastError = pLine;
    }
    if (rLog.m_bVerbose)
        std::fprintf(stderr, "%s: %s\n", pTag, pLine);
}
