/// \file
/// Catches the library's log lines.
#pragma once

#include <string>
#include <vector>

/// One caught line.
struct SLogLine
{
    int nPriority = 0;
    std::string strTag;
    std::string strText;
};

/// Catches lines while it lives; afterwards they go to stderr again. One at a time, on one thread.
class CLogCapture
{
public:
    CLogCapture();
    ~CLogCapture();
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;

    const std::vector<SLogLine>& Lines() const { return m_vLines; }
    /// True when a line holds that text.
    bool Contains(const std::string& strText) const;
    /// All lines, one below the other.
    std::string Text() const;
    void Clear();

private:
    static void OnLine(int nPriority, const char* pTag, const char* pLine, void* pUser);

    std::vector<SLogLine> m_vLines;
};
