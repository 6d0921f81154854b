/// \file
/// The virtual pan-tilt-zoom camera, single or four at once.
#pragma once

#include "dewarp/views/GPUObjBase.h"

/// Stands at the centre of the half-sphere that the lens sees. Pan and tilt turn the sphere, zoom opens a
/// perspective frustum.
class CCGPUObjVCAM : public CCGPUObjBase
{
public:
    void CheckPTZ(SDewarpParams* pParams) override;
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    /// Here the bounds are tangents of the half-openings.
    void SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom, float fTop,
                             float fNear, float fFar) override;
    void DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader) override;
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;
    float GetEyeDistance(SDewarpParams* pParams) override;

    void OnMouseMoveWithoutgluUnProject(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                        SDewarpMatrices* pMatrices, SShaderProperties* pShader);

    float m_fQuadMatrix[16] = {}; ///< working copy while the quad view is drawn
    /// Distance of the eye behind the sphere's centre, 0 to 1.
    float m_fEyeDistance = 0.0f;
    /// Row 0 of the target is the top of the picture: the quarters' rows count from the other end.
    bool m_bTopDownTarget = false;

private:
    void DrawQuad(const SDewarpMatrices& rMatrices, const SShaderProperties& rShader);
};
