#include "dewarp/cpu/Colours.h"

#include <algorithm>
#include <cmath>

namespace
{

/// A factor in 32768ths. Factors from 0 up to 2 come less 1.
std::int16_t Fixed(float fFactor)
{
    return static_cast<std::int16_t>(
        std::clamp(std::lround(static_cast<double>(fFactor) * 32768.0), -32768L, 32767L));
}

void SetPlanes(const SFramePlanes& rFrame, SCellJob& rJob)
{
    const int w = rFrame.nWidth;
    const int h = rFrame.nHeight;
    const auto Plane = [&](int nPlane, int nDivisor, int nPixelBytes) {
        return SSamplePlane{rFrame.apPlanes[nPlane], rFrame.anStrides[nPlane], w / nDivisor, h / nDivisor,
                            nPixelBytes};
    };
    const auto Packed = [&](int nBytes, int nRed, int nBlue, int nAlpha) {
        rJob.eSource = SOURCE_PACKED;
        rJob.aPlanes[0] = Plane(0, 1, nBytes);
        rJob.anChannels[0] = nRed;
        rJob.anChannels[1] = 1;
        rJob.anChannels[2] = nBlue;
        rJob.anChannels[3] = nAlpha;
    };
    rJob.aPlanes[0] = Plane(0, 1, 1);
    switch (static_cast<int>(rFrame.eFormat)) {
    case IMAGE_FORMAT_RGB24:
        Packed(3, 0, 2, -1);
        break;
    case IMAGE_FORMAT_BGR24:
        Packed(3, 2, 0, -1);
        break;
    case IMAGE_FORMAT_RGBA32:
        Packed(4, 0, 2, 3);
        break;
    case IMAGE_FORMAT_BGRA32:
        Packed(4, 2, 0, 3);
        break;
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
        rJob.eSource = SOURCE_NV;
        rJob.bVFirst = rFrame.eFormat == IMAGE_FORMAT_NV21;
        rJob.aPlanes[1] = Plane(1, 2, 2);
        break;
    case IMAGE_FORMAT_YUV420P:
        rJob.eSource = SOURCE_PLANAR;
        rJob.aPlanes[1] = Plane(1, 2, 1);
        rJob.aPlanes[2] = Plane(2, 2, 1);
        break;
    default:
        rJob.eSource = SOURCE_GRAY;
        break;
    }
}

/// What the integer arithmetic takes of the range's levels; false when they stretch it too far.
bool SetRange(const SFineColours& rFine, const SYUV2RGBConversionParams& rLevels, SColourFactors& rFactors)
{
    rFactors.bLimited = rFine.bLimited;
    if (!rFine.bLimited)
        return true;
    const float fLuma = 1.0f / rFine.fLumaSpan;
    const float fChroma = 1.0f / rFine.fChromaSpan;
    const bool bUsable = rLevels.nLumaMin >= 0 && rLevels.nLumaMin <= 255 && fLuma > 0.0f && fLuma < 2.0f &&
                         fChroma > 0.0f && fChroma < 2.0f;
    if (!bUsable)
        return false;
    rFactors.nLumaMin = static_cast<std::int16_t>(rLevels.nLumaMin * 64);
    rFactors.nLumaPart = Fixed(fLuma - 1.0f);
    rFactors.nChromaPart = Fixed(fChroma - 1.0f);
    return true;
}

/// Picture side information at a position: 0 to 1, the nearest block.
float BlockValue(const SFrameColours& rColours, const unsigned char* pValues, const SGridPoint& rPoint)
{
    const SQPInfo& rQP = *rColours.sFine.pQP;
    const auto Index = [](std::int32_t nPosition, int nSize, int nBlocks) {
        const double f = (static_cast<double>(nPosition) / POSITION_ONE + 0.5) / nSize * nBlocks;
        return std::clamp(static_cast<int>(std::floor(f)), 0, nBlocks - 1);
    };
    const int x = Index(rPoint.x, rColours.sJob.nFrameWidth, std::min(rQP.nWidth, rQP.nStride));
    const int y = Index(rPoint.y, rColours.sJob.nFrameHeight, rQP.nHeight);
    return static_cast<float>(pValues[static_cast<std::ptrdiff_t>(y) * rQP.nStride + x]) / 255.0f;
}

struct SYUV
{
    float y;
    float u;
    float v;
};

/// Shows the quantiser as colour where a block has a type.
void ShowQuantiser(const SFrameColours& rColours, const SGridPoint& rPoint, SYUV& s)
{
    const SQPInfo& rQP = *rColours.sFine.pQP;
    const float qp = BlockValue(rColours, rQP.pQP, rPoint) / 0.1f;
    const float t = BlockValue(rColours, rQP.pMBType, rPoint);
    s.u = t * std::clamp(qp - 0.5f, -0.5f, 0.5f) + (1.0f - t) * s.u;
    s.v = t * std::clamp(qp - 1.5f, -0.5f, 0.5f) + (1.0f - t) * s.v;
}

/// Luma and chroma in full range, with gains.
SYUV FullYUV(const SFrameColours& rColours, const SGridPoint& rPoint, const SYUVSample& sSample)
{
    const SFineColours& f = rColours.sFine;
    const float fLevels = 1.0f / (SAMPLE_LEVEL * 255.0f);
    SYUV s = {static_cast<float>(sSample.y) * fLevels, static_cast<float>(sSample.u) * fLevels - 0.5f,
              static_cast<float>(sSample.v) * fLevels - 0.5f};
    if (f.pQP != nullptr)
        ShowQuantiser(rColours, rPoint, s);
    if (f.bLimited) {
        s.y = std::clamp((s.y - f.fLumaMin) / f.fLumaSpan, 0.0f, 1.0f);
        s.u = std::clamp(s.u / f.fChromaSpan, -0.5f, 0.5f);
        s.v = std::clamp(s.v / f.fChromaSpan, -0.5f, 0.5f);
    }
    if (f.bGain) {
        s.y *= f.fLumaGain;
        s.u *= f.fChromaGain;
        s.v *= f.fChromaGain;
    }
    return s;
}

std::uint32_t Byte(float fValue)
{
    return static_cast<std::uint32_t>(std::lround(std::clamp(fValue, 0.0f, 1.0f) * 255.0f));
}

std::uint32_t ToPixel(const SYUV& s, const SColourMatrix& m)
{
    return Byte(s.y + m.fRedV * s.v) | Byte(s.y - m.fGreenU * s.u - m.fGreenV * s.v) << 8 |
           Byte(s.y + m.fBlueU * s.u) << 16;
}

} // namespace

SFrameColours PrepareColours(const SFramePlanes& rFrame, const SPictureSettings& rSettings, bool bLinear,
                             const SQPInfo* pQP)
{
    SFrameColours c;
    SCellJob& rJob = c.sJob;
    SFineColours& rFine = c.sFine;
    rJob.bLinear = bLinear;
    rJob.nFrameWidth = rFrame.nWidth;
    rJob.nFrameHeight = rFrame.nHeight;
    SetPlanes(rFrame, rJob);
    const SYUV2RGBConversionParams& rLevels = rSettings.sYUV2RGB;
    c.nYUVSpace = EffectiveYUVSpace(rLevels.eSpace, rFrame.eYUVSpace);
    c.nYUVRange = EffectiveYUVRange(rLevels.eRange, rFrame.eYUVRange);
    const bool bYUV = rJob.eSource == SOURCE_NV || rJob.eSource == SOURCE_PLANAR;
    rFine.bGain = rSettings.bGain && rJob.eSource != SOURCE_GRAY;
    rJob.bPremultiply = rJob.eSource == SOURCE_PACKED && rJob.anChannels[3] >= 0 && !rSettings.bGain;
    rFine.fLumaGain = rSettings.fLumaGain;
    rFine.fChromaGain = rSettings.fChromaGain;
    rFine.bLimited = bYUV && c.nYUVRange == YUV_RANGE_LIMITED;
    if (rFine.bLimited) {
        rFine.fLumaMin = static_cast<float>(rLevels.nLumaMin) / 255.0f;
        rFine.fLumaSpan = static_cast<float>(rLevels.nLumaMax) / 255.0f - rFine.fLumaMin;
        rFine.fChromaSpan = 1.0f - 2.0f * (static_cast<float>(rLevels.nChromaMin) / 255.0f);
    }
    // Without types every block shows its picture.
    const bool bQP = rJob.eSource == SOURCE_PLANAR && pQP != nullptr && pQP->pQP != nullptr &&
                     pQP->pMBType != nullptr && std::min(pQP->nWidth, pQP->nStride) > 0 && pQP->nHeight > 0;
    rFine.pQP = bQP ? pQP : nullptr;
    const SColourMatrix& m = ColourMatrixOf(static_cast<EYUVSpace>(c.nYUVSpace));
    rFine.pMatrix = &m;
    SColourFactors& rFactors = rJob.sColours;
    rFactors.nRedV = Fixed(m.fRedV - 1.0f);
    rFactors.nGreenU = Fixed(m.fGreenU);
    rFactors.nGreenV = Fixed(m.fGreenV);
    rFactors.nBlueU = Fixed(m.fBlueU - 1.0f);
    const bool bRange = SetRange(rFine, rLevels, rFactors);
    rFine.bUsed = rFine.bGain || bQP || !bRange;
    return c;
}

std::uint32_t FinePixel(const SFrameColours& rColours, const SGridPoint& rPoint)
{
    return rColours.sJob.eSource == SOURCE_PACKED
               ? FinePacked(rColours, SamplePacked(rColours.sJob, rPoint))
               : FinePixel(rColours, rPoint, SampleYUV(rColours.sJob, rPoint));
}

std::uint32_t FinePixel(const SFrameColours& rColours, const SGridPoint& rPoint, const SYUVSample& rSample)
{
    return ToPixel(FullYUV(rColours, rPoint, rSample), *rColours.sFine.pMatrix) | 0xFF000000U;
}

std::uint32_t FinePacked(const SFrameColours& rColours, std::uint32_t nRGBA)
{
    const SFineColours& f = rColours.sFine;
    const float r = static_cast<float>(nRGBA & 255) / 255.0f;
    const float g = static_cast<float>(nRGBA >> 8 & 255) / 255.0f;
    const float b = static_cast<float>(nRGBA >> 16 & 255) / 255.0f;
    const SYUVMatrix& m = AdjustmentToYUV();
    const auto Weigh = [&](const float(&af)[3]) { return af[0] * r + af[1] * g + af[2] * b; };
    const SYUV s = {f.fLumaGain * Weigh(m.fY), f.fChromaGain * Weigh(m.fU), f.fChromaGain * Weigh(m.fV)};
    return ToPixel(s, AdjustmentToRGB()) | (nRGBA & 0xFF000000U);
}

std::uint32_t FineYUV(const SFrameColours& rColours, const SGridPoint& rPoint)
{
    return FineYUV(rColours, rPoint, SampleYUV(rColours.sJob, rPoint));
}

std::uint32_t FineYUV(const SFrameColours& rColours, const SGridPoint& rPoint, const SYUVSample& rSample)
{
    const SFineColours& f = rColours.sFine;
    const SYUV s = FullYUV(rColours, rPoint, rSample);
    const float y = std::clamp(s.y, 0.0f, 1.0f) * f.fLumaSpan + f.fLumaMin;
    return Byte(y) | Byte(std::clamp(s.u, -0.5f, 0.5f) * f.fChromaSpan + 0.5f) << 8 |
           Byte(std::clamp(s.v, -0.5f, 0.5f) * f.fChromaSpan + 0.5f) << 16;
}
