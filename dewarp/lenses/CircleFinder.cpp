#include "dewarp/lenses/CircleFinder.h"

#include "dewarp/lenses/CircleJudge.h"
#include "dewarp/lenses/CirclePicture.h"
#include "dewarp/lenses/CircleTrace.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace
{

/// Longer side of the small picture. A rim is found there to a pixel or two.
constexpr int SMALL_SIDE = 480;

/// Frames with a shorter side have no room for a rim and what is around it.
constexpr int LEAST_SIDE = 32;

SFoundCircle None(const std::string& strReason)
{
    SFoundCircle sNone;
    sNone.strReason = strReason;
    return sNone;
}

/// The rim that most speaks for, among those that light of different strength suggests.
STracedRim FindBestRim(const SLumaPlane& rPlane, const SSmallPicture& rPicture, const SSurround& rSurround)
{
    STracedRim sBest;
    for (const double fLight : {1.5, 4.0, 12.0}) {
        const double fNoise = 1.5 * std::sqrt(fLight) * rSurround.fNoise;
        for (const bool bEllipse : {false, true}) {
            STracedRim sTraced = SuggestRim(rPicture, rSurround.fLevel + std::max(fLight, fNoise), bEllipse);
            if (sTraced.sFit.bGood)
                TraceRim(rPlane, rPicture, rSurround, sTraced);
            if (sTraced.sFit.bGood && EvidenceScore(sTraced.sEvidence) > EvidenceScore(sBest.sEvidence))
                sBest = sTraced;
            if (IsBeyondDoubt(sBest))
                return sBest;
        }
    }
    return sBest;
}

SFoundCircle Search(const SLumaPlane& rPlane)
{
    const SSmallPicture sPicture = ShrinkPicture(rPlane, SMALL_SIDE);
    const SSurround sSurround = FindSurround(sPicture);
    if (!sSurround.strFault.empty())
        return None(sSurround.strFault);
    const STracedRim sBest = FindBestRim(rPlane, sPicture, sSurround);
    return sBest.sFit.bGood ? JudgeRim(sBest, rPlane) : None("no round rim");
}

} // namespace

SFoundCircle FindImageCircle(const unsigned char* pLuma, int nWidth, int nHeight, int nStride)
{
    if (pLuma == nullptr)
        return None("no picture");
    if (nWidth < 1 || nHeight < 1)
        return None("the picture has no pixels");
    if (nStride < nWidth)
        return None("rows of the picture overlap");
    if (nWidth < LEAST_SIDE || nHeight < LEAST_SIDE)
        return None("the picture is too small");
    try {
        return Search({pLuma, nWidth, nHeight, nStride});
    } catch (const std::bad_alloc&) {
        return None("no memory");
    }
}
