/// \file
/// Names of the library's values on the command line.
#pragma once

#include "dewarp/Dewarper.h"

#include <string>

/// Each throws CToolError (EXIT_USAGE) with the list of names when the text is none of them.
EViewType ReadView(const std::string& strText); ///< by name or number
EMountType ReadMount(const std::string& strText);
EInterpolationType ReadInterpolation(const std::string& strText);
ESampling ReadSampling(const std::string& strText);
EYUVSpace ReadYUVSpace(const std::string& strText);
EYUVRange ReadYUVRange(const std::string& strText);
EDewarpEngine ReadEngine(const std::string& strText);
int ReadRawFormat(const std::string& strText); ///< EImageFormat

/// A known lens; false when the text is none.
bool FindLensName(const std::string& strText, ELensType& rLens);
