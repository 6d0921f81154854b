/// \file
/// What ends a run of the tool early.
#pragma once

#include <stdexcept>
#include <string>

/// Exit statuses of the tool.
enum EExitStatus : int
{
    EXIT_DONE = 0,
    EXIT_FAILED = 1, ///< the picture could not be made
    EXIT_USAGE = 2,  ///< the command line cannot be followed
};

/// One line for the user (what, where, what to do), without the program's name, and the exit status.
class CToolError : public std::runtime_error
{
public:
    CToolError(EExitStatus eStatus, const std::string& strLine)
        : std::runtime_error(strLine), m_eStatus(eStatus)
    {}
    EExitStatus GetStatus() const { return m_eStatus; }

private:
    EExitStatus m_eStatus;
};

[[noreturn]] inline void ThrowFailure(const std::string& strLine)
{
    throw CToolError(EXIT_FAILED, strLine);
}
[[noreturn]] inline void ThrowUsage(const std::string& strLine)
{
    throw CToolError(EXIT_USAGE, strLine);
}
