/// \file
/// The headers that are installed, and what they show.
#pragma once

#include "SourceTree.h"

#include <set>
#include <string>
#include <vector>

/// A line of the list of installed headers.
struct SInstalledHeader
{
    std::string strPath;
    std::string strReason; ///< behind a '#'; empty where there is none
};

/// The list as the build reads it (cmake/PublicHeaders.cmake), without the stand-ins for Android's headers.
std::vector<SInstalledHeader> InstalledHeaders();
std::vector<SInstalledHeader> InstalledHeadersIn(const std::string& strList);

std::set<std::string> NamesOf(const std::vector<SInstalledHeader>& vHeaders);

/// How a declaration is marked.
enum EMark : int
{
    MARK_NONE,     ///< hidden
    MARK_API,      ///< part of the interface
    MARK_INTERNAL, ///< shown by one of the library's parts to the other
};

/// Classes, records, functions and constants at the level of namespaces whose declaration has that mark. What
/// is inline needs none, nor do enumerations and declarations ahead.
std::vector<std::string> DeclarationsOf(const std::string& strHeader, EMark eMark);
