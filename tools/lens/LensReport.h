/// \file
/// A lens in words and figures.
#pragma once

#include "lens/LensSurvey.h"

#include <cstddef>
#include <string>

/// What the lens is, its curve every five degrees, and the ideal lenses beside it. strName: what it was given
/// as. Thread: any. Fails: never for lenses without fault.
std::string ReportLens(const std::string& strName, const SLensFile& rFile, const SLensSurvey& rSurvey);
/// "equidistant:200", or what kind of calibration or table it is.
std::string LensTitle(const SLens& rLens);
/// With spaces before it up to a width.
std::string Padded(const std::string& strText, std::size_t nWidth);
/// On one line, whatever bytes a file holds.
std::string OneLine(std::string strText);
