/// \file
/// Where a line of text lies in the target, and which glyph draws a character.
#pragma once

#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

struct SGPUString;

/// One string in a target. Units: pixels of the target; wide, for anchors may lie anywhere.
struct SPlacedString
{
    long long nX = 0;      ///< column where the first glyph begins; the next ones follow nGlyphWidth apart
    long long nY = 0;      ///< first row of the glyphs
    int nGlyphWidth = 0;   ///< 0 for strings less than 2 pixels high, which cover nothing
    int nHeight = 0;       ///< of the glyphs
    SGRect sDrawn;         ///< what the string covers, also where that is outside of the target
    bool bVisible = false; ///< false: it draws nothing, and sDrawn is empty
};

/// Places a string in a viewport. bFlipY: rows count from the other end. Thread: any. Fails: never; strings
/// without text, without height, too high, or outside the viewport are not visible.
LUMOR_INTERNAL_API SPlacedString PlaceString(const SGPUString& rString, int nViewportWidth,
                                             int nViewportHeight, bool bFlipY);

/// Cell of the font that draws a character; -1 when the font has none, and its place stays empty.
LUMOR_INTERNAL_API int GlyphOf(char cCharacter);
