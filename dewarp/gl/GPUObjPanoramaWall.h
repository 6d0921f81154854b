/// \file
/// Draws the panorama of a wall camera.
#pragma once

#include "dewarp/gl/GPUObjView.h"
#include "platform/Export.h"

/// Pan, mount tilt and the strictness of the limits live in the mesh.
class LUMOR_API CCGPUObjPanoramaWall : public CCGPUObjView
{
public:
    CCGPUObjPanoramaWall();
    /// Limits the tilt first: it may have been set since the position was checked.
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;

    /// Limits the tilt to the band of a camera tilted by fWallAngle; a false flag narrows the band further on
    /// the side towards which the camera is tilted.
    void CheckTilt(float fWallAngle, float& fTilt, bool bStrict);
};
