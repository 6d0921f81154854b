/// \file
/// Remarks about options that were understood but do nothing, or not all they were asked for.
#pragma once

#include "Options.h"

#include <string>
#include <vector>

/// Options that the view, the mount or the input's format leaves without effect. Each remark is one line
/// without the program's name.
std::vector<std::string> ListIgnoredOptions(const SToolOptions& sOptions, int nInputFormat);

/// Characters the built-in font does not have.
std::vector<std::string> ListUndrawableTexts(const std::vector<SGPUString>& vTexts);

/// Pan, tilt and zoom that were asked for and lie beyond the view's limits, given the values in force.
std::vector<std::string> ListLimitedPTZ(const SToolOptions& sOptions, float fPan, float fTilt, float fZoom);

/// Views that are drawn flat turn with --rotation.
bool IsFlatView(EViewType eView);
