#include "dewarp/views/VCAMView.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/ViewOptics.h"
#include "dewarp/views/LookAngles.h"
#include "dewarp/views/PTZLimits.h"

#include <algorithm>
#include <cstring>

float CVCAMView::MeshAspect(const SDewarpParams& rParams) const
{
    return ::MeshAspect(MESH_VCAM, rParams.nImageWidth, rParams.nImageHeight);
}

SPTZ CVCAMView::DefaultPTZ(EMountType eMount) const
{
    switch (static_cast<int>(eMount)) {
    case MOUNT_UNSET:
    case MOUNT_NOT_APPLIED:
        return {};
    case MOUNT_WALL:
        return {90.0f, 90.0f, 180.0f};
    case MOUNT_FLOOR:
        return {90.0f, 180.0f, 180.0f};
    default:
        return {90.0f, 0.0f, 180.0f};
    }
}

SPTZLimits CVCAMView::Limits(const SDewarpParams& rParams) const
{
    const SPTZRange sZoom = {LEAST_ZOOM, MOST_ZOOM};
    const float fReach = static_cast<float>(HalfFieldOf(rParams));
    if (rParams.eMountType == MOUNT_WALL)
        return {{90.0f - fReach, 90.0f + fReach}, {90.0f - fReach, 90.0f + fReach}, sZoom};
    const bool bFloor = rParams.eMountType == MOUNT_FLOOR;
    return {{-360.0f, 360.0f, true}, {bFloor ? 180.0f - fReach : 0.0f, bFloor ? 180.0f : fReach}, sZoom};
}

void CVCAMView::LimitPTZ(SDewarpParams& rParams) const
{
    const SPTZLimits sLimits = Limits(rParams);
    if (!sLimits.sPan.bPeriodic)
        LimitAngle(rParams.fPan, sLimits.sPan.fLow, sLimits.sPan.fHigh);
    LimitAngle(rParams.fTilt, sLimits.sTilt.fLow, sLimits.sTilt.fHigh);
    LimitZoom(rParams.fZoom);
}

bool CVCAMView::LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const
{
    const SDirection& d = rTarget.sDirection;
    if (rParams.eMountType == MOUNT_WALL) {
        rParams.fPan = static_cast<float>(90.0 - SideOf(d));
        rParams.fTilt = static_cast<float>(90.0 + HeightOf(d));
        return true;
    }
    const bool bFloor = rParams.eMountType == MOUNT_FLOOR;
    const double fOff = OffAxis(d);
    // The first of four cameras stands a quarter further.
    const double fQuarter = rParams.eViewType == VIEW_VCAM_QUAD ? 90.0 : 0.0;
    rParams.fPan = static_cast<float>(90.0 - fQuarter - BearingOf(d) + (bFloor ? 180.0 : 0.0));
    rParams.fTilt = static_cast<float>(bFloor ? 180.0 - fOff : fOff);
    return true;
}

void CVCAMView::Drag(const SDrag& rDrag, SDewarpParams& rParams) const
{
    const int nSmaller = std::min(rDrag.nViewportWidth, rDrag.nViewportHeight);
    const float s = rParams.fZoom / static_cast<float>(nSmaller);
    rParams.fPan = rParams.fPan + s * DragPixels(rDrag.sFrom.x, rDrag.sTo.x);
    rParams.fTilt = rParams.fTilt + s * DragPixels(rDrag.sFrom.y, rDrag.sTo.y);
}

void CVCAMView::Project(const SFrustum& rFrustum, float* m) const
{
    const float fNear = rFrustum.fNear;
    const float fFar = rFrustum.fFar;
    const float l = rFrustum.fLeft * fNear;
    const float r = rFrustum.fRight * fNear;
    const float b = rFrustum.fBottom * fNear;
    const float t = rFrustum.fTop * fNear;
    if (l == r || b == t || !(fFar > 0.0f) || !(fNear > 0.0f) || fNear == fFar)
        return;
    for (int i = 0; i < 16; ++i)
        m[i] = 0.0f;
    m[0] = 2.0f * fNear / (r - l);
    m[5] = 2.0f * fNear / (t - b);
    // The factor 2 stands here and not in the next line; both are 0 for the symmetric bounds of every frame.
    m[8] = 2.0f * (r + l) / (r - l);
    m[9] = (t + b) / (t - b);
    m[10] = (fNear + fFar) / (fNear - fFar);
    m[11] = -1.0f;
    m[14] = 2.0f * fNear * fFar / (fNear - fFar);
}

float CVCAMView::EyeDistance(float fChosen) const
{
    return fChosen;
}

void CVCAMView::Move(const SDewarpParams& rParams, float /*fMeshAspect*/, float /*fImageAspect*/,
                     int /*nRotation*/, float* m) const
{
    const float a = 90.0f - rParams.fPan;
    // The camera turns one way, its picture the other.
    if (rParams.fRoll != 0.0f)
        rotateM(m, 0, rParams.fRoll, 0.0f, 0.0f, 1.0f);
    switch (static_cast<int>(rParams.eMountType)) {
    case MOUNT_WALL:
        rotateM(m, 0, -(rParams.fTilt - 90.0f), 1.0f, 0.0f, 0.0f);
        rotateM(m, 0, a, 0.0f, 1.0f, 0.0f);
        break;
    case MOUNT_CEILING:
        rotateM(m, 0, rParams.fTilt, -1.0f, 0.0f, 0.0f);
        rotateM(m, 0, a, 0.0f, 0.0f, 1.0f);
        break;
    case MOUNT_FLOOR:
        rotateM(m, 0, -(180.0f - rParams.fTilt), -1.0f, 0.0f, 0.0f);
        rotateM(m, 0, a, 0.0f, 0.0f, 1.0f);
        break;
    default:
        break;
    }
}

int CVCAMView::Parts(const SDewarpParams& rParams, const SDewarpMatrices& rMatrices, float /*fMeshAspect*/,
                     bool bTopDown, SViewPart* pParts) const
{
    if (rParams.eViewType != VIEW_VCAM_QUAD || rParams.eMountType == MOUNT_WALL) {
        pParts[0] = WholeView(rMatrices);
        return 1;
    }
    const int w2 = rMatrices.nViewportWidth / 2;
    const int h2 = rMatrices.nViewportHeight / 2;
    const int nUpperRow = bTopDown ? rMatrices.nViewportHeight - 2 * h2 : h2;
    const int nLowerRow = bTopDown ? rMatrices.nViewportHeight - h2 : 0;
    // Top left, top right, bottom right, bottom left: clockwise, each turned by a further quarter.
    const int aOrigins[MAX_VIEW_PARTS][2] = {
        {0, nUpperRow}, {w2, nUpperRow}, {w2, nLowerRow}, {0, nLowerRow}};
    float aTurned[16];
    std::memcpy(aTurned, rMatrices.fMVP, sizeof aTurned);
    for (int i = 0; i < MAX_VIEW_PARTS; ++i) {
        rotateM(aTurned, 0, -90.0f, 0.0f, 0.0f, 1.0f);
        std::memcpy(pParts[i].fMVP, aTurned, sizeof aTurned);
        pParts[i].nX = aOrigins[i][0];
        pParts[i].nY = aOrigins[i][1];
        pParts[i].nWidth = w2;
        pParts[i].nHeight = h2;
    }
    return MAX_VIEW_PARTS;
}

void CVCAMView::DefaultSize(const SDewarpParams& /*rParams*/, int& nWidth, int& nHeight) const
{
    nWidth = 1280;
    nHeight = 720;
}
