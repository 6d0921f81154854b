#include "dewarp/views/PanoramaWallView.h"

#include "dewarp/geometry/ViewOptics.h"
#include "dewarp/lenses/GivenLens.h"
#include "dewarp/views/LookAngles.h"
#include "dewarp/views/PTZLimits.h"

#include <cmath>

static const float WALL_ASPECT = 2.5f;
// Rays behind a tilted camera lie nearer than this framebuffer depth.
static const float BEHIND_CAMERA_DEPTH = 0.475f;
static const float MOST_TILT = 54.0f;
static const float HALF_SPHERE = 180.0f;

/// Degrees across the picture.
static float SpanOf(const SDewarpParams& rParams)
{
    return static_cast<float>(WallSpanOf(rParams));
}

SPTZRange CPanoramaWallView::TiltBand(float fWallAngle, bool bStrict)
{
    const float a = fWallAngle;
    const float c = std::cos(a * 3.1415927f / 180.0f);
    float fLow = -MOST_TILT;
    float fHigh = MOST_TILT;
    if (a > 0.0f) {
        fLow = a - MOST_TILT;
        if (!bStrict)
            fLow = fLow + c * 1.5f * a;
    } else if (a < 0.0f) {
        fHigh = a + MOST_TILT;
        if (!bStrict)
            fHigh = fHigh + c * 1.5f * a;
    }
    return {fLow, fHigh};
}

/// The band of a camera's lens: where more is shown across, more is shown upright, and less is left to move.
static SPTZRange BandOf(const SDewarpParams& rParams)
{
    SPTZRange sBand = CPanoramaWallView::TiltBand(rParams.fMountTilt, rParams.bStrictTiltLimits);
    const float fMore = 0.2f * (SpanOf(rParams) - HALF_SPHERE);
    sBand.fLow = sBand.fLow + fMore;
    sBand.fHigh = sBand.fHigh - fMore;
    return sBand;
}

void CPanoramaWallView::LimitTilt(const SPTZRange& rBand, float& fTilt)
{
    if (fTilt > rBand.fHigh)
        fTilt = rBand.fHigh;
    if (fTilt < rBand.fLow)
        fTilt = rBand.fLow;
}

float CPanoramaWallView::MeshAspect(const SDewarpParams& /*rParams*/) const
{
    return WALL_ASPECT;
}

float CPanoramaWallView::ScaleMultiplier(const SDewarpParams& /*rParams*/) const
{
    return 0.4f;
}

SPTZLimits CPanoramaWallView::Limits(const SDewarpParams& rParams) const
{
    return {{-360.0f, 360.0f, true}, BandOf(rParams), {FIXED_ZOOM, FIXED_ZOOM}};
}

void CPanoramaWallView::LimitPTZ(SDewarpParams& rParams) const
{
    LimitTilt(BandOf(rParams), rParams.fTilt);
    rParams.fZoom = FIXED_ZOOM;
}

/// The picture moves up and down only.
bool CPanoramaWallView::LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const
{
    rParams.fTilt = static_cast<float>(CViewOptics(MeshKey(rParams)).WallRow(rTarget.sDirection)) * 0.5f *
                    SpanOf(rParams);
    return true;
}

void CPanoramaWallView::Drag(const SDrag& rDrag, SDewarpParams& rParams) const
{
    int h = rDrag.nViewportHeight;
    if (rDrag.nTopBand != -1)
        h -= 2 * rDrag.nTopBand;
    const float dx = DragPixels(rDrag.sFrom.x, rDrag.sTo.x);
    const float dy = DragPixels(rDrag.sFrom.y, rDrag.sTo.y);
    rParams.fTilt = rParams.fTilt + dy * (0.4f * SpanOf(rParams)) / static_cast<float>(h);
    // The horizontal step counts by the viewport's height too.
    rParams.fPan = rParams.fPan + rParams.fZoom * (dx / static_cast<float>(rDrag.nViewportHeight)) * 0.5f;
}

SClipBands CPanoramaWallView::ClipBands(const SDewarpParams& rParams, float /*fMeshAspect*/, int nWidth,
                                        int nHeight) const
{
    SClipBands sBands;
    const float vw = static_cast<float>(nWidth);
    const float vh = static_cast<float>(nHeight);
    if (vw / vh < WALL_ASPECT) {
        sBands.anPlanes[2] = static_cast<int>(vh - vw / WALL_ASPECT) / 2;
        sBands.anPlanes[3] = nHeight - sBands.anPlanes[2];
    }
    sBands.bTexCoordRows = FindLens(rParams.eLensType).bClipRows;
    sBands.fDepth = rParams.fMountTilt == 0.0f ? 0.0f : BEHIND_CAMERA_DEPTH;
    return sBands;
}

void CPanoramaWallView::Move(const SDewarpParams& rParams, float /*fMeshAspect*/, float /*fImageAspect*/,
                             int /*nRotation*/, float* m) const
{
    const float fUnit = 0.5f * SpanOf(rParams);
    for (int i = 0; i < 4; ++i)
        m[12 + i] -= (rParams.fTilt / fUnit) * m[4 + i];
}

void CPanoramaWallView::DefaultSize(const SDewarpParams& /*rParams*/, int& nWidth, int& nHeight) const
{
    nWidth = 1600;
    nHeight = 640;
}
