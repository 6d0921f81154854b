/// \file
/// The fisheye image itself, flat.
#pragma once

#include "dewarp/views/GPUObjBase.h"

/// Pan and tilt are positions: 90 degrees move the picture by half the view; zoom narrows the window. With
/// the primitive mode GL_TRIANGLE_FAN the object shows the lens circle only.
class CCGPUObjFisheye : public CCGPUObjBase
{
public:
    void CheckPTZ(SDewarpParams* pParams) override;
    void AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                   float fAspect, int nRotation) override;
    void OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                     SShaderProperties* pShader) override;
    void Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams) override;
};
