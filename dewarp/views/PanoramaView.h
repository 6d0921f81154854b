/// \file
/// The 360-degree panorama of a ceiling or floor camera: whole, half, or cut into two halves.
#pragma once

#include "dewarp/views/View.h"
#include "platform/Export.h"

/// The mesh is the whole strip, twice side by side; panning slides it. Serves VIEW_PANORAMA_FULL, _HALF and
/// _QUARTER.
class CPanoramaView final : public CView
{
public:
    EViewMesh Mesh() const override { return MESH_PANORAMA; }
    float MeshAspect(const SDewarpParams& rParams) const override;
    float Aspect(const SDewarpParams& rParams, float fMeshAspect) const override;
    float ScaleMultiplier(const SDewarpParams& rParams) const override;
    SPTZLimits Limits(const SDewarpParams& rParams) const override;
    void LimitPTZ(SDewarpParams& rParams) const override;
    bool LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const override;
    void Drag(const SDrag& rDrag, SDewarpParams& rParams) const override;
    SClipBands ClipBands(const SDewarpParams& rParams, float fMeshAspect, int nWidth,
                         int nHeight) const override;
    void Move(const SDewarpParams& rParams, float fMeshAspect, float fImageAspect, int nRotation,
              float* pModel) const override;
    int Parts(const SDewarpParams& rParams, const SDewarpMatrices& rMatrices, float fMeshAspect,
              bool bTopDown, SViewPart* pParts) const override;
    void DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const override;

    /// Matrices of the upper and the lower half of VIEW_PANORAMA_QUARTER, from projection and view of
    /// rMatrices.
    static LUMOR_INTERNAL_API void HalfMatrices(const SDewarpParams& rParams,
                                                const SDewarpMatrices& rMatrices, float fMeshAspect,
                                                float* pUpper, float* pLower);
    /// Share of the strip's aspect that a view shows; 0 for views that are none of these.
    static LUMOR_INTERNAL_API float ShownShare(EViewType eView);

private:
    /// The same, where the host chose how much.
    static float ShareOf(const SDewarpParams& rParams);
};
