/// \file
/// Where the library's log lines go while the tool runs.
#pragma once

#include <mutex>
#include <string>

/// Verbose: lines go to stderr at once. Otherwise nobody sees them: what failed, the dewarper is asked for
/// (GetLastErrorText), or the log where there is none. One at a time; the library's log goes there from
/// construction to destruction.
class CToolLog
{
public:
    explicit CToolLog(bool bVerbose);
    ~CToolLog();
    CToolLog(const CToolLog&) = delete;
    CToolLog& operator=(const CToolLog&) = delete;

    /// The last line that told of an error; empty when there was none.
    std::string GetLastError() const;

private:
    static void Receive(int nPriority, const char* pTag, const char* pLine, void* pUser);

    bool m_bVerbose;
    mutable std::mutex m_oMutex;
    std::string m_strLastError;
};
