#include "dewarp/records/YUVColour.h"

#include "dewarp/records/ColourMatrix.h"

#include <algorithm>
#include <cmath>

namespace
{

float Channel(unsigned int nRGBA, int nShift)
{
    return static_cast<float>(nRGBA >> nShift & 255) / 255.0f;
}

unsigned int Byte(float fValue)
{
    return static_cast<unsigned int>(std::lround(std::clamp(fValue, 0.0f, 255.0f)));
}

} // namespace

unsigned int ConvertYUVToColour(unsigned int nYUVA, EYUVSpace eSpace, EYUVRange eRange)
{
    const SColourMatrix& rMatrix = ColourMatrixOf(eSpace);
    float y = Channel(nYUVA, 24);
    float u = Channel(nYUVA, 16) - 0.5f;
    float v = Channel(nYUVA, 8) - 0.5f;
    if (eRange == YUV_RANGE_LIMITED) {
        y = std::clamp((y * 255.0f - 16.0f) / 219.0f, 0.0f, 1.0f);
        u = std::clamp(u * 255.0f / 223.0f, -0.5f, 0.5f);
        v = std::clamp(v * 255.0f / 223.0f, -0.5f, 0.5f);
    }
    const float fRed = y + rMatrix.fRedV * v;
    const float fGreen = y - rMatrix.fGreenU * u - rMatrix.fGreenV * v;
    const float fBlue = y + rMatrix.fBlueU * u;
    return Byte(255.0f * fRed) << 24 | Byte(255.0f * fGreen) << 16 | Byte(255.0f * fBlue) << 8 |
           (nYUVA & 255);
}

unsigned int ConvertColourToYUV(unsigned int nRGBA, EYUVSpace eSpace, EYUVRange eRange)
{
    const SColourMatrix& rMatrix = ColourMatrixOf(eSpace);
    const float fRed = Channel(nRGBA, 24);
    const float fGreen = Channel(nRGBA, 16);
    const float fBlue = Channel(nRGBA, 8);
    const SLumaShares s = LumaSharesOf(rMatrix);
    const float y = (fGreen + s.fBlue * fBlue + s.fRed * fRed) / (1.0f + s.fBlue + s.fRed);
    const float u = (fBlue - y) / rMatrix.fBlueU;
    const float v = (fRed - y) / rMatrix.fRedV;
    const bool bLimited = eRange == YUV_RANGE_LIMITED;
    const float fLumaMin = bLimited ? 16.0f : 0.0f;
    const float fLumaSpan = bLimited ? 219.0f : 255.0f;
    const float fChromaSpan = bLimited ? 223.0f : 255.0f;
    return Byte(fLumaMin + fLumaSpan * y) << 24 | Byte(127.5f + fChromaSpan * u) << 16 |
           Byte(127.5f + fChromaSpan * v) << 8 | (nRGBA & 255);
}
