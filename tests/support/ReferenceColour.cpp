// Colours of a frame at texture coordinates, in double precision.
#include "tests/support/MeshReference.h"
#include "tests/support/TestFrame.h"

#include <algorithm>
#include <cmath>

/// One byte of a plane's texels, 0..255.
struct SBytePlane
{
    const unsigned char* pBytes = nullptr;
    int nStride = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nPixelBytes = 1;

    double Texel(int x, int y) const
    {
        x = std::clamp(x, 0, nWidth - 1);
        y = std::clamp(y, 0, nHeight - 1);
        return pBytes[static_cast<std::ptrdiff_t>(y) * nStride +
                      static_cast<std::ptrdiff_t>(x) * nPixelBytes];
    }
    double At(double u, double v, bool bLinear) const
    {
        if (!bLinear)
            return Texel(static_cast<int>(std::floor(std::clamp(u, -1.0, 2.0) * nWidth)),
                         static_cast<int>(std::floor(std::clamp(v, -1.0, 2.0) * nHeight)));
        const double x = std::clamp(u, -1.0, 2.0) * nWidth - 0.5;
        const double y = std::clamp(v, -1.0, 2.0) * nHeight - 0.5;
        const int nX = static_cast<int>(std::floor(x));
        const int nY = static_cast<int>(std::floor(y));
        const double fX = x - nX;
        const double fY = y - nY;
        return (Texel(nX, nY) * (1.0 - fX) + Texel(nX + 1, nY) * fX) * (1.0 - fY) +
               (Texel(nX, nY + 1) * (1.0 - fX) + Texel(nX + 1, nY + 1) * fX) * fY;
    }
};

static std::array<double, 4> PackedColour(const SImageProperties& rImage, const SColourState& rState,
                                          double u, double v)
{
    const bool bBlueFirst = rImage.nFormat == IMAGE_FORMAT_BGR24 || rImage.nFormat == IMAGE_FORMAT_BGRA32;
    const int nBytes = BytesPerPixel(rImage.nFormat);
    std::array<double, 4> a = {0.0, 0.0, 0.0, 255.0};
    for (int i = 0; i < nBytes; ++i) {
        const int nByte = bBlueFirst && i != 3 ? 2 - i : i;
        const SBytePlane sPlane = {rImage.pPlane0 + nByte, rImage.nStride, rImage.nWidth, rImage.nHeight,
                                   nBytes};
        a[static_cast<std::size_t>(i)] = sPlane.At(u, v, rState.bLinear);
    }
    if (rState.bGain) {
        const double y = (0.299 * a[0] + 0.587 * a[1] + 0.114 * a[2]) * rState.fLumaGain;
        const double fU = (-0.169 * a[0] - 0.331 * a[1] + 0.5 * a[2]) * rState.fChromaGain;
        const double fV = (0.5 * a[0] - 0.419 * a[1] - 0.081 * a[2]) * rState.fChromaGain;
        a = {y + 1.4 * fV, y - 0.343 * fU - 0.711 * fV, y + 1.765 * fU, a[3]};
        for (double& f : a)
            f = std::clamp(f, 0.0, 255.0);
    } else {
        for (std::size_t i = 0; i < 3; ++i)
            a[i] *= a[3] / 255.0;
    }
    return a;
}

static EYUVSpace SpaceInForce(const SImageProperties& rImage, const SColourState& rState)
{
    if (rState.sYUV.eSpace != YUV_SPACE_AUTO)
        return rState.sYUV.eSpace;
    // A frame cannot ask for the scaled one.
    const bool bKnown = rImage.eYUVSpace >= YUV_SPACE_BT601 && rImage.eYUVSpace <= YUV_SPACE_BT2020;
    return bKnown ? rImage.eYUVSpace : YUV_SPACE_BT601;
}

static bool IsLimited(const SImageProperties& rImage, const SColourState& rState)
{
    const EYUVRange eRange = rState.sYUV.eRange != YUV_RANGE_AUTO ? rState.sYUV.eRange : rImage.eYUVRange;
    return eRange == YUV_RANGE_LIMITED;
}

std::array<double, 4> ReferenceColour(const SImageProperties& rImage, const SColourState& rState, double u,
                                      double v)
{
    const bool bPlanar = rImage.nFormat == IMAGE_FORMAT_YUV420P;
    const bool bPairs = rImage.nFormat == IMAGE_FORMAT_NV12 || rImage.nFormat == IMAGE_FORMAT_NV21;
    const SBytePlane sLuma = {rImage.pPlane0, rImage.nStride, rImage.nWidth, rImage.nHeight, 1};
    if (rImage.nFormat == IMAGE_FORMAT_GRAY8) {
        const double f = sLuma.At(u, v, rState.bLinear);
        return {f, f, f, 255.0};
    }
    if (!bPlanar && !bPairs)
        return PackedColour(rImage, rState, u, v);
    const bool bVFirst = rImage.nFormat == IMAGE_FORMAT_NV21;
    const int nBytes = bPlanar ? 1 : 2;
    const int nStride = bPlanar ? rImage.nStride / 2 : rImage.nStride;
    const auto Chroma = [&](const unsigned char* pBytes) {
        const SBytePlane sPlane = {pBytes, nStride, rImage.nWidth / 2, rImage.nHeight / 2, nBytes};
        return sPlane.At(u, v, rState.bLinear) / 255.0 - 0.5;
    };
    double y = sLuma.At(u, v, rState.bLinear) / 255.0;
    double fU = Chroma(bPlanar ? rImage.pPlane1 : rImage.pPlane1 + (bVFirst ? 1 : 0));
    double fV = Chroma(bPlanar ? rImage.pPlane2 : rImage.pPlane1 + (bVFirst ? 0 : 1));
    if (bPlanar && rState.pQP != nullptr) {
        const SQPInfo& q = *rState.pQP;
        const int nCols = std::min(q.nWidth, q.nStride);
        const double fQP = SBytePlane{q.pQP, q.nStride, nCols, q.nHeight, 1}.At(u, v, false) / 25.5;
        const double fType = SBytePlane{q.pMBType, q.nStride, nCols, q.nHeight, 1}.At(u, v, false) / 255.0;
        fU = fType * std::clamp(fQP - 0.5, -0.5, 0.5) + (1.0 - fType) * fU;
        fV = fType * std::clamp(fQP - 1.5, -0.5, 0.5) + (1.0 - fType) * fV;
    }
    if (IsLimited(rImage, rState)) {
        const double fLowest = rState.sYUV.nLumaMin / 255.0;
        const double fChroma = 1.0 - 2.0 * rState.sYUV.nChromaMin / 255.0;
        y = std::clamp((y - fLowest) / (rState.sYUV.nLumaMax / 255.0 - fLowest), 0.0, 1.0);
        fU = std::clamp(fU / fChroma, -0.5, 0.5);
        fV = std::clamp(fV / fChroma, -0.5, 0.5);
    }
    if (rState.bGain) {
        y *= rState.fLumaGain;
        fU *= rState.fChromaGain;
        fV *= rState.fChromaGain;
    }
    const SYUVMatrix s = YUVMatrix(SpaceInForce(rImage, rState));
    std::array<double, 4> a = {y + s.fRedV * fV, y - s.fGreenU * fU - s.fGreenV * fV, y + s.fBlueU * fU, 1.0};
    for (double& f : a)
        f = std::clamp(f, 0.0, 1.0) * 255.0;
    return a;
}

double DistanceToTexelBorder(int nWidth, int nHeight, double u, double v)
{
    const double x = u * nWidth;
    const double y = v * nHeight;
    // Beyond the outermost texels there is no border.
    const double fX = x < 0.5 || x > nWidth - 0.5 ? 0.5 : std::abs(x - std::round(x));
    const double fY = y < 0.5 || y > nHeight - 0.5 ? 0.5 : std::abs(y - std::round(y));
    return std::min(fX, fY);
}

double DistanceToTexelBorder(const SImageProperties& rImage, double u, double v)
{
    const double fFirst = DistanceToTexelBorder(rImage.nWidth, rImage.nHeight, u, v);
    const bool bChroma = rImage.nFormat == IMAGE_FORMAT_YUV420P || rImage.nFormat == IMAGE_FORMAT_NV12 ||
                         rImage.nFormat == IMAGE_FORMAT_NV21;
    return bChroma ? std::min(fFirst, DistanceToTexelBorder(rImage.nWidth / 2, rImage.nHeight / 2, u, v))
                   : fFirst;
}
