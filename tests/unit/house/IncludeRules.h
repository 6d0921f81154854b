/// \file
/// Which room of the house may include what.
#pragma once

#include "SourceTree.h"

#include <set>
#include <string>
#include <vector>

/// Kinds of system headers.
enum ESystemHeader : int
{
    HEADER_STANDARD = 1, ///< C++ and C standard library
    HEADER_CLOCK = 2,    ///< clocks and calendars of the standard library
    HEADER_GL = 4,
    HEADER_EGL = 8,
    HEADER_LOG = 16,     ///< <android/log.h>
    HEADER_ANDROID = 32, ///< Android's other headers
    HEADER_OTHER = 64,   ///< the operating system, other libraries
};

/// A rule counts for the files whose path begins with one of its beginnings; of several the longest counts.
struct SRoomRule
{
    std::string strRoom;                 ///< beginning of the paths
    std::vector<std::string> vOwn;       ///< beginnings of our own headers it may include
    int nSystem = 0;                     ///< ESystemHeader it may reach, through whatever file
    std::vector<std::string> vForbidden; ///< beginnings of our own headers it may not reach through any file
};

/// The rules of this house.
const std::vector<SRoomRule>& HouseRules();

/// The kind of a header, given with its angle brackets.
ESystemHeader KindOf(const std::string& strInclude);

/// One line for every include that breaks a rule, and for every file without a rule.
std::vector<std::string> BrokenIncludeRules(const MSources& oSources, const std::vector<SRoomRule>& vRules);

/// One line for every include and call that a user of the library may not have: our sources, headers of ours
/// that are not installed, GL and EGL.
std::vector<std::string> BrokenUserRules(const MSources& oSources, const std::set<std::string>& oInstalled);
