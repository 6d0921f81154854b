#include "ToolLog.h"

#include "platform/LogSink.h"

#include <cstdio>

CToolLog::CToolLog(bool bVerbose) : m_bVerbose(bVerbose)
{
    SetLogSink(Receive, this);
}

CToolLog::~CToolLog()
{
    SetLogSink(nullptr, nullptr);
}

void CToolLog::Receive(int /*nPriority*/, const char* pTag, const char* pLine, void* pUser)
{
    if (static_cast<CToolLog*>(pUser)->m_bVerbose)
        std::fprintf(stderr, "%s: %s\n", pTag, pLine);
}
