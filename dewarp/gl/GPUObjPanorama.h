/// \file
/// Draws the 360-degree panorama of a ceiling or floor camera.
#pragma once

#include "dewarp/gl/GPUObjView.h"
#include "platform/Export.h"

/// Serves VIEW_PANORAMA_FULL, _HALF and _QUARTER.
class LUMOR_API CCGPUObjPanorama : public CCGPUObjView
{
public:
    CCGPUObjPanorama();
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    /// Leaves the request alone for views that are not this object's.
    void CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                         SShaderProperties* pShader) override;
    void DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader) override;

    float m_fUpperMVP[16] = {}; ///< of the two halves of VIEW_PANORAMA_QUARTER
    float m_fLowerMVP[16] = {};
};
