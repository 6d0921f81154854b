/// \file
/// Files of bare pixels to frames.
#pragma once

#include "Frame.h"
#include "Options.h"

#include <cstdint>
#include <string>

/// Bytes of one frame: the first plane's rows, then chroma rows for every second row, without a gap.
/// Planar chroma rows take half the stride, interleaved ones the stride, an odd stride rounded up.
std::uint64_t GetRawFrameBytes(const SRawLayout& sLayout);

/// Reads one frame. Fails: throws CToolError, with both lengths when the file's is not the frame's.
SFrame ReadRawFrame(const std::string& strPath, const SRawLayout& sLayout);
