#include "tests/support/LogCapture.h"

#include "platform/LogSink.h"
#include "tests/support/HeapCounter.h"

CLogCapture::CLogCapture()
{
    SetLogSink(OnLine, this);
}

CLogCapture::~CLogCapture()
{
    SetLogSink(nullptr, nullptr);
    Clear();
}

void CLogCapture::Clear()
{
    CDriverScope oScope;
    std::vector<SLogLine>().swap(m_vLines);
}

void CLogCapture::OnLine(int nPriority, const char* pTag, const char* pLine, void* pUser)
{
    // What is noted here is none of the library's memory.
    CDriverScope oScope;
    static_cast<CLogCapture*>(pUser)->m_vLines.push_back(SLogLine{nPriority, pTag, pLine});
}

bool CLogCapture::Contains(const std::string& strText) const
{
    for (const SLogLine& sLine : m_vLines)
        if (sLine.strText.find(strText) != std::string::npos)
            return true;
    return false;
}

std::string CLogCapture::Text() const
{
    std::string strText;
    for (const SLogLine& sLine : m_vLines)
        strText += sLine.strText + "\n";
    return strText;
}
