/// \file
/// The coordinate map of a view, for programs that sample pictures themselves.
#pragma once

#include <string>
#include <vector>

/// Where each pixel of the output comes from: input pixels, 0 in the middle of the first one; not a number
/// where nothing is shown. Row by row.
struct SViewMap
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<float> vX;
    std::vector<float> vY;
};

/// Writes a map as files beside each other, for --map NAME:
///   NAME-x.f32, NAME-y.f32  the numbers themselves, 4 bytes each, low byte first, row by row;
///   NAME-x.png, NAME-y.png  16 bits: the coordinate times 16, 65535 where nothing is shown (inputs up to
///   4095); NAME-x.pgm, NAME-y.pgm  16 bits: the nearest pixel, for FFmpeg's remap filter, which fills what
///   is not
///                           shown where the number lies outside of the input.
/// Returns their names. Throws CToolError.
std::vector<std::string> WriteViewMap(const std::string& strName, const SViewMap& rMap);
