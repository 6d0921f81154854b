/// \file
/// One line of text drawn over the result.
#pragma once

#include "platform/Export.h"

#include <string>

/// Units: pixels of the target, from its top left.
struct LUMOR_API SGPUString
{
    std::string strText; ///< codes 32 to 127 are drawable
    int nX = 0;
    int nY = 0;
    int nHeight = 32;                 ///< glyphs are nHeight * 38 / 64 wide
    unsigned int nColor = 0x00FF00FF; ///< 0xRRGGBBAA
    int nHAlign = 0;                  ///< the anchor is the string's 0 start, 1 middle, 2 end
    int nVAlign = 0;                  ///< the anchor is the glyph box's 0 top, 1 middle, 2 bottom
    int nHRef = 0;                    ///< x counts from the target's 0 left edge, 1 middle, 2 right edge
    int nVRef = 0;                    ///< y counts from the target's 0 top edge, 1 middle, 2 bottom edge
    int nDrawnX = 0;                  ///< rectangle covered when last drawn
    int nDrawnY = 0;
    int nDrawnW = 0;
    int nDrawnH = 0;
    int nOverlapGroup = 0; ///< strings whose rectangles overlap share a number other than 0

    SGPUString() = default;
    SGPUString(const SGPUString&) = default;
    /// Takes text, place and look; what was drawn stays as it is, so that it can still be erased.
    SGPUString& operator=(const SGPUString& sOther);
    /// True when text, place or look differ.
    bool operator!=(const SGPUString& sOther) const;
};
