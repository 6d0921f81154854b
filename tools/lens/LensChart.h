/// \file
/// The curve of a lens as a picture.
#pragma once

#include "lens/Canvas.h"
#include "lens/LensSurvey.h"

#include <string>

/// Heights over angles, with the ideal lenses of the same field behind, 640 x 480 pixels.
/// Thread: any. Fails: never for lenses without fault.
CCanvas DrawLensChart(const std::string& strTitle, const SLensFile& rFile, const SLensSurvey& rSurvey);
