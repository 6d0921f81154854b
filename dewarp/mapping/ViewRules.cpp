#include "dewarp/mapping/ViewRules.h"

#include "dewarp/mapping/FramePosition.h"
#include "dewarp/records/Mirrors.h"

#include <algorithm>
#include <iterator>

namespace
{

bool IsSamePart(const SViewPart& rA, const SViewPart& rB)
{
    return std::equal(std::begin(rA.fMVP), std::end(rA.fMVP), std::begin(rB.fMVP)) && rA.nX == rB.nX &&
           rA.nY == rB.nY && rA.nWidth == rB.nWidth && rA.nHeight == rB.nHeight;
}

bool AreSameBands(const SClipBands& rA, const SClipBands& rB)
{
    return std::equal(std::begin(rA.anPlanes), std::end(rA.anPlanes), std::begin(rB.anPlanes)) &&
           rA.fDepth == rB.fDepth && rA.bTexCoordRows == rB.bTexCoordRows && rA.sRim == rB.sRim;
}

} // namespace

bool ShowSamePlaces(const SFrameDecision& rA, const SFrameDecision& rB)
{
    return rA.pView == rB.pView && rA.sMesh == rB.sMesh && rA.sTarget == rB.sTarget &&
           FrameShapeOf(rA) == FrameShapeOf(rB) && AreSameBands(rA.sBands, rB.sBands) &&
           rA.nParts == rB.nParts && std::equal(rA.aParts, rA.aParts + rA.nParts, rB.aParts, IsSamePart);
}

bool IsFan(const SMeshKey& rMesh)
{
    return rMesh.eMesh == MESH_FISHEYE_CIRCULAR;
}

SFrameShape FrameShapeOf(const SFrameDecision& d)
{
    const SMirrors sMirrors = MirrorsOf(d.sPicture.bFlipHorizontal, d.sPicture.bFlipVertical, d.nRotation);
    return {d.sParams.nImageWidth, d.sParams.nImageHeight, sMirrors.bX, sMirrors.bY};
}

SGRect CommonRect(const SGRect& rA, const SGRect& rB)
{
    const int nLeft = std::max(rA.x, rB.x);
    const int nTop = std::max(rA.y, rB.y);
    const int nRight = std::min(rA.x + rA.width, rB.x + rB.width);
    const int nBottom = std::min(rA.y + rA.height, rB.y + rB.height);
    return {nLeft, nTop, std::max(nRight - nLeft, 0), std::max(nBottom - nTop, 0)};
}

SGRect PartRect(const SViewPart& rPart, const SFrameDecision& rDecision)
{
    SGRect sRect = CommonRect({0, 0, rDecision.sTarget.nWidth, rDecision.sTarget.nHeight},
                              {rPart.nX, rPart.nY, rPart.nWidth, rPart.nHeight});
    const int* const p = rDecision.sBands.anPlanes;
    if (p[0] != -1 && p[1] != -1)
        sRect = CommonRect(sRect, {p[0], sRect.y, p[1] - p[0], sRect.height});
    if (p[2] != -1 && p[3] != -1)
        sRect = CommonRect(sRect, {sRect.x, p[2], sRect.width, p[3] - p[2]});
    return sRect;
}

SCuts CutsOf(const SClipBands& rBands, const SFrameShape& rFrame)
{
    SCuts sCuts;
    sCuts.bDepth = rBands.fDepth != 0.0f;
    sCuts.fDepth = static_cast<double>(rBands.fDepth);
    sCuts.bRows = rBands.bTexCoordRows;
    sCuts.fLowestRow = -0.5 * POSITION_ONE;
    sCuts.fHighestRow = (static_cast<double>(rFrame.nHeight) - 0.5) * POSITION_ONE;
    return sCuts;
}

bool IsCut(const SScreenTriangle& t, const SCuts& rCuts, bool& bGone)
{
    bGone = false;
    if (!rCuts.Any())
        return false;
    int nOutDepth = 0;
    int nBelow = 0;
    int nAbove = 0;
    for (int i = 0; i < 3; ++i) {
        const double dx = t.afX[i] - t.afX[0];
        const double dy = t.afY[i] - t.afY[0];
        nOutDepth += rCuts.bDepth && t.sZ.At(dx, dy) < rCuts.fDepth ? 1 : 0;
        if (!rCuts.bRows)
            continue;
        double u = 0.0;
        double v = 0.0;
        t.Show(dx, dy, u, v);
        nBelow += v < rCuts.fLowestRow ? 1 : 0;
        nAbove += v > rCuts.fHighestRow ? 1 : 0;
    }
    bGone = nOutDepth == 3 || nBelow == 3 || nAbove == 3;
    return nOutDepth + nBelow + nAbove > 0;
}
