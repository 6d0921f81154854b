#include "dewarp/control/Decision.h"

#include "dewarp/control/Control.h"
#include "dewarp/geometry/Matrix.h"

#include <cmath>

bool IsDecidedFor(const SFrameDecision& rDecision, const CControl& rControl, const STargetShape& rTarget)
{
    const SDewarpParams& rNow = rControl.sParams;
    const SDewarpParams& rThen = rDecision.sParams;
    return rDecision.pView != nullptr && !(rNow != rThen) && rNow.eLensType == rThen.eLensType &&
           rNow.nImageWidth == rThen.nImageWidth && rNow.nImageHeight == rThen.nImageHeight &&
           rDecision.sTarget == rTarget && rDecision.nRotation == rControl.nRotation &&
           rDecision.fEyeDistance == rControl.fEyeDistance;
}

float ShownImageAspect(const SDewarpParams& rParams, int nRotation)
{
    if (rParams.nImageHeight == 0)
        return 1.0f;
    const float w = static_cast<float>(rParams.nImageWidth);
    const float h = static_cast<float>(rParams.nImageHeight);
    return nRotation == 90 || nRotation == 270 ? h / w : w / h;
}

/// The window that shows the whole view at zoom 180, fitted into the target, and less of it at lower zooms.
static SFrustum Frustum(const CView& rView, const SDewarpParams& rParams, float fMeshAspect, int nRotation,
                        const STargetShape& rTarget)
{
    const float a = static_cast<float>(rTarget.nWidth) / static_cast<float>(rTarget.nHeight);
    const bool bUpright = nRotation == 0 || nRotation == 180;
    float g = rView.Aspect(rParams, fMeshAspect);
    if (!bUpright)
        g = 1.0f / g;
    const float t = std::tan(rParams.fZoom / 180.0f * 3.1415927f * 0.25f);
    const float f = a <= g ? g / a : 1.0f;
    float m = rView.ScaleMultiplier(rParams);
    if (!bUpright)
        m = m / g;
    const float s = f * m;
    SFrustum sFrustum;
    sFrustum.fLeft = -(t * a * s);
    sFrustum.fRight = t * a * s;
    sFrustum.fBottom = -(t * s);
    sFrustum.fTop = t * s;
    return sFrustum;
}

void DecideView(const CControl& rControl, const STargetShape& rTarget, SFrameDecision& rDecision)
{
    SFrameDecision& d = rDecision;
    d.sParams = rControl.sParams;
    d.sTarget = rTarget;
    d.nRotation = rControl.nRotation;
    d.fEyeDistance = rControl.fEyeDistance;
    const CView& rView = rControl.View();
    d.pView = &rView;
    d.sMesh = rView.MeshKey(d.sParams);
    d.fMeshAspect = rView.MeshAspect(d.sParams);
    d.fImageAspect = ShownImageAspect(d.sParams, d.nRotation);
    d.sBands = rView.Bands(d.sParams, d.fMeshAspect, rTarget.nWidth, rTarget.nHeight);

    SDewarpMatrices& m = d.sMatrices;
    m = SDewarpMatrices();
    m.nViewportWidth = rTarget.nWidth;
    m.nViewportHeight = rTarget.nHeight;
    rView.Project(Frustum(rView, d.sParams, d.fMeshAspect, d.nRotation, rTarget), m.fProjection);
    TranslateMatrix(m.fView, 0.0f, 0.0f, -rView.EyeDistance(d.fEyeDistance));
    rView.Move(d.sParams, d.fMeshAspect, d.fImageAspect, d.nRotation, m.fModel);
    MultiplyMatrices(m.fModelView, m.fView, m.fModel);
    MultiplyMatrices(m.fMVP, m.fProjection, m.fModelView);
    d.nParts = rView.Parts(d.sParams, m, d.fMeshAspect, rTarget.bTopDown, d.aParts);
}
