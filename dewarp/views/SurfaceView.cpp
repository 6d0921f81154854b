#include "dewarp/views/SurfaceView.h"

#include "dewarp/geometry/OpticsMesh.h"
#include "dewarp/geometry/Surface.h"
#include "dewarp/views/LookAngles.h"
#include "dewarp/views/PTZLimits.h"

#include <algorithm>
#include <cmath>

/// Pictures are drawn this wide, or as high.
static const int DEFAULT_WIDTH = 1920;
static const int MOST_HEIGHT = 1440;

float CSurfaceView::MeshAspect(const SDewarpParams& rParams) const
{
    return AspectOf(MeshKey(rParams));
}

SPTZ CSurfaceView::DefaultPTZ(EMountType eMount) const
{
    // Cameras overhead look down on what is around them.
    float fTilt = m_eMesh == MESH_CYLINDRICAL ? -30.0f : -45.0f;
    if (eMount == MOUNT_FLOOR)
        fTilt = -fTilt;
    if (eMount == MOUNT_WALL)
        fTilt = 0.0f;
    return {0.0f, fTilt, MOST_ZOOM};
}

SPTZLimits CSurfaceView::Limits(const SDewarpParams& /*rParams*/) const
{
    const float fMost = m_eMesh == MESH_CYLINDRICAL ? 60.0f : 90.0f;
    return {{-180.0f, 180.0f, true}, {-fMost, fMost}, {LEAST_ZOOM, MOST_ZOOM}};
}

void CSurfaceView::LimitPTZ(SDewarpParams& rParams) const
{
    if (rParams.fPan >= 180.0f)
        rParams.fPan -= 360.0f;
    else if (rParams.fPan < -180.0f)
        rParams.fPan += 360.0f;
    const SPTZRange sTilt = Limits(rParams).sTilt;
    LimitAngle(rParams.fTilt, sTilt.fLow, sTilt.fHigh);
    LimitZoom(rParams.fZoom);
}

bool CSurfaceView::LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const
{
    const CSurface::SHeading sHeading = CSurface::HeadingOf(rParams, rTarget.sDirection);
    rParams.fPan = static_cast<float>(sHeading.fBearing);
    rParams.fTilt = static_cast<float>(sHeading.fAbove);
    return true;
}

/// The world follows the pointer.
void CSurfaceView::Drag(const SDrag& rDrag, SDewarpParams& rParams) const
{
    const SMeshKey sKey = MeshKey(rParams);
    const SViewShape sSpan = CSurface::SpanOf(m_eMesh, rParams.eMountType, rParams.sShape);
    const float fAspect = AspectOf(sKey);
    const float fZoom = std::tan(rParams.fZoom / 180.0f * 3.1415927f * 0.25f);
    float fWidth = static_cast<float>(rDrag.nViewportWidth);
    float fHeight = static_cast<float>(rDrag.nViewportHeight);
    // The picture is fitted into the viewport; the pointer moves over the picture.
    if (fAspect > fWidth / fHeight)
        fHeight = fWidth / fAspect;
    else
        fWidth = fAspect * fHeight;
    rParams.fPan -= fZoom * sSpan.fSpanX * DragPixels(rDrag.sFrom.x, rDrag.sTo.x) / fWidth;
    rParams.fTilt += fZoom * sSpan.fSpanY * DragPixels(rDrag.sFrom.y, rDrag.sTo.y) / fHeight;
}

void CSurfaceView::Move(const SDewarpParams& /*rParams*/, float /*fMeshAspect*/, float /*fImageAspect*/,
                        int /*nRotation*/, float* /*pModel*/) const
{}

void CSurfaceView::DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const
{
    const float fAspect = std::clamp(AspectOf(MeshKey(rParams)), 0.05f, 20.0f);
    nWidth = DEFAULT_WIDTH;
    nHeight = std::max(2, static_cast<int>(DEFAULT_WIDTH / fAspect) / 2 * 2);
    if (nHeight <= MOST_HEIGHT)
        return;
    nHeight = MOST_HEIGHT;
    nWidth = std::max(2, static_cast<int>(MOST_HEIGHT * fAspect) / 2 * 2);
}
