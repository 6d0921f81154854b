/// \file
/// The virtual pan-tilt-zoom camera, single or four at once.
#pragma once

#include "dewarp/views/View.h"

/// Stands at the centre of the half-sphere that the lens sees. Pan and tilt turn the sphere, zoom opens a
/// perspective frustum.
class CVCAMView final : public CView
{
public:
    EViewMesh Mesh() const override { return MESH_VCAM; }
    float MeshAspect(const SDewarpParams& rParams) const override;
    SPTZ DefaultPTZ(EMountType eMount) const override;
    SPTZLimits Limits(const SDewarpParams& rParams) const override;
    void LimitPTZ(SDewarpParams& rParams) const override;
    bool LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const override;
    void Drag(const SDrag& rDrag, SDewarpParams& rParams) const override;
    /// Here the bounds are tangents of the half-openings.
    void Project(const SFrustum& rFrustum, float* pProjection) const override;
    float EyeDistance(float fChosen) const override;
    void Move(const SDewarpParams& rParams, float fMeshAspect, float fImageAspect, int nRotation,
              float* pModel) const override;
    int Parts(const SDewarpParams& rParams, const SDewarpMatrices& rMatrices, float fMeshAspect,
              bool bTopDown, SViewPart* pParts) const override;
    void DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const override;
};
