/// \file
/// The 360-degree panorama of a ceiling or floor camera: whole, half, or cut into two halves.
#pragma once

#include "dewarp/views/GPUObjBase.h"

/// The mesh is the whole strip, twice side by side; panning slides it. Serves VIEW_PANORAMA_FULL, _HALF and
/// _QUARTER.
class CCGPUObjPanorama : public CCGPUObjBase
{
public:
    /// Pan is wrapped by one turn at most; tilt and zoom are fixed.
    void CheckPTZ(SDewarpParams* pParams) override;
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    void CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                         SShaderProperties* pShader) override;
    void DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader) override;
    float GetGeometryAspect(SDewarpParams* pParams) override;
    float GetScaleMultiplier(SDewarpParams* pParams) override;
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;

    float m_fUpperMVP[16] = {}; ///< of the two halves of VIEW_PANORAMA_QUARTER
    float m_fLowerMVP[16] = {};
};
