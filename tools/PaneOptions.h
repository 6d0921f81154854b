/// \file
/// Several views in one picture, as the command line describes them.
#pragma once

#include "Options.h"

#include <string>
#include <vector>

/// --pane "X,Y,W,H [view=NAME] [pan=DEGREES] ...": what is left out is that of the options. Throws
/// CToolError.
SPane ReadPane(const std::string& strText, const SToolOptions& rOptions);
/// --pane-gap PIXELS[,#RRGGBBAA], for the panes that were read. Throws CToolError.
void ReadPaneGap(const std::string& strText, SToolOptions& rOptions);

/// The smallest picture that has room for all panes.
SSize SizeOfPanes(const std::vector<SPane>& vPanes);
/// The options as they count for one pane.
SToolOptions OptionsOfPane(const SToolOptions& rOptions, const SPane& rPane);
/// What each pane has of the options that it cannot follow: one note for all where all have it.
std::vector<std::string> ListIgnoredInPanes(const SToolOptions& rOptions, int nInputFormat);
/// What was limited in which pane; vNow: the panes as they were drawn.
std::vector<std::string> ListLimitedPanes(const SToolOptions& rOptions, const std::vector<SPane>& vNow);
