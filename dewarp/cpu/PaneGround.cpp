#include "dewarp/cpu/PaneGround.h"

#include "dewarp/records/YUVColour.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace
{

bool IsYUV(const SFrameTarget& rTarget)
{
    return rTarget.eFormat == IMAGE_FORMAT_NV12 || rTarget.eFormat == IMAGE_FORMAT_YUV420P;
}

unsigned char* At(const SFrameTarget& t, int nPlane, int x, int y, int nBytes)
{
    return t.apPlanes[nPlane] + static_cast<std::ptrdiff_t>(y) * t.anStrides[nPlane] +
           static_cast<std::ptrdiff_t>(x) * nBytes;
}

} // namespace

SFrameTarget PartOf(const SFrameTarget& rTarget, const SGRect& r)
{
    SFrameTarget sPart = rTarget;
    if (!IsYUV(rTarget)) {
        sPart.apPlanes[0] = At(rTarget, 0, r.x, r.y, 4);
        return sPart;
    }
    const bool bPairs = rTarget.eFormat == IMAGE_FORMAT_NV12;
    sPart.apPlanes[0] = At(rTarget, 0, r.x, r.y, 1);
    for (int i = 1; i <= (bPairs ? 1 : 2); ++i)
        sPart.apPlanes[i] = At(rTarget, i, r.x / 2, r.y / 2, bPairs ? 2 : 1);
    return sPart;
}

bool SharesChroma(std::span<const SPlacedView> oViews, int nWidth, int nHeight)
{
    const auto IsOdd = [](int nEdge, int nSize) { return nEdge % 2 != 0 && nEdge != nSize; };
    const auto Shares = [&](const SGRect& r) {
        return IsOdd(r.x, nWidth) || IsOdd(r.y, nHeight) || IsOdd(r.x + r.width, nWidth) ||
               IsOdd(r.y + r.height, nHeight);
    };
    return std::any_of(oViews.begin(), oViews.end(),
                       [&](const SPlacedView& r) { return Shares(r.sPlace) || Shares(r.sGround); });
}

CPaneGround::CPaneGround(const SFrameTarget& rTarget, unsigned int nColor, EYUVSpace eSpace, EYUVRange eRange)
    : m_rTarget(rTarget)
{
    const bool bRedFirst = rTarget.eFormat == IMAGE_FORMAT_RGBA32;
    const int anShifts[4] = {bRedFirst ? 24 : 8, 16, bRedFirst ? 8 : 24, 0};
    for (int i = 0; i < 4; ++i)
        m_anPixel[i] = static_cast<unsigned char>(nColor >> anShifts[i] & 255);
    const unsigned int nYUV = ConvertColourToYUV(nColor, eSpace, eRange);
    for (int i = 0; i < 3; ++i)
        m_anYUV[i] = static_cast<unsigned char>(nYUV >> (24 - 8 * i) & 255);
}

void CPaneGround::Fill(const SGRect& r) const
{
    const SFrameTarget& t = m_rTarget;
    if (!IsYUV(t)) {
        if (r.height < 1)
            return;
        for (int x = r.x; x < r.x + r.width; ++x)
            std::memcpy(At(t, 0, x, r.y, 4), m_anPixel, sizeof m_anPixel);
        const std::size_t nRowBytes = static_cast<std::size_t>(r.width) * 4;
        for (int y = r.y + 1; y < r.y + r.height; ++y)
            std::memcpy(At(t, 0, r.x, y, 4), At(t, 0, r.x, r.y, 4), nRowBytes);
        return;
    }
    for (int y = r.y; y < r.y + r.height; ++y)
        std::memset(At(t, 0, r.x, y, 1), m_anYUV[0], static_cast<std::size_t>(r.width));
    const int nPlaces = (r.x + r.width + 1) / 2 - r.x / 2;
    for (int y = r.y / 2; y < (r.y + r.height + 1) / 2; ++y) {
        if (t.eFormat == IMAGE_FORMAT_YUV420P) {
            for (int i = 1; i < 3; ++i)
                std::memset(At(t, i, r.x / 2, y, 1), m_anYUV[i], static_cast<std::size_t>(nPlaces));
            continue;
        }
        for (int x = r.x / 2; x < r.x / 2 + nPlaces; ++x)
            std::memcpy(At(t, 1, x, y, 2), m_anYUV + 1, 2);
    }
}
