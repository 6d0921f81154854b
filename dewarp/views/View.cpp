#include "dewarp/views/View.h"

#include "dewarp/geometry/MeshBuild.h"
#include "dewarp/geometry/OpticsMesh.h"
#include "dewarp/lenses/LensMap.h"

#include <cstring>

// The whole scene lies between the near plane (0.01) and the far plane (2): a mesh at depth 0 comes to stand
// in the middle, one that reaches back to depth -1 is still inside.
static const float FLAT_EYE_DISTANCE = 0.99f;

SMeshKey CView::MeshKey(const SDewarpParams& rParams) const
{
    return MeshKeyOf(Mesh(), rParams);
}

void CView::BuildMesh(CCustomGPUGeometry& rGeometry, const SMeshKey& rKey) const
{
    ::BuildMesh(rGeometry, rKey);
}

float CView::Aspect(const SDewarpParams& /*rParams*/, float fMeshAspect) const
{
    return fMeshAspect;
}

float CView::ScaleMultiplier(const SDewarpParams& /*rParams*/) const
{
    return 1.0f;
}

SPTZ CView::DefaultPTZ(EMountType /*eMount*/) const
{
    return {};
}

SClipBands CView::ClipBands(const SDewarpParams& /*rParams*/, float /*fMeshAspect*/, int /*nWidth*/,
                            int /*nHeight*/) const
{
    return {};
}

SClipBands CView::Bands(const SDewarpParams& rParams, float fMeshAspect, int nWidth, int nHeight) const
{
    SClipBands sBands = ClipBands(rParams, fMeshAspect, nWidth, nHeight);
    if (!NeedsOpticsMesh(MeshKey(rParams)) || rParams.nImageWidth < 1 || rParams.nImageHeight < 1)
        return sBands;
    sBands.fDepth = 0.0f;
    sBands.bTexCoordRows = false;
    const SRimEllipse sRim =
        CLensMap(rParams.pOptics.get(), rParams.eLensType, rParams.nImageWidth, rParams.nImageHeight)
            .FrameRim();
    const double w = rParams.nImageWidth;
    const double h = rParams.nImageHeight;
    sBands.sRim = {static_cast<float>(sRim.fCenterX / w), static_cast<float>(sRim.fCenterY / h),
                   static_cast<float>(w / sRim.fRadiusX), static_cast<float>(h / sRim.fRadiusY)};
    return sBands;
}

bool CView::LookAt(const SLookTarget& /*rTarget*/, SDewarpParams& /*rParams*/) const
{
    return false;
}

void CView::Project(const SFrustum& rFrustum, float* m) const
{
    const SFrustum& f = rFrustum;
    if (f.fLeft == f.fRight || f.fBottom == f.fTop || f.fNear == f.fFar)
        return;
    for (int i = 0; i < 16; ++i)
        m[i] = 0.0f;
    m[0] = 2.0f / (f.fRight - f.fLeft);
    m[5] = 2.0f / (f.fTop - f.fBottom);
    m[10] = -2.0f / (f.fFar - f.fNear);
    m[12] = -(f.fRight + f.fLeft) / (f.fRight - f.fLeft);
    m[13] = -(f.fTop + f.fBottom) / (f.fTop - f.fBottom);
    m[14] = -(f.fFar + f.fNear) / (f.fFar - f.fNear);
    m[15] = 1.0f;
}

float CView::EyeDistance(float /*fChosen*/) const
{
    return FLAT_EYE_DISTANCE;
}

int CView::Parts(const SDewarpParams& /*rParams*/, const SDewarpMatrices& rMatrices, float /*fMeshAspect*/,
                 bool /*bTopDown*/, SViewPart* pParts) const
{
    pParts[0] = WholeView(rMatrices);
    return 1;
}

SViewPart WholeView(const SDewarpMatrices& rMatrices)
{
    SViewPart sPart;
    std::memcpy(sPart.fMVP, rMatrices.fMVP, sizeof sPart.fMVP);
    sPart.nX = 0;
    sPart.nY = 0;
    sPart.nWidth = rMatrices.nViewportWidth;
    sPart.nHeight = rMatrices.nViewportHeight;
    return sPart;
}
