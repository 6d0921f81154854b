/// \file
/// Where the library's log lines go while the tool runs.
#pragma once

#include <string>

/// Verbose: lines go to stderr at once. Otherwise the last error, or else the last line, is kept for the
/// message of a failure. One at a time; the library's log goes there from construction to destruction.
class CLogCollector
{
public:
    explicit CLogCollector(bool bVerbose);
    ~CLogCollector();
    CLogCollector(const CLogCollector&) = delete;
    CLogCollector& operator=(const CLogCollector&) = delete;

    /// " (the line)", or nothing when nothing was logged.
    std::string GetReason() const;

private:
    static void Receive(int nPriority, const char* pTag, const char* pLine, void* pUser);

    bool m_bVerbose;
    int m_nKeptPriority = 0;
    std::string m_strKept;
};
