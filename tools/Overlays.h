/// \file
/// Overlays, masks and texts of one run.
#pragma once

#include "Frame.h"
#include "Options.h"

#include <optional>
#include <vector>

/// What is laid over the picture, read and understood.
struct SOverlays
{
    std::optional<SFrame> oInput; ///< RGBA
    std::optional<SFrame> oOutput;
    std::vector<SGPolygon> vMasks; ///< of the file, then of the command line
    std::vector<SGPUString> vTexts;
};

/// Reads the files the options name. Fails: throws CToolError; a list with an incomplete record is refused,
/// for a mask must not be missing unnoticed.
SOverlays LoadOverlays(const SToolOptions& sOptions);
