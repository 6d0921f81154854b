#include "dewarp/views/PanoramaMultiView.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/lenses/GivenLens.h"
#include "dewarp/views/PTZLimits.h"

static const float MOST_TILT = 54.0f;

float CPanoramaMultiView::MeshAspect(const SDewarpParams& /*rParams*/) const
{
    // Width to height of the panes together.
    return m_nPanes == 2 ? 1.6f : 2.4f;
}

float CPanoramaMultiView::ScaleMultiplier(const SDewarpParams& /*rParams*/) const
{
    return 0.5f;
}

SPTZLimits CPanoramaMultiView::Limits(const SDewarpParams& /*rParams*/) const
{
    return {{-360.0f, 360.0f, true}, {-MOST_TILT, MOST_TILT}, {FIXED_ZOOM, FIXED_ZOOM}};
}

void CPanoramaMultiView::LimitPTZ(SDewarpParams& rParams) const
{
    LimitAngle(rParams.fTilt, -MOST_TILT, MOST_TILT);
    rParams.fZoom = FIXED_ZOOM;
}

void CPanoramaMultiView::Drag(const SDrag& rDrag, SDewarpParams& rParams) const
{
    rParams.fPan = rParams.fPan + rParams.fZoom * DragPixels(rDrag.sFrom.x, rDrag.sTo.x) /
                                      static_cast<float>(rDrag.nViewportWidth);
    rParams.fTilt = rParams.fTilt + rParams.fZoom * DragPixels(rDrag.sFrom.y, rDrag.sTo.y) /
                                        static_cast<float>(rDrag.nViewportHeight);
}

SClipBands CPanoramaMultiView::ClipBands(const SDewarpParams& rParams, float /*fMeshAspect*/, int /*nWidth*/,
                                         int /*nHeight*/) const
{
    SClipBands sBands;
    sBands.bTexCoordRows = FindLens(rParams.eLensType).bClipRows;
    return sBands;
}

void CPanoramaMultiView::Move(const SDewarpParams& rParams, float /*fMeshAspect*/, float /*fImageAspect*/,
                              int /*nRotation*/, float* m) const
{
    if (rParams.sShape.bFloorFlip && rParams.eMountType == MOUNT_FLOOR)
        rotateM(m, 0, 180.0f, 0.0f, 0.0f, 1.0f);
}

void CPanoramaMultiView::DefaultSize(const SDewarpParams& /*rParams*/, int& nWidth, int& nHeight) const
{
    nWidth = m_nPanes == 2 ? 1600 : 1920;
    nHeight = m_nPanes == 2 ? 1000 : 800;
}
