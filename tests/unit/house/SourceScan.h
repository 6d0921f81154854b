/// \file
/// Where functions and classes stand in a source. Reads this house's way of writing, not all of C++: what a
/// preprocessor would change is not seen.
#pragma once

#include <string>
#include <vector>

/// A function with its body.
struct SFunction
{
    std::string strName; ///< as it is written there: "Main", "CClass::Method"
    int nLine = 0;       ///< of its first word; the first line of a file is 1
    int nLines = 0;      ///< from there to the closing brace
};

/// What stands at the level of namespaces and classes; bodies are not looked into.
struct SScan
{
    std::vector<SFunction> vFunctions;
    std::vector<std::string> vTypes; ///< classes, structures and unions with a body
};

/// The source without comments and preprocessor lines, literals empty; line ends stay.
std::string BareCode(const std::string& strSource);

/// Functions and types of a source, in order.
SScan ScanSource(const std::string& strSource);

/// Names that begin with one of the beginnings and a capital letter and are called: "glClear" for "gl".
std::vector<std::string> CallsOf(const std::string& strSource, const std::vector<std::string>& vBeginnings);
