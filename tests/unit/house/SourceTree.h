/// \file
/// The project's sources as text, for tests about the sources themselves.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

/// Sources by their path from the repository's root, with forward slashes.
using MSources = std::map<std::string, std::string>;

/// All files below the folders whose names end in one of the endings. Missing folders are empty.
MSources ReadSources(const std::vector<std::string>& vFolders, const std::vector<std::string>& vEndings);

/// What stands in "" or <> behind #include, in order; our own ones with their quotes: "dewarp/x.h", <vector>.
std::vector<std::string> IncludesOf(const std::string& strSource);

/// The source without comments; line ends stay.
std::string WithoutComments(const std::string& strSource);

/// The place behind the raw literal whose first quote stands at nQuote.
std::size_t BehindRawLiteral(const std::string& strSource, std::size_t nQuote);

/// The includes of a file, of the files it includes, and so on; only our own files are entered.
std::vector<std::string> IncludesReached(const MSources& oSources, const std::string& strPath);

/// The pieces, one behind the other.
std::string Concatenate(std::initializer_list<std::string> vPieces);

/// Lines, counting an unfinished last one.
int CountLines(const std::string& strSource);
