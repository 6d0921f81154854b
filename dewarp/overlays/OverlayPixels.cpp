#include "dewarp/overlays/OverlayPixels.h"

#include "platform/Report.h"

#include <algorithm>
#include <cstring>

namespace
{

const std::size_t PIXEL_BYTES = 4;
const int MAX_OVERLAY_SIZE = 16384;

} // namespace

bool IsOverlaySizeUsable(int nWidth, int nHeight, CReport& rReport)
{
    if (nWidth >= 1 && nHeight >= 1 && nWidth <= MAX_OVERLAY_SIZE && nHeight <= MAX_OVERLAY_SIZE)
        return true;
    rReport.Refuse("%s: overlay size %d x %d is outside 1 to %d", "SetOverlay", nWidth, nHeight,
                   MAX_OVERLAY_SIZE);
    return false;
}

std::size_t OverlayOffset(int x, int y, int nWidth)
{
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) + static_cast<std::size_t>(x)) *
           PIXEL_BYTES;
}

std::vector<SGRect> ClipToImage(const std::vector<SGRect>& vRects, int nWidth, int nHeight)
{
    std::vector<SGRect> vClipped;
    for (const SGRect& rRect : vRects) {
        const long long nLeft = std::max(rRect.x, 0);
        const long long nTop = std::max(rRect.y, 0);
        const long long nRight = std::min<long long>(static_cast<long long>(rRect.x) + rRect.width, nWidth);
        const long long nBottom =
            std::min<long long>(static_cast<long long>(rRect.y) + rRect.height, nHeight);
        if (nRight > nLeft && nBottom > nTop)
            vClipped.push_back({static_cast<int>(nLeft), static_cast<int>(nTop),
                                static_cast<int>(nRight - nLeft), static_cast<int>(nBottom - nTop)});
    }
    return vClipped;
}

void CopyOverlayRects(unsigned char* pTo, const unsigned char* pFrom, int nWidth,
                      const std::vector<SGRect>& vRects)
{
    for (const SGRect& rRect : vRects) {
        for (int y = rRect.y; y < rRect.y + rRect.height; ++y) {
            const std::size_t nOffset = OverlayOffset(rRect.x, y, nWidth);
            std::memcpy(pTo + nOffset, pFrom + nOffset, static_cast<std::size_t>(rRect.width) * PIXEL_BYTES);
        }
    }
}

void TakeOverlayPixels(unsigned char* pTo, bool bNew, const unsigned char* pFrom, int nWidth, int nHeight,
                       const std::vector<SGRect>* pRects)
{
    const std::size_t nBytes = OverlayOffset(0, nHeight, nWidth);
    if (pRects == nullptr) {
        std::memcpy(pTo, pFrom, nBytes);
        return;
    }
    if (bNew)
        std::memset(pTo, 0, nBytes);
    CopyOverlayRects(pTo, pFrom, nWidth, *pRects);
}
