/// \file
/// Two or three panorama panes of a ceiling or floor camera.
#pragma once

#include "dewarp/views/View.h"

/// Pan and tilt live in the mesh, which is built for them.
class CPanoramaMultiView final : public CView
{
public:
    /// nPanes is 2 or 3.
    explicit CPanoramaMultiView(int nPanes) : m_nPanes(nPanes) {}

    EViewMesh Mesh() const override { return m_nPanes == 2 ? MESH_PANORAMA_DUAL : MESH_PANORAMA_TRIPLE; }
    float MeshAspect(const SDewarpParams& rParams) const override;
    float ScaleMultiplier(const SDewarpParams& rParams) const override;
    SPTZLimits Limits(const SDewarpParams& rParams) const override;
    void LimitPTZ(SDewarpParams& rParams) const override;
    void Drag(const SDrag& rDrag, SDewarpParams& rParams) const override;
    SClipBands ClipBands(const SDewarpParams& rParams, float fMeshAspect, int nWidth,
                         int nHeight) const override;
    void Move(const SDewarpParams& rParams, float fMeshAspect, float fImageAspect, int nRotation,
              float* pModel) const override;
    void DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const override;

private:
    int m_nPanes;
};
