/// \file
/// The fisheye image itself, flat: the whole frame, or the lens circle only.
#pragma once

#include "dewarp/views/View.h"

/// Pan and tilt are positions: 90 degrees move the picture by half the view; zoom narrows the window.
class CFisheyeView final : public CView
{
public:
    explicit CFisheyeView(EViewMesh eMesh) : m_eMesh(eMesh) {}

    EViewMesh Mesh() const override { return m_eMesh; }
    float MeshAspect(const SDewarpParams& rParams) const override;
    SPTZLimits Limits(const SDewarpParams& rParams) const override;
    void LimitPTZ(SDewarpParams& rParams) const override;
    bool LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const override;
    void Drag(const SDrag& rDrag, SDewarpParams& rParams) const override;
    void Move(const SDewarpParams& rParams, float fMeshAspect, float fImageAspect, int nRotation,
              float* pModel) const override;
    void DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const override;

private:
    EViewMesh m_eMesh;
};
