/// \file
/// Fitted lenses in words and figures.
#pragma once

#include "lens/LensFit.h"

#include <string>
#include <vector>

/// Every model with its field, centre and residuals, the chosen one marked, and what to mind about it.
/// Thread: any. Fails: never.
std::string ReportFits(const SFitData& rData, const SFitSetup& rSetup, const std::vector<SLensFit>& vFits,
                       const SLensFit& rChosen);
