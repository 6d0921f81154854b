#include "dewarp/overlays/YUVColour.h"

#include <algorithm>
#include <cmath>

namespace
{

/// red = y + fRedV v; green = y - fGreenU u - fGreenV v; blue = y + fBlueU u.
struct SMatrix
{
    float fRedV;
    float fGreenU;
    float fGreenV;
    float fBlueU;
};

// The conversions that the view's shader texts do the other way.
const SMatrix BT601 = {1.402f, 0.344f, 0.714f, 1.772f};
const SMatrix BT709 = {1.575f, 0.187f, 0.468f, 1.856f};
const SMatrix BT2020 = {1.475f, 0.165f, 0.571f, 1.881f};
const SMatrix BT601_SCALED = {1.3707f, 0.3376f, 0.6980f, 1.7324f};

const SMatrix& MatrixOf(EYUVSpace eSpace)
{
    switch (static_cast<int>(eSpace)) {
    case YUV_SPACE_BT709:
        return BT709;
    case YUV_SPACE_BT2020:
        return BT2020;
    case YUV_SPACE_BT601_SCALED:
        return BT601_SCALED;
    default:
        return BT601;
    }
}

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
    const SMatrix& rMatrix = MatrixOf(eSpace);
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
    const SMatrix& rMatrix = MatrixOf(eSpace);
    const float fRed = Channel(nRGBA, 24);
    const float fGreen = Channel(nRGBA, 16);
    const float fBlue = Channel(nRGBA, 8);
    // u and v in terms of luma, put into the equation of green.
    const float fU = rMatrix.fGreenU / rMatrix.fBlueU;
    const float fV = rMatrix.fGreenV / rMatrix.fRedV;
    const float y = (fGreen + fU * fBlue + fV * fRed) / (1.0f + fU + fV);
    const float u = (fBlue - y) / rMatrix.fBlueU;
    const float v = (fRed - y) / rMatrix.fRedV;
    const bool bLimited = eRange == YUV_RANGE_LIMITED;
    const float fLumaMin = bLimited ? 16.0f : 0.0f;
    const float fLumaSpan = bLimited ? 219.0f : 255.0f;
    const float fChromaSpan = bLimited ? 223.0f : 255.0f;
    return Byte(fLumaMin + fLumaSpan * y) << 24 | Byte(127.5f + fChromaSpan * u) << 16 |
           Byte(127.5f + fChromaSpan * v) << 8 | (nRGBA & 255);
}
