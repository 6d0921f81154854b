#include "dewarp/cpu/FrameCover.h"

#include "dewarp/cpu/MaskImage.h"
#include "dewarp/cpu/OverlayImage.h"

#include <algorithm>
#include <cstdint>

/// Texels along one axis of an image that some of a plane's reach into.
static void Scale(int nPlane, int nImage, int& rFirst, int& rLast)
{
    rFirst = std::clamp(rFirst, 0, nPlane - 1);
    rLast = std::clamp(rLast, 0, nPlane - 1);
    if (nPlane == nImage)
        return;
    rFirst = static_cast<int>(std::int64_t{rFirst} * nImage / nPlane);
    rLast = static_cast<int>((std::int64_t{rLast + 1} * nImage + nPlane - 1) / nPlane) - 1;
}

template <class TSource>
static bool IsSourceClear(const TSource& rSource, int x0, int y0, int x1, int y1)
{
    const std::int64_t MOST_TEXELS = 1024;
    std::uint32_t nColour = 0;
    const ELayerClass eClass = rSource.Classify(x0, y0, x1, y1, nColour);
    if (eClass != LAYER_MIXED || std::int64_t{x1 - x0 + 1} * (y1 - y0 + 1) > MOST_TEXELS)
        return eClass == LAYER_NONE;
    for (int y = y0; y <= y1; ++y) {
        for (int x = x0; x <= x1; ++x) {
            if (rSource.At(x, y) >> 24 != 0)
                return false;
        }
    }
    return true;
}

bool CFrameCover::IsEmpty() const
{
    return (m_pMasks == nullptr || m_pMasks->IsEmpty()) && (m_pImage == nullptr || m_pImage->IsEmpty());
}

bool CFrameCover::IsClear(int x0, int y0, int x1, int y1, int nPlaneWidth, int nPlaneHeight) const
{
    const auto LooksClear = [&](const auto& rSource) {
        int nLeft = x0;
        int nTop = y0;
        int nRight = x1;
        int nBottom = y1;
        Scale(nPlaneWidth, rSource.Width(), nLeft, nRight);
        Scale(nPlaneHeight, rSource.Height(), nTop, nBottom);
        return IsSourceClear(rSource, nLeft, nTop, nRight, nBottom);
    };
    return (m_pMasks == nullptr || m_pMasks->IsEmpty() || LooksClear(*m_pMasks)) &&
           (m_pImage == nullptr || m_pImage->IsEmpty() || LooksClear(*m_pImage));
}
