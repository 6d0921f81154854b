/// \file
/// How rooms depend on each other: through includes, and through methods that are defined away from their
/// class.
#pragma once

#include "SourceTree.h"

#include <string>
#include <vector>

/// The room of a file: its folder directly below dewarp/, else its first folder. The umbrella header includes
/// everything and is needed by nothing: it stands by itself. So does the interface of both engines, which
/// each engine needs and which needs none.
std::string RoomOf(const std::string& strPath);

/// One line for every room that includes another one which needs it too, directly or through further rooms.
std::vector<std::string> RoomsThatNeedEachOther(const MSources& oSources);

/// One line for every method in a source whose class stands in a header of another room. Headers that only
/// mention the class do not count.
std::vector<std::string> MethodsAwayFromHome(const MSources& oSources);

/// One line for every function longer than that.
std::vector<std::string> LongFunctions(const MSources& oSources, int nLines);
