/// \file
/// Picture files to frames, through FFmpeg's libraries.
#pragma once

#include "Frame.h"
#include "Options.h"

#include <string>

/// Decodes the first picture of a file. 4:2:0, gray and packed RGB pictures go in as they were decoded;
/// other YUV pictures are scaled to 4:2:0 within their own range, everything else becomes RGB or RGBA.
/// Fails: throws CToolError.
SFrame ReadImage(const std::string& strPath);

/// The same as RGBA, whatever the file holds.
SFrame ReadImageRGBA(const std::string& strPath);

/// As RGBA, scaled to the largest size that fits into the box.
SFrame ReadImageFitted(const std::string& strPath, SSize sBox);
