#include "dewarp/views/PanoramaView.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/geometry/OpticsMesh.h"
#include "dewarp/lenses/GivenLens.h"
#include "dewarp/views/LookAngles.h"
#include "dewarp/views/PTZLimits.h"

#include <algorithm>

/// Matrix of one half: projection x view x translation, and half a turn more for a floor camera.
static void HalfMatrix(float* pResult, const SDewarpMatrices& rMatrices, float x, float y, bool bFlip)
{
    float aModel[16];
    float aViewModel[16];
    SetIdentityMatrix(aModel);
    TranslateMatrix(aModel, x, y, 0.0f);
    if (bFlip)
        rotateM(aModel, 0, 180.0f, 0.0f, 0.0f, 1.0f);
    MultiplyMatrices(aViewModel, rMatrices.fView, aModel);
    MultiplyMatrices(pResult, rMatrices.fProjection, aViewModel);
}

float CPanoramaView::ShownShare(EViewType eView)
{
    switch (static_cast<int>(eView)) {
    case VIEW_PANORAMA_QUARTER:
        return 0.25f;
    case VIEW_PANORAMA_HALF:
        return 0.5f;
    case VIEW_PANORAMA_FULL:
        return 1.0f;
    default:
        return 0.0f;
    }
}

float CPanoramaView::ShareOf(const SDewarpParams& rParams)
{
    if (rParams.eViewType == VIEW_PANORAMA_FULL && rParams.sShape.fSpanX > 0.0f)
        return rParams.sShape.fSpanX / 360.0f;
    return ShownShare(rParams.eViewType);
}

float CPanoramaView::MeshAspect(const SDewarpParams& rParams) const
{
    return AspectOf(MeshKey(rParams));
}

float CPanoramaView::Aspect(const SDewarpParams& rParams, float fMeshAspect) const
{
    const float fShare = ShareOf(rParams);
    return fShare == 0.0f ? 1.0f : fMeshAspect * fShare;
}

float CPanoramaView::ScaleMultiplier(const SDewarpParams& rParams) const
{
    return rParams.eViewType == VIEW_PANORAMA_QUARTER ? 2.0f : 1.0f;
}

SPTZLimits CPanoramaView::Limits(const SDewarpParams& /*rParams*/) const
{
    return {{-180.0f, 180.0f, true}, {0.0f, 0.0f}, {FIXED_ZOOM, FIXED_ZOOM}};
}

void CPanoramaView::LimitPTZ(SDewarpParams& rParams) const
{
    rParams.fTilt = 0.0f;
    if (rParams.fPan >= 180.0f)
        rParams.fPan -= 360.0f;
    else if (rParams.fPan <= -180.0f)
        rParams.fPan += 360.0f;
    rParams.fZoom = FIXED_ZOOM;
}

/// The strip slides; it does not tilt.
bool CPanoramaView::LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const
{
    rParams.fPan = static_cast<float>(BearingOf(rTarget.sDirection));
    return true;
}

void CPanoramaView::Drag(const SDrag& rDrag, SDewarpParams& rParams) const
{
    const float dx = DragPixels(rDrag.sFrom.x, rDrag.sTo.x);
    int nWidth = rDrag.nViewportWidth;
    if (rDrag.nLeftBand != -1)
        nWidth -= 2 * rDrag.nLeftBand;
    const float f = rParams.eViewType == VIEW_PANORAMA_FULL ? 360.0f * ShareOf(rParams) : 180.0f;
    float d = f * dx / static_cast<float>(nWidth);
    if (rParams.eMountType == MOUNT_FLOOR)
        d = -d;
    rParams.fPan = rParams.fPan - d;
}

SClipBands CPanoramaView::ClipBands(const SDewarpParams& rParams, float fMeshAspect, int nWidth,
                                    int nHeight) const
{
    SClipBands sBands;
    const float a = fMeshAspect * ShareOf(rParams);
    const float vw = static_cast<float>(nWidth);
    const float vh = static_cast<float>(nHeight);
    if (vw / vh > a) {
        const int nExcess = static_cast<int>(vw - a * vh);
        sBands.anPlanes[0] = nExcess / 2;
        sBands.anPlanes[1] = nWidth - nExcess / 2;
    }
    sBands.bTexCoordRows = FindLens(rParams.eLensType).bClipRows;
    return sBands;
}

void CPanoramaView::Move(const SDewarpParams& rParams, float fMeshAspect, float /*fImageAspect*/,
                         int /*nRotation*/, float* m) const
{
    const float x = rParams.fPan * fMeshAspect / -180.0f;
    if (rParams.eMountType == MOUNT_FLOOR)
        rotateM(m, 0, 180.0f, 0.0f, 0.0f, 1.0f);
    for (int i = 0; i < 4; ++i)
        m[12 + i] += x * m[i];
}

void CPanoramaView::HalfMatrices(const SDewarpParams& rParams, const SDewarpMatrices& rMatrices,
                                 float fMeshAspect, float* pUpper, float* pLower)
{
    const bool bFlip = rParams.eMountType == MOUNT_FLOOR;
    const float x = rParams.fPan * fMeshAspect / -180.0f;
    const float x1 = bFlip ? -x : x;
    HalfMatrix(pUpper, rMatrices, x1, 1.0f, bFlip);
    // The lower half continues the strip on the side towards which the view was panned.
    float e = rParams.fPan >= 0.0f ? fMeshAspect : -fMeshAspect;
    if (bFlip)
        e = -e;
    HalfMatrix(pLower, rMatrices, x1 + e, -1.0f, bFlip);
}

int CPanoramaView::Parts(const SDewarpParams& rParams, const SDewarpMatrices& rMatrices, float fMeshAspect,
                         bool /*bTopDown*/, SViewPart* pParts) const
{
    pParts[0] = WholeView(rMatrices);
    if (rParams.eViewType == VIEW_PANORAMA_FULL || rParams.eViewType == VIEW_PANORAMA_HALF)
        return 1;
    pParts[1] = pParts[0];
    HalfMatrices(rParams, rMatrices, fMeshAspect, pParts[0].fMVP, pParts[1].fMVP);
    return 2;
}

void CPanoramaView::DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const
{
    nWidth = 2500;
    nHeight = 350;
    if (rParams.sShape.HasBand() || rParams.sShape.fSpanX > 0.0f)
        nHeight = std::max(2, static_cast<int>(2500.0f / (MeshAspect(rParams) * ShareOf(rParams))) / 2 * 2);
    if (rParams.eViewType == VIEW_PANORAMA_HALF) {
        nWidth = 2000;
        nHeight = 560;
    } else if (rParams.eViewType == VIEW_PANORAMA_QUARTER) {
        nWidth = 1500;
        nHeight = 840;
    }
}
