/// \file
/// The views about the vertical: equirectangular, cylindrical, Panini.
#pragma once

#include "dewarp/views/View.h"

/// A picture of a chosen span, whatever the mount: pan is the bearing of its middle, 0 where the top of the
/// frame is (wall: ahead), to the right when positive; tilt is how far above the horizon it lies.
/// Equirectangular and cylindrical pictures slide over the world, a Panini camera turns. Both live in the
/// mesh. Zoom narrows the window.
class CSurfaceView final : public CView
{
public:
    explicit CSurfaceView(EViewMesh eMesh) : m_eMesh(eMesh) {}

    EViewMesh Mesh() const override { return m_eMesh; }
    float MeshAspect(const SDewarpParams& rParams) const override;
    SPTZ DefaultPTZ(EMountType eMount) const override;
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
