#include "dewarp/overlays/StringPlacement.h"

#include "dewarp/overlays/SGPUString.h"
#include "dewarp/overlays/StringList.h"

#include <algorithm>

namespace
{

const unsigned int FIRST_CODE = 32;
const unsigned int LAST_CODE = 127;
const int CELL_WIDTH = 38;
const int CELL_HEIGHT = 64;
// What lies far outside the target needs no memory of its exact place.
const long long FAR_OUTSIDE = 1LL << 28;

/// Where an extent of nLength starts: anchor against its reference, less what the alignment takes.
long long Start(int nAnchor, int nReference, int nAlign, int nViewport, long long nLength)
{
    long long n = nAnchor;
    if (nReference == 2)
        n += nViewport;
    else if (nReference == 1)
        n += nViewport / 2;
    if (nAlign == 2)
        n -= nLength;
    else if (nAlign == 1)
        n -= nLength / 2;
    return n;
}

} // namespace

SPlacedString PlaceString(const SGPUString& rString, int nViewportWidth, int nViewportHeight, bool bFlipY)
{
    SPlacedString s;
    const int h = rString.nHeight;
    if (h < 1 || h > MOST_TEXT_HEIGHT || rString.strText.empty())
        return s;
    s.nHeight = h;
    s.nGlyphWidth = h * CELL_WIDTH / CELL_HEIGHT;
    const long long nLength = static_cast<long long>(rString.strText.size()) * s.nGlyphWidth;
    const long long y = Start(rString.nY, rString.nVRef, rString.nVAlign, nViewportHeight, h);
    s.nX = Start(rString.nX, rString.nHRef, rString.nHAlign, nViewportWidth, nLength);
    s.nY = bFlipY ? nViewportHeight - h - y : y;
    s.bVisible =
        nLength >= 1 && s.nX < nViewportWidth && s.nX + nLength > 0 && s.nY < nViewportHeight && s.nY + h > 0;
    if (!s.bVisible)
        return s;
    const long long nLeft = std::max<long long>(s.nX, -FAR_OUTSIDE);
    const long long nRight = std::min<long long>(s.nX + nLength, FAR_OUTSIDE);
    s.sDrawn = {static_cast<int>(nLeft), static_cast<int>(s.nY), static_cast<int>(nRight - nLeft), h};
    return s;
}

int GlyphOf(char cCharacter)
{
    const unsigned int nCode = static_cast<unsigned char>(cCharacter);
    return nCode < FIRST_CODE || nCode > LAST_CODE ? -1 : static_cast<int>(nCode - FIRST_CODE);
}
