/// \file
/// The panorama of a wall camera.
#pragma once

#include "dewarp/views/View.h"
#include "platform/Export.h"

/// The half-sphere in front of the camera, unrolled. Tilt moves it up and down inside a band that depends on
/// how far the camera itself is tilted; pan lives in the mesh and rolls the picture about the optical axis.
class CPanoramaWallView final : public CView
{
public:
    EViewMesh Mesh() const override { return MESH_PANORAMA_WALL; }
    float MeshAspect(const SDewarpParams& rParams) const override;
    float ScaleMultiplier(const SDewarpParams& rParams) const override;
    SPTZLimits Limits(const SDewarpParams& rParams) const override;
    void LimitPTZ(SDewarpParams& rParams) const override;
    bool LookAt(const SLookTarget& rTarget, SDewarpParams& rParams) const override;
    void Drag(const SDrag& rDrag, SDewarpParams& rParams) const override;
    SClipBands ClipBands(const SDewarpParams& rParams, float fMeshAspect, int nWidth,
                         int nHeight) const override;
    void Move(const SDewarpParams& rParams, float fMeshAspect, float fImageAspect, int nRotation,
              float* pModel) const override;
    void DefaultSize(const SDewarpParams& rParams, int& nWidth, int& nHeight) const override;

    /// The tilt band of a camera tilted by fWallAngle; a false flag narrows it further on the side towards
    /// which the camera is tilted.
    static LUMOR_INTERNAL_API SPTZRange TiltBand(float fWallAngle, bool bStrict);
    /// Limits a tilt to a band; the lower bound wins when the band is empty.
    static LUMOR_INTERNAL_API void LimitTilt(const SPTZRange& rBand, float& fTilt);
};
