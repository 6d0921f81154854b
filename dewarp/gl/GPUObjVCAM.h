/// \file
/// Draws the virtual pan-tilt-zoom camera, single or four at once.
#pragma once

#include "dewarp/gl/GPUObjView.h"
#include "platform/Export.h"

class LUMOR_API CCGPUObjVCAM : public CCGPUObjView
{
public:
    CCGPUObjVCAM();
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    void DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader) override;
    float GetEyeDistance(SDewarpParams* pParams) override;

    void OnMouseMoveWithoutgluUnProject(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                        SDewarpMatrices* pMatrices, SShaderProperties* pShader);

    float m_fQuadMatrix[16] = {}; ///< working copy while the quad view is drawn
    /// Distance of the eye behind the sphere's centre, 0 to 1.
    float m_fEyeDistance = 0.0f;
};
