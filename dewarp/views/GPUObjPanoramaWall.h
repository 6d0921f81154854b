/// \file
/// The panorama of a wall camera.
#pragma once

#include "dewarp/views/GPUObjBase.h"

/// The half-sphere in front of the camera, unrolled. Tilt moves it up and down inside a band that depends on
/// how far the camera itself is tilted; pan lives in the mesh and rolls the picture about the optical axis.
class CCGPUObjPanoramaWall : public CCGPUObjBase
{
public:
    void CheckPTZ(SDewarpParams* pParams) override;
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    void CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                         SShaderProperties* pShader) override;
    float GetScaleMultiplier(SDewarpParams* pParams) override;
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;

    /// Limits the tilt to the band of a camera tilted by fWallAngle; a false flag narrows the band further on
    /// the side towards which the camera is tilted.
    void CheckTilt(float fWallAngle, float& fTilt, bool bStrict);
    /// Builds the mesh anew into the buffers there are; makes them if there are none.
    void Regenerate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams);
};
