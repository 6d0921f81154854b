#include "dewarp/views/FisheyeView.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/views/LookAngles.h"
#include "dewarp/views/PTZLimits.h"

#include <cmath>

static const float MOST_PTZ = 90.0f;

float CFisheyeView::MeshAspect(const SDewarpParams& rParams) const
{
    return ::MeshAspect(m_eMesh, rParams.nImageWidth, rParams.nImageHeight);
}

SPTZLimits CFisheyeView::Limits(const SDewarpParams& /*rParams*/) const
{
    return {{-MOST_PTZ, MOST_PTZ}, {-MOST_PTZ, MOST_PTZ}, {LEAST_ZOOM, MOST_ZOOM}};
}

void CFisheyeView::LimitPTZ(SDewarpParams& rParams) const
{
    LimitAngle(rParams.fTilt, -MOST_PTZ, MOST_PTZ);
    LimitAngle(rParams.fPan, -MOST_PTZ, MOST_PTZ);
    LimitZoom(rParams.fZoom);
}

bool CFisheyeView::LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const
{
    const double fAspect = static_cast<double>(rParams.nImageWidth) / rParams.nImageHeight;
    const bool bUpright = rTarget.nRotation == 0 || rTarget.nRotation == 180;
    const double x = (2.0 * rTarget.u - 1.0) * fAspect;
    const double y = 1.0 - 2.0 * rTarget.v;
    const double c = std::cos(rTarget.nRotation / DEGREES);
    const double s = std::sin(rTarget.nRotation / DEGREES);
    rParams.fPan = static_cast<float>((c * x + s * y) * 90.0 / (bUpright ? fAspect : 1.0 / fAspect));
    rParams.fTilt = static_cast<float>((s * x - c * y) * 90.0);
    return true;
}

void CFisheyeView::Drag(const SDrag& rDrag, SDewarpParams& rParams) const
{
    const float fImageAspect =
        static_cast<float>(rParams.nImageWidth) / static_cast<float>(rParams.nImageHeight);
    float fWidth = static_cast<float>(rDrag.nViewportWidth);
    float fHeight = static_cast<float>(rDrag.nViewportHeight);
    const float t = std::tan(rParams.fZoom / 180.0f * 3.1415927f * 0.25f);
    // The picture is fitted into the viewport; the pointer moves over the picture.
    if (fImageAspect > fWidth / fHeight)
        fHeight = fWidth / fImageAspect;
    else
        fWidth = fImageAspect * fHeight;
    const float dx = DragPixels(rDrag.sFrom.x, rDrag.sTo.x);
    const float dy = DragPixels(rDrag.sFrom.y, rDrag.sTo.y);
    rParams.fPan = rParams.fPan - t * dx * 180.0f / fWidth;
    rParams.fTilt = rParams.fTilt - t * dy * 180.0f / fHeight;
}

void CFisheyeView::Move(const SDewarpParams& rParams, float /*fMeshAspect*/, float fImageAspect,
                        int nRotation, float* m) const
{
    const float y = rParams.fTilt / 90.0f;
    for (int i = 0; i < 4; ++i)
        m[12 + i] += y * m[4 + i];
    const float x = rParams.fPan * fImageAspect / -90.0f;
    for (int i = 0; i < 4; ++i)
        m[12 + i] += x * m[i];
    if (nRotation != 0)
        rotateM(m, 0, static_cast<float>(-nRotation), 0.0f, 0.0f, 1.0f);
}

void CFisheyeView::DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const
{
    nWidth = rParams.nImageWidth;
    nHeight = rParams.nImageHeight;
}
